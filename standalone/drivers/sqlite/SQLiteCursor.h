#pragma once

#include <span>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

struct sqlite3_value;

namespace velkrund {

/// Reads a cell by its own storage class. Texts and bytes are borrowed from the engine. Wide: the database's encoding
/// is UTF-16, so that texts have to be converted before they can be lent.
void ReadSQLiteCell(sqlite3_value* Cell, bool Wide, TKvVariant& Value);

/// The declared type of a column leads: a cell takes that kind when converting it back gives the stored bytes.
/// Otherwise it keeps the kind of its own storage class.
class TSQLiteCursor final : public TCursor {
 public:
  /// Order: as for TRowAccess. Wide: as for ReadSQLiteCell.
  TSQLiteCursor(sqlite3* Database, const TTableDescription& Table, std::span<const int> Columns,
                std::span<const int> Order, bool Wide);

  bool Next() override { return FStatement.Step(); }
  void Read(int Column, TKvVariant& Value) override;

 private:
  TSQLiteStatement FStatement;
  std::vector<TKvKind> FKinds;  // declared, of the asked-for columns
  std::string FScratch;
  bool FWide;
};

}  // namespace velkrund
