#pragma once

#include <string>
#include <vector>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

class TSQLiteDatabase;

/// What the engine's planner knows of an index, or of a table's key, in a table of the engine's own.
struct TSQLitePlannerRow {
  std::string Table;              // the engine's
  std::vector<TKvVariant> Cells;  // the first are the names of table and index; the latter is NULL for the table itself
};

/// All that it knows of a table and its indexes; these rows go when one of them is dropped. Raise EDatabaseError.
std::vector<TSQLitePlannerRow> SQLitePlannerRows(const TSQLiteDatabase& Database, const std::string& Table);
void InsertSQLitePlannerRow(const TSQLiteDatabase& Database, const TSQLitePlannerRow& Row);
void DeleteSQLitePlannerRows(const TSQLiteDatabase& Database, const std::string& Table);

}  // namespace velkrund
