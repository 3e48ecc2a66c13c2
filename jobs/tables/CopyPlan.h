#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jobs/dictionary/GivenMapping.h"
#include "jobs/tables/TableSearch.h"
#include "velkrund/dictionary/BLOBFieldMapping.h"

namespace velkrund {

/// A table whose rows are to be copied, and the one that they go into.
struct TPlannedCopy {
  TTableDescription Source, Target;
  TStringPairs Fields = {};               // with other names in the target
  TBLOBFieldMappingList Inside = {};      // the same inside BLOB fields
  std::vector<std::string> Skipped = {};  // fields of the source that the target has no field for
  std::int64_t Rows = 0;                  // of the target; counted only where they are asked about
  bool Keep = false;                      // these rows

  std::string From() const { return FullName(Source.Table); }
  std::string Into() const { return FullName(Target.Table); }
};

/// What is known about copies before anything is changed: which tables are meant, and that their fields fit.
class TCopyPlan {
 public:
  struct TEnd {
    std::string DatabaseName, DatabaseText;
  };
  /// Manager, Mapping: borrowed.
  TCopyPlan(TStandaloneManager& Manager, TEnd Source, TEnd Target, const TStringPairs& Mapping, bool Update);

  /// Into: empty: the table of the same name. Raises EDatabaseError, TableMissing where one of them is not there, and
  /// where a copy of the rows as they are cannot be.
  TPlannedCopy Plan(const std::string& Table, const std::string& Into);
  /// When all tables are planned: ESettingsError for pairs that none of them has a use for.
  void RefuseUnusedMapping() const { FMapping.RefuseUnused(); }

 private:
  TTableDescription Described(const TEnd& End, const std::string& Name) const;
  void RefuseItself(const TPlannedCopy& Copy) const;
  void RefuseKinds(const TPlannedCopy& Copy) const;
  static void RefuseDoubled(const TStringPairs& Fields, const std::string& Into);
  void CheckFields(TPlannedCopy& Copy) const;
  void CheckKey(const TPlannedCopy& Copy) const;

  TStandaloneManager& FManager;
  const TEnd FSource, FTarget;
  const bool FUpdate;
  TGivenMapping FMapping;
};

}  // namespace velkrund
