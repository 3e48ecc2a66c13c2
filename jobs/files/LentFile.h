#pragma once

#include <memory>
#include <string>

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// One file as a file system in which every name leads to it, so that it can be opened without having a name, and
/// messages can carry one that means something to people.
class TLentFile : public TFileSystem {
 public:
  /// File: borrowed. IsSynced: otherwise nobody can find it after a crash.
  TLentFile(TFile& File, bool IsSynced) : FFile(File), FIsSynced(IsSynced) {}

  // TFileSystem
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override;
  void Remove(const std::string& Path) override;

 private:
  TFile& FFile;
  const bool FIsSynced;
};

}  // namespace velkrund
