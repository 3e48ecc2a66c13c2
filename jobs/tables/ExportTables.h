#pragma once

#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/dictionary/TableDataOperations.h"

namespace velkrund {

/// Saves the rows of tables as sections of a file.
class TJobExportTables final : public TExportJob {
 public:
  TJobExportTables() : TExportJob("table", TSectionRole::TableData, "rows") {}

  std::vector<std::string> Tables;  // none: all that have rows of their own in the database
  std::vector<std::string> Fields;  // of one table: the only ones to save; none: all
  TRowOrder RowOrder = TRowOrder::Key;

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return Tables.size() != 1; }
  std::vector<TItem> Plan() override;
  TExportUtilOperation& Operation() override { return FOperation; }
  void Prepare(const TItem& Item) override { FOperation.TableName = Item.Table; }
  void AfterRun(TItem& Item) override { Item.Counts = FOperation.Report; }
  void AddNotes() override;

 private:
  std::vector<std::string> AllTables();
  void RefuseWithoutRows() const;

  TUOExportTableData FOperation;
};

using TJobExportTablesInterface = TJobInterface<TJobExportTables>;

}  // namespace velkrund
