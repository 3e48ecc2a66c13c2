#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velkrund {

enum class TFileMode {
  Read,       // must exist; others may read and write meanwhile
  ReadWrite,  // must exist; other writers are refused
  Create,     // made, or emptied when it exists; other writers are refused (before anything is emptied)
  CreateNew,  // made; must not exist
};

/// An open file, addressed by position. Errors (EReadError, EWriteError) name the file and the system's reason.
class TFile {
 public:
  virtual ~TFile() = default;
  /// Reads up to Count bytes at Position; fewer only at the end of the file.
  virtual std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) = 0;
  /// Writes all of Data at Position.
  virtual void WriteAt(std::int64_t Position, std::string_view Data) = 0;
  virtual std::int64_t Size() = 0;
  virtual void SetSize(std::int64_t Size) = 0;
  /// Returns when what was written has reached the disk.
  virtual void Sync() = 0;
};

/// What the module needs of the operating system's files; the only way to them, and the seam at which they are made to
/// fail on purpose. Paths are UTF-8. Safe to call from several threads.
class TFileSystem {
 public:
  virtual ~TFileSystem() = default;
  /// Raises EFOpenError (or EFCreateError for the creating modes) with the path and the system's reason; another
  /// writer's lock is such a reason.
  virtual std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) = 0;
  virtual bool Exists(const std::string& Path) = 0;
  /// Puts From in the place of To in one step, and syncs the folder, so that after a crash one of the two is there
  /// whole.
  virtual void Replace(const std::string& From, const std::string& To) = 0;
  /// Removes a file; a missing one is no error.
  virtual void Remove(const std::string& Path) = 0;
};

}  // namespace velkrund
