#pragma once

#include <string>
#include <vector>

#include "jobs/run/ImportJob.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Loads sections of localized strings of one file into a database.
class TJobImportResources final : public TImportJob {
 public:
  TJobImportResources() : TImportJob("resource") {}

  std::string FileName;                // "-": standard input
  std::vector<std::string> Sections;   // names, or indexes as decimal numbers; none: every section of strings
  std::string SectionID;               // for one section: the section of the database; empty: the one that it names
  std::vector<std::string> Languages;  // none: all of the file
  bool AddLanguages = false;           // that the database lacks

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return {FileName}; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
  bool NamesSections() const override { return !Sections.empty(); }
  // What others have written before a lock was given has to be seen behind it.
  TIsolationLevel Isolation() const override { return TIsolationLevel::ReadCommitted; }
};

/// Loads what languages are called out of the language sections of one file.
class TJobImportLanguages final : public TImportJob {
 public:
  TJobImportLanguages() : TImportJob("language") {}

  std::string FileName;               // "-": standard input
  std::vector<std::string> Sections;  // names, or indexes as decimal numbers; none: every language section

  void CheckSettings() const override { Require(FileName, "FileName"); }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  std::vector<std::string> Names() const override { return {FileName}; }
  TParts MakeParts() override;
  std::vector<int> Choose(TInputFile& Input) override;
  bool NamesSections() const override { return !Sections.empty(); }
  TIsolationLevel Isolation() const override { return TIsolationLevel::ReadCommitted; }
};

using TJobImportResourcesInterface = TJobInterface<TJobImportResources>;
using TJobImportLanguagesInterface = TJobInterface<TJobImportLanguages>;

}  // namespace velkrund
