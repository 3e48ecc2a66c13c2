#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/database/Relations.h"
#include "velkrund/platform/database/Tables.h"

namespace velkrund {

class TTableRowCopy;

/// Copies the rows of a table of DatabaseName into one of TargetDatabaseName: each field of the target gets the value
/// of the source field that the mapping names, else of the one of its own name; the others get their default. One
/// transaction of the target, rolled back when the copy fails or is cancelled.
///
/// Unless it appends, it empties the target first, by a statement on the application's default database: whoever runs
/// the operation by itself makes the target the default one beforehand. Where that is another database, the rows of
/// the table of that name THERE are deleted, whatever becomes of the copy; where there is none, it is an error before
/// anything is deleted. A Loading that was begun for the target has emptied it already, and nothing is deleted here.
class TUOCustomCopyTable : public TCopyDatabaseUtilOperation {
 public:
  /// What CopyTableToTable gives; 0: cancelled, or one of the tables cannot be opened (Opened tells), and nothing was
  /// done. Raises EDicUtilError for a table onto itself and for a damaged BLOB table.
  int Execute() override;

  std::string SourceTableName, TargetTableName;
  TStringPairs FieldMapping;                   // source field, target field; all other fields go by their names
  TBLOBFieldMappingList BLOBFieldMappingList;  // the same inside BLOB fields, whose tables the target's structures
                                               // describe
  TStringList ExcludedBLOBTableFields;         // BLOB fields of the target that are copied as they are
  std::string Selection;                       // a condition of the source's engine; empty: all rows
  bool Append = false;                         // the target's rows stay
  bool Update = false;                         // a row takes the place of the one that has its key, where there is one
  std::optional<bool> StrictText;              // values that the target cannot hold as they are: an error, or counted;
                                               // nothing: as the application has it
  TTableLoading* Loading = nullptr;            // borrowed, begun for the target; null: the copy is made alone

  // Names in any case.
  std::string FindFieldMapping(const std::string& TargetName) const { return OldNameFor(FieldMapping, TargetName); }
  std::string FindBLOBFieldMapping(const std::string& FieldName, const std::string& TargetName) const {
    return BLOBFieldMappingList.OldName(FieldName, TargetName);
  }
  bool ExcludedBLOBTableField(const std::string& FieldName) const {
    return ExcludedBLOBTableFields.IndexOf(FieldName) >= 0;
  }
  // BLOBFieldMappingList as scripts have it.
  TStringPairs BLOBMapping() const { return BLOBFieldMappingList.Pairs(); }
  void SetBLOBMapping(const TStringPairs& Pairs) { BLOBFieldMappingList.SetPairs(Pairs); }

  /// How the last run went.
  struct TReport {
    bool Opened = false;                    // both tables
    std::int64_t Rows = 0;                  // copied; up to the error, where there was one
    std::int64_t UpdatedRows = 0;           // of these
    std::int64_t DeletedRows = 0;           // of the target, before
    std::int64_t ValuesChanged = 0;         // that the target cannot hold as they are, where that is no error
    std::set<std::string> LostFields = {};  // inside BLOB fields, with values that no field takes: "PICTURES.SIZE"
  };
  const TReport& Report() const { return FReport; }

  static const TUtilOperationDescriptor Descriptor;

 protected:
  /// The rows alone, between tables that are open and ready: 1; 0: cancelled.
  virtual int CopyTableToTable(TTable& Source, TTable& Target);

 private:
  int Run();
  void RefuseItself(const TTable& Source, const TTable& Target) const;
  std::unique_ptr<TTableLoading> Load(const TTable& Target) const;
  void EmptyTarget(TTable& Source, const TTable& Target);
  bool CopyByStatement(const TTableRowCopy& Copy);
  void ShowRows(std::int64_t Rows, std::int64_t Total);

  TReport FReport;
};

}  // namespace velkrund
