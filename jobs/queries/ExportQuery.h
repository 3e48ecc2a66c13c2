#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/dictionary/QueryDataOperations.h"

namespace velkrund {

/// Saves the rows of a query as a section of a file. The query changes nothing; what is wrong with it shows before the
/// file is touched.
class TJobExportQuery final : public TExportJob {
 public:
  TJobExportQuery() : TExportJob("query") {}

  std::string Query;        // the text, in the words of the engine, with parameters ":NAME"
  TStringPairs Parameters;  // their names, and "TYPE:VALUE", or "TYPE" for NULL
  bool SortFields = false;  // in the file without regard to case; otherwise in the order of the query
  bool WithoutRowNumbers = false;

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return false; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem& Item) override;
  void AfterRun(TItem& Item) override;

 private:
  TUOExportQueryData FOperation;
};

using TJobExportQueryInterface = TJobInterface<TJobExportQuery>;

}  // namespace velkrund
