#pragma once

#include "standalone/drivers/Schema.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

class TSQLiteDatabase;

/// Gives every field of Result, which describes Table, the narrowest type that holds all cells of its column: what was
/// declared where they are of it, else Int64, Real64, String, Bytes or Any. Reads the table once.
void ScanColumns(TSQLiteDatabase& Database, const TTableDescription& Table, TDicTableDescription& Result);

}  // namespace velkrund
