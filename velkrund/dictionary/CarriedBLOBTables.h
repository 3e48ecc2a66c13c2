#pragma once

#include <string>

#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/dictionary/TableRowCopy.h"
#include "velkrund/platform/ormtools/Records.h"

namespace velkrund {

/// Has a copy of rows into a table carry the tables inside BLOB fields over too, where a structure of that database
/// describes such a table ("TABLE.FIELD"), and the field is not excluded. Fields: of the table that they go into.
/// Raises EDicUtilError for a structure that describes none.
void CarryBLOBTables(TTableRowCopy& Copy, TRecord& Fields, const std::string& TableName,
                     const std::string& DatabaseName, const TBLOBFieldMappingList& Mappings,
                     const TStringList& Excluded);

}  // namespace velkrund
