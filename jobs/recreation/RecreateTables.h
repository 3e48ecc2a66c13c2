#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jobs/dictionary/GivenMapping.h"
#include "jobs/recreation/RecreationJob.h"
#include "velkrund/dictionary/RecreateTables.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

/// Makes tables anew as their structures describe them, with their rows, and keeps what stands around them: views,
/// foreign keys of others, triggers, comments, owner, rights, counters. What cannot be kept is an error before anything
/// is dropped.
class TJobRecreateTables final : public TRecreationJob {
 public:
  /// Old name, new name. Old: a field, or one inside a BLOB field ("PICTURES.SIZE"); before it the name of the table,
  /// where several are meant.
  TStringPairs Mapping;
  bool DropData = false;  // the rows are not carried over

  std::string CommandName() const override { return "recreate table"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<int> Types() const override { return {TableObjectType}; }
  std::string_view What() const override { return "table"; }
  bool Exists(const TRecreation& Item) override;
  std::string_view OverwriteKey() const override { return "M_Velkrund_DicUtils_RecreateOverwriteConfirm"; }
  void Check(TRecreation& Item) override;
  void CheckAll() override;
  void RecreateAll(TAllowedGaps& Gaps) override;
  void Plan(TAllowedGaps& Gaps) override;
  void Forget() override;

 private:
  class TList;

  /// How one table is made anew.
  struct TTable {
    TDicTableDescription New;  // under the name that the table has
    std::optional<TTableInfo> Info;
    TStringPairs Fields;
    TBLOBFieldMappingList Inside;
    std::int64_t Rows = 0;  // that it has
  };

  enum class TNotes { Later, Now };
  void Prepare(const std::string& Name, TNotes Notes);
  void TakeMapping(const std::string& Name, TTable& Table);
  void CheckRows(const std::string& Name, const TTable& Table, TNotes Notes);
  void Remark(const std::string& Name, const TLText& Text);
  std::unique_ptr<TSurroundings> Locked(const std::string& Name);
  void CheckReferences(const std::string& Name, const TTable& Table);
  void AddBehindParents(const std::string& Name, std::vector<std::string>& Meant, int Depth = 0);
  TTable& Prepared(const std::string& Name);
  void SetUp(TUORecreateTable& Operation);
  void Recreate(TUORecreateTable& Operation, TAllowedGaps& Gaps);
  void Rehearse(const std::string& Name, TAllowedGaps& Gaps);
  void RefuseLost(const TUORecreateTable& Operation);
  void Finish(const TUORecreateTable& Operation);
  std::string PatternOf(const std::string& Name, TStandaloneDictionary& Dictionary) const;
  void AddSteps(const std::string& Name, TAllowedGaps& Gaps);

  std::map<std::string, TTable> FTables;  // by name of structure in upper case
  std::optional<TGivenMapping> FMapping;
  std::string FAt;  // the table at hand
};

using TJobRecreateTablesInterface = TJobInterface<TJobRecreateTables>;

}  // namespace velkrund
