#include "standalone/drivers/sqlite/SQLiteDialect.h"

namespace velkrund {

std::string TSQLiteDialect::ColumnType(TKvKind Kind) const {
  if (Kind == TKvKind::Bytes) return "BLOB";
  return Kind == TKvKind::String ? "TEXT" : "INTEGER";
}

const TQuerySyntax& TSQLiteDialect::QuerySyntax() const {
  static constexpr TQuerySyntax Result = {.Backticks = true, .Brackets = true, .ParameterMarks = "?@$:"};
  return Result;
}

}  // namespace velkrund
