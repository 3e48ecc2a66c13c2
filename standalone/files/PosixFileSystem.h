#pragma once

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// The operating system's files. A file opened for writing is locked against other writers, this program's own other
/// openings included, for as long as it is open; readers take no lock. Stateless.
class TPosixFileSystem final : public TFileSystem {
 public:
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override;
  void Replace(const std::string& From, const std::string& To) override;
  void Remove(const std::string& Path) override;
};

}  // namespace velkrund
