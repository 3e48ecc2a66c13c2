#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund::tests {

/// Files in memory that fail on command. Sharing follows TFileSystem: one writer at a time.
class TMemoryFiles final : public TFileSystem {
 public:
  /// What is to go wrong. Counters run down: 1 fails the next such operation, 0 none; they fail once.
  struct TFaults {
    int FailRead = 0;
    int FailWrite = 0;  // a failed write has stored the first half of its bytes
    int FailSetSize = 0;
    int FailSync = 0;
    std::int64_t Capacity = -1;  // bytes of all files together; a write beyond stores what fits and fails. -1: no limit
  };
  /// Operations that reached a file, failed ones included.
  struct TCounts {
    int Reads = 0;
    int Writes = 0;
    int Syncs = 0;
    std::int64_t LargestRead = 0;
  };

  TMemoryFiles();
  ~TMemoryFiles() override;

  // TFileSystem
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override;
  void Remove(const std::string& Path) override;

  /// Makes a file, or replaces its content.
  void Put(const std::string& Path, std::string_view Content);
  /// A file's content as it is on the disk; raises EFOpenError when there is none.
  std::string Get(const std::string& Path) const;
  /// A file's content as of its last sync: what a power failure would leave.
  std::string GetSynced(const std::string& Path) const;

  // Read and set between operations.
  TFaults Faults;
  TCounts Counts;

 private:
  struct TContent;
  class TOpenFile;

  const TContent& Existing(const std::string& Path) const;
  std::int64_t TotalSize() const;

  mutable std::mutex FLock;
  std::map<std::string, std::shared_ptr<TContent>> FFiles;
};

}  // namespace velkrund::tests
