#pragma once

#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/dictionary/GeneratorDataOperations.h"

namespace velkrund {

/// Saves where generators stand as sections of a file.
class TJobExportGenerators final : public TExportJob {
 public:
  TJobExportGenerators() : TExportJob("generator") {}

  std::vector<std::string> Names;  // in any case, with their schemas where needed; none: all of the database

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return Names.size() != 1; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem& Item) override;
  void AfterRun(TItem& Item) override;

 private:
  TItem Planned(const std::string& Name) const;

  TUOExportGeneratorData FOperation;
};

using TJobExportGeneratorsInterface = TJobInterface<TJobExportGenerators>;

}  // namespace velkrund
