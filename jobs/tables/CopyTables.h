#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jobs/policies/ErrorPolicy.h"
#include "jobs/run/JobInterface.h"
#include "jobs/tables/CopyPlan.h"
#include "velkrund/dictionary/CopyTable.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// Copies the rows of tables into tables of DatabaseName, without a file between them. Everything that can be known,
/// and every question about rows that are there, comes before the first change. The run is one transaction of that
/// database, unless it is told to commit each group of tables; all rows are read as they are at one moment.
class TJobCopyTables final : public TSectionsJob {
 public:
  std::string SourceDatabaseName;
  std::vector<std::string> Tables;  // of the source; none: all that have rows of their own
  std::string TargetTableName;      // for one table: the one that it goes into; empty: that of its name
  TStringPairs Mapping;             // source field, target field; "ORDERS.SUM", "PICTURES.SIZE" inside a BLOB field
  std::string Selection;            // for one table: a condition of its engine; empty: all rows
  std::vector<std::string> ExcludedBLOBFields;  // of the target, copied as they are
  bool Update = false;  // a row takes the place of the one that has its key; the others that are there stay

  /// What people may see of the source.
  const std::string& SourceText() const { return FSourceText; }

  void CheckSettings() const override;
  std::string CommandName() const override { return "copy table"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  void Describe(TDocument& Document) const override;

 private:
  void Plan();
  void PlanOne(TCopyPlan& Plan, const std::string& Table);
  void CheckSelection(const TPlannedCopy& Copy) const;
  void TakeSkipped(TItem& Item, const TPlannedCopy& Copy);
  void Settle();
  void MakePlan();
  void CopyAll();
  bool CopyGroup(const std::vector<std::size_t>& Numbers, std::size_t Group);
  bool HasManyRows(const TTableInfo& Source) const;
  std::vector<std::int64_t> SourceRows(const std::vector<std::size_t>& Numbers) const;
  void RefuseEmptied(const std::vector<std::size_t>& Numbers, const std::vector<std::int64_t>& Before) const;
  void CopyOne(std::size_t Number);
  void RefuseLost(const TUOCustomCopyTable& Operation);
  bool GoOn(const TItem& Failed);
  void EndWhole();
  void TakeBack(const std::vector<std::size_t>& Numbers);
  std::vector<std::pair<std::size_t, std::vector<std::size_t>>> Groups() const;
  std::vector<std::size_t> Taken() const;

  std::string FSourceText;
  std::vector<TPlannedCopy> FCopies;  // one for each item
  std::optional<TErrorPolicy> FErrors;
  bool FIsOneDatabase = false;
  bool FStopped = false;                    // before all tables were come to
  std::unique_ptr<TTableLoading> FLoading;  // during a run
};

using TJobCopyTablesInterface = TJobInterface<TJobCopyTables>;

}  // namespace velkrund
