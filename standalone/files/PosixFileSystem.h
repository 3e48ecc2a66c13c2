#pragma once

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// The operating system's files. A file opened for writing is locked against other writers, this program's own other
/// openings included, for as long as it is open; readers take no lock. Stateless.
class TPosixFileSystem final : public TFileSystem {
 public:
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override;
  std::unique_ptr<TFileInMaking> MakeInPlaceOf(const std::string& Path) override;
  std::unique_ptr<TFileInMaking> MakeNew(const std::string& Path, const std::string& Like) override;
  void RemoveLeft(const std::string& Path) override;
  void Remove(const std::string& Path) override;
};

}  // namespace velkrund
