#pragma once

#include <set>
#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/run/JobInterface.h"
#include "standalone/drivers/Schema.h"
#include "standalone/structures/MemoryStructures.h"
#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/dsp/DSPStructureOperations.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {

class TTableSearch;

/// Saves the rows of tables as sections of a file; if wanted, before each of them the structure that describes the
/// table, made from what is in the database, in which nothing is stored.
class TJobExportTables final : public TExportJob {
 public:
  TJobExportTables() : TExportJob("table") {}

  std::vector<std::string> Tables;  // none: all that have rows of their own in the database
  std::vector<std::string> Fields;  // of one table: the only ones to save; none: all
  TRowOrder RowOrder = TRowOrder::Key;
  bool Structures = false;  // describe the tables too

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return Tables.size() != 1; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem& Item) override;
  void AfterRun(TItem& Item) override {
    if (!Item.Structure) Item.Counts = FOperation.Report;
  }
  void AddNotes() override;

 private:
  /// Exports what no database stores.
  class TDescribedExport final : public TUOExportDSPStructure {
   public:
    int Execute() override {
      const TServiceGuard<TDSPContainer> Guard(&Described);
      return TUOExportDSPStructure::Execute();
    }
    TMemoryStructures Described;
  };

  void RefuseWithoutRows() const;
  TItem RowsItem(const std::string& Table) const;
  std::vector<TItem> WithStructures(std::vector<TItem> Rows);
  std::vector<TItem> StoredParts(std::set<std::string> Wholes);
  TItem WithoutTable(const TTableSearch& Search, const std::string& Name);

  TUOExportTableData FOperation;
  TDescribedExport FStructures;
};

using TJobExportTablesInterface = TJobInterface<TJobExportTables>;

}  // namespace velkrund
