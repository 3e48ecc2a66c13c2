#pragma once

#include <span>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

struct sqlite3_value;

namespace velkrund {

/// The declared type of a column leads: a cell takes that kind when converting it back gives the stored bytes.
/// Otherwise it keeps the kind of its own storage class.
class TSQLiteCursor final : public TCursor {
 public:
  /// Wide: the database's encoding is UTF-16, so that texts have to be converted before they can be lent.
  TSQLiteCursor(sqlite3* Database, const TTableDescription& Table, std::span<const int> Columns, bool Wide);

  bool Next() override { return FStatement.Step(); }
  void Read(int Column, TKvVariant& Value) override;

 private:
  void ReadText(sqlite3_value* Cell, TKvKind Leading, TKvVariant& Value);

  TSQLiteStatement FStatement;
  std::vector<TKvKind> FKinds;  // declared, of the asked-for columns
  std::string FScratch;
  bool FWide;
};

}  // namespace velkrund
