#pragma once

#include <string>

#include "jobs/files/SectionRepair.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Mends line ends that are a line feed alone, and cuts an unfinished last section off, which it keeps beside the file.
class TJobRepairFile final : public TJob {
 public:
  std::string FileName;

  const TSectionRepair& Repair() const { return FRepair; }

  void CheckSettings() const override;
  std::string CommandName() const override { return "file repair"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override { FRepair = {}; }
  bool NeedsDatabase() const override { return false; }
  std::string_view Schema() const override { return "repair"; }
  void Describe(TDocument& Document) const override;

 private:
  std::string FFile;  // of the last run
  TSectionRepair FRepair;
};

using TJobRepairFileInterface = TJobInterface<TJobRepairFile>;

}  // namespace velkrund
