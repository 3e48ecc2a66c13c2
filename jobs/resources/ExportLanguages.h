#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Saves what the languages of a database are called as sections of a file, one each.
class TJobExportLanguages final : public TExportJob {
 public:
  TJobExportLanguages() : TExportJob("language") {}

  std::vector<std::string> Languages;  // in any case; none: all of the database

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return Languages.size() != 1; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem& Item) override;

 private:
  class TExport final : public TExportUtilOperation {
   public:
    std::string Language;

   protected:
    std::unique_ptr<TEIObject> CreateEIObject() override;
  };

  TExport FOperation;
};

using TJobExportLanguagesInterface = TJobInterface<TJobExportLanguages>;

}  // namespace velkrund
