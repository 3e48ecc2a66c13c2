#include "standalone/drivers/sqlite/SQLiteDialect.h"

namespace velkrund {

std::string TSQLiteDialect::ColumnType(TKvKind Kind) const {
  if (Kind == TKvKind::Bytes) return "BLOB";
  return Kind == TKvKind::String ? "TEXT" : "INTEGER";
}

}  // namespace velkrund
