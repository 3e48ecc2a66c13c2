#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jobs/files/InputFile.h"

namespace velkrund {

/// Several export/import files to read from, as a file system for an operation that opens them itself by their names:
/// what came through a pipe stands there under the name that messages use.
class TInputFiles final : public TFileSystem {
 public:
  /// Names: paths, and "-" for standard input. The rest as for TInputFile.
  TInputFiles(TFileSystem& Files, const std::vector<std::string>& Names, const TSpool::TCanceled& Canceled);

  /// In the order of the names.
  const std::vector<std::unique_ptr<TInputFile>>& Inputs() const { return FInputs; }
  /// Under which the operation opens them.
  std::vector<std::string> FileNames() const;

  // TFileSystem
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override { return Behind(Path).Exists(Path); }
  void Remove(const std::string& Path) override { Behind(Path).Remove(Path); }

 private:
  TFileSystem& Behind(const std::string& Path) const;

  TFileSystem& FFiles;
  std::vector<std::unique_ptr<TInputFile>> FInputs;
};

}  // namespace velkrund
