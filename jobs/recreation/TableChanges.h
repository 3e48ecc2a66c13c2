#pragma once

#include <string>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// What goes, and what is missing, when a table is made anew as another description has it and its rows are carried
/// over.
struct TTableChanges {
  std::vector<std::string> LostFields;  // whose values no field takes
  std::vector<std::string> Unfilled;    // fields that take no NULL, have no default, and get no value
  std::vector<std::string> Unzoned;     // whose moments become texts
  std::vector<std::string> Gone;        // what the new description does not have: "the index 'I1'"
};

/// Mapping: old name, new name. Old: as it is in the database.
TTableChanges ChangesOf(const TDicTableDescription& Old, const TDicTableDescription& New, const TStringPairs& Mapping);

}  // namespace velkrund
