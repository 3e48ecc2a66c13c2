#pragma once

#include <string>
#include <vector>

#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Loads everything that files hold: of all files together the structures first, then the rows of tables, then the
/// database objects that the structures describe.
class TJobImportFiles final : public TImportJob {
 public:
  TJobImportFiles() : TImportJob("file") {}

  std::vector<std::string> FileNames;  // in this order; "-": standard input

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return FileNames; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
  bool GoesOnWithoutFile() const override { return true; }
};

using TJobImportFilesInterface = TJobInterface<TJobImportFiles>;

}  // namespace velkrund
