#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jobs/policies/ErrorPolicy.h"
#include "jobs/resources/ExportLanguages.h"
#include "jobs/resources/ExportResources.h"
#include "jobs/resources/FolderFiles.h"

namespace velkrund {

extern const TPropertyTable FolderJobProperties;  // those of a job on sections, and what follows

/// Exports into files of a folder, each made afresh, and read at one moment of the database.
class TExportToFolder : public TSectionsJob {
 public:
  std::string Folder;
  TExportReleaseVersion ReleaseVersion = TExportReleaseVersion::rv20;
  std::optional<TKvEncoding> Encoding;  // nothing: UTF-8, for rv17 ANSI

  void CheckSettings() const override;

 protected:
  void Run() final;
  /// Calls ExportInto for each file.
  virtual void ExportFiles() = 0;
  /// Name: of the file, without its ending. False: the run ends there.
  bool ExportInto(TExportJob& Job, const std::string& Name);

 private:
  bool Take(const TExportJob& Job);

  std::optional<TFolderFiles> FFiles;  // during a run
  std::optional<TErrorPolicy> FErrors;
};

/// Each section of strings into a file of its name.
class TJobExportResourceFiles final : public TExportToFolder {
 public:
  std::vector<std::string> SectionIDs;  // in any case; none: all of the database
  std::vector<std::string> Languages;   // none: all of the database

  std::string CommandName() const override { return "export resource"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void ExportFiles() override;
};

/// Languages into the file Languages.eif.
class TJobExportLanguagesFile final : public TExportToFolder {
 public:
  std::vector<std::string> Languages;  // in any case; none: all of the database

  std::string CommandName() const override { return "export language"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void ExportFiles() override;
};

using TJobExportResourceFilesInterface = TJobInterface<TJobExportResourceFiles>;
using TJobExportLanguagesFileInterface = TJobInterface<TJobExportLanguagesFile>;

}  // namespace velkrund
