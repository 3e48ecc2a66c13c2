#pragma once

#include <string>

#include "jobs/policies/Questions.h"
#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// Files of a folder that are made afresh, one for each thing of a run.
class TFolderFiles {
 public:
  /// Existing: about files that are there. Files: borrowed.
  TFolderFiles(TFileSystem& Files, std::string Folder, TExisting Existing)
      : FFiles(Files), FFolder(std::move(Folder)), FExisting(Existing) {}

  /// Raises EFCreateError for a name that is no file's: one that leads out of the folder.
  std::string PathOf(const std::string& Name) const;
  /// Whether the file may be written: it is not there, or a policy or a person lets it be replaced. EPolicyUnanswered
  /// where nobody can be asked.
  bool MayWrite(const std::string& Path);

 private:
  TFileSystem& FFiles;
  const std::string FFolder;
  const TExisting FExisting;
  TRepeatedQuestion FQuestion;
};

}  // namespace velkrund
