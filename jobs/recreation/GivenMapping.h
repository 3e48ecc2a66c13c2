#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// Whether one of the names is that one, in any case.
bool HasName(const std::vector<std::string>& Names, const std::string& Name);

/// The pairs of old and new names that people give for one table or several: "SUM", "ORDERS.SUM", "PICTURES.SIZE" of a
/// field inside a BLOB field. Remembers which of them were of use.
class TGivenMapping {
 public:
  /// Both borrowed.
  TGivenMapping(const TStringPairs& Given, const std::string& DatabaseName)
      : FGiven(Given), FDatabaseName(DatabaseName), FUsed(Given.size()) {}

  /// What of it is for that table. Inside: of its BLOB fields, by their new names.
  void Take(const std::string& Name, const TTableDescription& Old, const TDicTableDescription& New,
            TStringPairs& Fields, TBLOBFieldMappingList& Inside);
  /// What maps nothing is a slip, and would leave values behind: ESettingsError.
  void RefuseUnused() const;

 private:
  bool TakeInside(const std::string& Name, const std::string& Old, const std::string& New,
                  const std::vector<std::string>& NewNames, const TStringPairs& Fields, TBLOBFieldMappingList& Inside);

  const TStringPairs& FGiven;
  const std::string& FDatabaseName;
  std::vector<char> FUsed;
  std::vector<std::string> FNames;  // new ones of all tables
};

}  // namespace velkrund
