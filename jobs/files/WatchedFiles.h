#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// Files to read from without a lock, which notices when somebody else writes to what was read. All that open one name
/// get the same open file, whatever stands at its path meanwhile; of each of its blocks a checksum is kept.
///
/// A block that is read again has to be as it was. Where size or time of the file have changed, all blocks that were
/// read are compared: at once where the file has not grown, else as often as doubles the reading at most, and when
/// RefuseChanged asks. So what is added behind is no change. What cannot be seen: bytes that were changed and are back,
/// and a change in the very tick of the file system's clock in which the file was opened or last compared, unless it
/// changes the size. Used by one thread at a time.
///
/// Writers add behind, and finish what they added by a byte at its beginning: WatchUntil says where that is.
class TWatchedFiles final : public TFileSystem {
 public:
  /// Files: borrowed.
  explicit TWatchedFiles(TFileSystem& Files);
  ~TWatchedFiles() override;

  /// What stands in the file from this position on is no longer watched. Raises as RefuseChanged does.
  void WatchUntil(std::int64_t Position);
  /// Raises EReadError where a block that was read is no longer as it was.
  void RefuseChanged();

  // TFileSystem; only for reading are files watched
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override { return FFiles.Exists(Path); }
  void Remove(const std::string& Path) override { FFiles.Remove(Path); }

 private:
  class TSource;
  class TView;

  TFileSystem& FFiles;
  std::shared_ptr<TSource> FSource;  // null: nothing was opened yet
};

}  // namespace velkrund
