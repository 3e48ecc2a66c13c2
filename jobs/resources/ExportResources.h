#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/resources/SingleLResource.h"

namespace velkrund {

/// Saves sections of localized strings as sections of a file.
class TJobExportResources final : public TExportJob {
 public:
  TJobExportResources() : TExportJob("resource") {}

  std::vector<std::string> SectionIDs;  // in any case; none: all of the database
  std::vector<std::string> Languages;   // none: all of the database
  std::vector<std::string> Names;       // for one section: of its strings; none: all

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return SectionIDs.size() != 1; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem& Item) override;
  void AfterRun(TItem& Item) override;

 private:
  /// Writes the section that the item names.
  class TExport final : public TExportUtilOperation {
   public:
    std::string SectionID;
    TStringList Languages, Names;  // no names: all
    TLResourceReport Report;

   protected:
    std::unique_ptr<TEIObject> CreateEIObject() override;
  };

  void FindNames(const std::string& SectionID);

  TExport FOperation;
};

/// Saves the strings of several sections in one language as one section, for programs that read nothing else. It cannot
/// be imported.
class TJobExportSingleResources final : public TExportJob {
 public:
  TJobExportSingleResources() : TExportJob("single-resources") {}

  std::string SectionID;                // whose ID the keys leave out; names the section of the file
  std::vector<std::string> SectionIDs;  // whose strings are saved
  std::string Language;

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return false; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem&) override { return FOperation; }
  void AfterRun(TItem& Item) override;

 private:
  class TExport final : public TExportUtilOperation {
   public:
    std::string SectionID, Language;
    TStringList SectionIDs;
    TLResourceReport Report;

   protected:
    std::unique_ptr<TEIObject> CreateEIObject() override;
  };

  TExport FOperation;
};

using TJobExportResourcesInterface = TJobInterface<TJobExportResources>;
using TJobExportSingleResourcesInterface = TJobInterface<TJobExportSingleResources>;

}  // namespace velkrund
