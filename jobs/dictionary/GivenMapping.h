#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

std::vector<std::string> FieldNames(const TTableDescription& Table);
std::vector<std::string> FieldNames(const TDicTableDescription& Table);

/// Whether one of the names is that one, in any case.
bool HasName(const std::vector<std::string>& Names, const std::string& Name);

/// The first field that several pairs fill, in any case.
std::optional<std::string> DoubledTarget(const TStringPairs& Mapping);

/// The pairs of old and new names that people give for one table or several: "SUM", "ORDERS.SUM", "PICTURES.SIZE" of a
/// field inside a BLOB field. Remembers which of them were of use.
class TGivenMapping {
 public:
  /// Both borrowed. DatabaseName: where the structures of new tables are.
  TGivenMapping(const TStringPairs& Given, const std::string& DatabaseName)
      : FGiven(Given), FDatabaseName(DatabaseName), FUsed(Given.size()) {}

  /// A table of the rows, and the one that they go into, which may be the same one made anew.
  struct TTables {
    std::string Old, New;
    std::vector<std::string> OldFields, NewFields;
  };
  /// What of it is for these tables. Inside: of BLOB fields, by their new names.
  void Take(const TTables& Tables, TStringPairs& Fields, TBLOBFieldMappingList& Inside);
  /// What maps nothing is a slip, and would leave values behind: ESettingsError.
  void RefuseUnused() const;

 private:
  bool TakeInside(const TTables& Tables, const std::string& Old, const std::string& New, const TStringPairs& Fields,
                  TBLOBFieldMappingList& Inside);

  const TStringPairs& FGiven;
  const std::string& FDatabaseName;
  std::vector<char> FUsed;
  std::vector<std::string> FNames;  // new ones of all tables
};

}  // namespace velkrund
