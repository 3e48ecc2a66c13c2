#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/operations/AskObjects.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/dictionary/Dictionary.h"

namespace velkrund {

class TTable;

/// Gives the description of a table the name of the one that is there, where they differ in case alone. Physical: the
/// full name.
void KeepPhysicalName(TDicTableDescription& Description, const std::string& Physical);

/// Makes a table anew as its structure describes it, and carries its rows over: into a temporary table, which is
/// committed, then back into the new one. The new table has no views, rights or other things around it but what the
/// structure says, and an automatic key begins anew: whoever has no job around it sets the counter.
///
/// Up to the moment when the old table is dropped, an error or a wish to stop leaves everything as it was. Run by
/// itself, not within a transaction of the caller, the rows are LOST when an error comes after that, while the new
/// table is filled from the temporary one: the temporary table goes in any case. A program that cannot afford that
/// starts a transaction on the database before Execute and rolls it back after an error, or runs the job that does
/// (TJobRecreateTables), which keeps what is around the table too.
class TUORecreateTable : public TDatabaseUtilOperation {
 public:
  TUORecreateTable();

  /// 1, also when an answer leaves the table as it is; 0: cancelled, which leaves it too.
  int Execute() override;

  std::string TableName;
  TYesNoAsk OverWrite;        // a table that is there is made anew; yes unless it is told or asked otherwise
  TYesNoAsk SaveData;         // its rows are carried over; the same
  TStringPairs FieldMapping;  // old name, new name; all other fields keep theirs
  TBLOBFieldMappingList BLOBFieldMappingList;  // the same of the tables inside BLOB fields, which structures describe
  TStringList ExcludedBLOBTableFields;         // BLOB fields that are copied as they are
  TTableScriptPart TableScriptPart = TTableScriptPart::All;  // what is made; Table: neither triggers nor comments
  bool TakesLongNames = false;                               // a long name is not asked about

  // All names in any case.
  std::string FindFieldMapping(const std::string& NewName) const { return OldNameFor(FieldMapping, NewName); }
  std::string FindBLOBFieldMapping(const std::string& FieldName, const std::string& NewName) const {
    return BLOBFieldMappingList.OldName(FieldName, NewName);
  }
  bool ExcludedBLOBTableField(const std::string& FieldName) const {
    return ExcludedBLOBTableFields.IndexOf(FieldName) >= 0;
  }
  // BLOBFieldMappingList as scripts have it.
  TStringPairs BLOBMapping() const { return BLOBFieldMappingList.Pairs(); }
  void SetBLOBMapping(const TStringPairs& Pairs) { BLOBFieldMappingList.SetPairs(Pairs); }

  // The steps.
  /// Reads the table's structure into Description, and makes that part of it under the name. CreateIndex false: without
  /// its indexes. Raises EDicUtilError.
  void CreateStructure(const std::string& Name, TDicTableDescription& Description, TTableScriptPart Part,
                       bool CreateIndex);
  void DeleteTempTable();

  /// How the last run went.
  enum class TEnd { LeftAlone, Made, Rebuilt, Emptied };
  TEnd End() const { return FEnd; }
  /// Rows that the last run has carried over.
  std::int64_t Rows() const { return FRows; }
  /// What it could not carry over of tables inside BLOB fields: fields that no new one takes, "PICTURES.SIZE".
  const std::set<std::string>& LostFields() const { return FLost; }

  static const TUtilOperationDescriptor Descriptor;

 protected:
  /// Lines of the trace: "beg-CreateStructure", or as a subclass has them.
  virtual std::string CreationLine(const char* Step, const std::string& Name, bool CreateIndex) const;
  virtual std::string DropLine(const char* Step) const;

 private:
  class TTemporary;

  int Run();
  bool MayOverwrite();
  bool MaySaveData();
  bool AskYesNo(TYesNoAsk& Ask, std::string_view Key);
  /// False: cancelled.
  bool Recreate();
  /// False: cancelled. Nothing is carried over then.
  bool FillTemporary();
  bool CopyRows(TTable& Old, TTable& New);
  bool CopyRowsOfTable(TTable& Old, TTable& New);
  void RefuseMissingFields(const TDicTableDescription& Table, TTable& Made) const;
  void Rebuild();
  void RefuseTemporary() const;
  void LogExistence() const;
  void SetName(TDicTableDescription& Description, const std::string& Name) const;
  void MakeTemporary(TDicTableDescription& Description) const;

  bool FReplaces = false;  // the table of that name is there, and may go
  TEnd FEnd = TEnd::LeftAlone;
  std::int64_t FRows = 0, FTotal = 0;
  std::set<std::string> FLost;
};

}  // namespace velkrund
