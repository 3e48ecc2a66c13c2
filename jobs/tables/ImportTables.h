#pragma once

#include <string>
#include <vector>

#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Loads table data sections of one file into tables.
class TJobImportTables final : public TImportJob {
 public:
  TJobImportTables() : TImportJob("table") {}

  std::string FileName;               // "-": standard input
  std::vector<std::string> Sections;  // names, or indexes as decimal numbers; none: every table data section
  std::string TableName;              // for one section: the table to load; empty: the one that the section names
  std::vector<std::string> Fields;    // the only ones to load; none: all

  void CheckSettings() const override { Require(FileName, "FileName"); }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return {FileName}; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
};

using TJobImportTablesInterface = TJobInterface<TJobImportTables>;

}  // namespace velkrund
