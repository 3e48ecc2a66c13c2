#pragma once

#include <string>
#include <vector>

#include "jobs/resources/TextsJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Deletes sections of localized strings, in all languages. The policy Yes, or a person, has to agree.
class TJobDeleteResources final : public TTextsJob {
 public:
  std::vector<std::string> SectionIDs;  // in any case

  void CheckSettings() const override;
  std::string CommandName() const override { return "delete resource"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;

 private:
  void DeleteOne(TItem& Item);
};

/// Deletes single strings, in all languages. The policy Yes, or a person, has to agree.
class TJobDeleteStrings final : public TTextsJob {
 public:
  std::vector<std::string> StringIDs;  // in any case

  void CheckSettings() const override;
  std::string CommandName() const override { return "delete string"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
};

using TJobDeleteResourcesInterface = TJobInterface<TJobDeleteResources>;
using TJobDeleteStringsInterface = TJobInterface<TJobDeleteStrings>;

}  // namespace velkrund
