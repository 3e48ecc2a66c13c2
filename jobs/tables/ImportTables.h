#pragma once

#include <string>
#include <vector>

#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

extern const TPropertyTable ImportRowsProperties;  // those of a job on sections, and what follows

/// Loads sections of one file that hold rows into tables.
class TImportRowsJob : public TImportJob {
 public:
  std::string FileName;               // "-": standard input
  std::vector<std::string> Sections;  // names, or indexes as decimal numbers; none: all of the kind
  std::string TableName;              // for one section: the table to load; empty: the one that the section names, or
                                      // that a person chooses for a query
  TStringPairs Mapping;               // fields of the file, and those of the table that they fill; others go by name
  std::vector<std::string> Fields;    // the only ones to load, as the file has them; none: all

  void CheckSettings() const override { Require(FileName, "FileName"); }

 protected:
  /// Content: of the sections, for messages.
  TImportRowsJob(const char* Kind, TSectionRole Role, const char* Content)
      : TImportJob(Kind), FRole(Role), FContent(Content) {}

  std::vector<std::string> Names() const final { return {FileName}; }
  TParts MakeParts() final;
  std::vector<int> Choose(TInputFile& Input) final;
  bool NamesSections() const final { return !Sections.empty() || !TableName.empty(); }

 private:
  const TSectionRole FRole;
  const char* const FContent;
};

/// Those of tables.
class TJobImportTables final : public TImportRowsJob {
 public:
  TJobImportTables() : TImportRowsJob("table", TSectionRole::TableData, "table data") {}
  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;
};

using TJobImportTablesInterface = TJobInterface<TJobImportTables>;

}  // namespace velkrund
