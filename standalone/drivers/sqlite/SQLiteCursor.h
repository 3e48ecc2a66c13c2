#pragma once

#include <span>
#include <vector>

#include "standalone/drivers/RowAccess.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

struct sqlite3_value;

namespace velkrund {

/// Reads a cell by its own storage class. Texts and bytes are borrowed from the engine. Wide: the database's encoding
/// is UTF-16, so that texts have to be converted before they can be lent.
void ReadSQLiteCell(sqlite3_value* Cell, bool Wide, TKvVariant& Value);
/// Reads a cell of a column whose declared type stands for the kind Leading: it takes that kind when converting it back
/// gives the stored bytes. Otherwise it keeps the kind of its own storage class.
void ReadSQLiteCell(sqlite3_value* Cell, bool Wide, TKvKind Leading, std::string& Scratch, TKvVariant& Value);

/// Raises EDatabaseError, with What at the beginning, unless Condition is one expression about rows of Table.
void CheckSQLiteSelection(const TSQLiteHandle& Database, const TTableDescription& Table, std::string_view Condition,
                          const std::string& What);

/// What stands behind FROM; its alias is T.
std::string SQLiteRowsOf(const TTableDescription& Table);

/// The rows of a table.
class TSQLiteCursor final : public TCursor {
 public:
  /// Wide: as for ReadSQLiteCell.
  TSQLiteCursor(const TSQLiteHandle& Database, const TTableDescription& Table, std::span<const int> Columns,
                const TWalkOptions& Options, bool Wide);

  bool Next() override { return FStatement.Step(); }
  void Read(int Column, TKvVariant& Value) override;
  void ReadRow(std::span<TKvVariant> Row) override;

 private:
  TSQLiteStatement FStatement;
  std::vector<TKvKind> FKinds;  // declared, of the asked-for columns
  std::string FScratch;
  bool FWide;
};

}  // namespace velkrund
