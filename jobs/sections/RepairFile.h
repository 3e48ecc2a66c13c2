#pragma once

#include <string>

#include "jobs/files/SectionRepair.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Cuts an unfinished last section off a file, and keeps what it cut beside it.
class TJobRepairFile final : public TJob {
 public:
  std::string FileName;

  const TSectionRepair& Repair() const { return FRepair; }

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override { FRepair = RepairFile(Files(), FileName, Canceled()); }
  bool NeedsDatabase() const override { return false; }
  TDocument Document() const override;

 private:
  TSectionRepair FRepair;
};

using TJobRepairFileInterface = TJobInterface<TJobRepairFile>;

}  // namespace velkrund
