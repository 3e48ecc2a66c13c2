#pragma once

#include <string>
#include <vector>

#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Moves generators to where the sections of a file say that they stood: onwards alone, unless it is told otherwise.
class TJobImportGenerators final : public TImportJob {
 public:
  TJobImportGenerators() : TImportJob("generator") {}

  std::string FileName;               // "-": standard input
  std::vector<std::string> Sections;  // names, or indexes as decimal numbers; none: every generator data section
  bool SetGenerators = false;         // backwards too

  void CheckSettings() const override { Require(FileName, "FileName"); }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return {FileName}; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
  bool NamesSections() const override { return !Sections.empty(); }
};

using TJobImportGeneratorsInterface = TJobInterface<TJobImportGenerators>;

}  // namespace velkrund
