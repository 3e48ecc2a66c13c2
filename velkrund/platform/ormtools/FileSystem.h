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
  /// When it was last written to, by a clock that starts anywhere; always the same where that cannot be told.
  virtual std::int64_t ChangeTime() { return 0; }
  virtual void SetSize(std::int64_t Size) = 0;
  /// Returns when what was written has reached the disk.
  virtual void Sync() = 0;
};

/// A new file on its way to a name. Nobody finds it under that name before Put. It is locked against other writers, and
/// gone with the object unless it was put; a process that is killed leaves at most what RemoveLeft removes.
class TFileInMaking {
 public:
  virtual ~TFileInMaking() = default;
  /// To be written; after Put it is the file of that name, still open.
  virtual TFile& File() = 0;
  /// Returns when what was written has reached the disk, the file has its name, got in one step, and the folder knows
  /// it for good: after a crash the old file is there whole, or the new one. To be called once. Raises EWriteError, or
  /// EFCreateError for a file that was to be new, also where somebody has put another file there meanwhile, which
  /// stays.
  virtual void Put() = 0;
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
  /// A file that is to take the place of the one at Path, or behind it where Path is a link. The caller has that one
  /// open for writing, which keeps others away. It gets that one's rights: mode, owner, access list, attributes of
  /// users. What would stand in the way is raised here, before anything is written: a folder that takes no new file,
  /// rights that cannot be kept, further names of the old file, which would not lead to the new one, another file at
  /// Path than the open one. EWriteError.
  virtual std::unique_ptr<TFileInMaking> MakeInPlaceOf(const std::string& Path);
  /// A file that is to be at Path, where none is; one that is there, or a folder that takes none, is EFCreateError.
  /// Like: the file whose rights it gets; empty: those of any new file.
  virtual std::unique_ptr<TFileInMaking> MakeNew(const std::string& Path, const std::string& Like);
  /// Removes what was left of a file in the making for Path by a process that was killed. Both of the above do so too.
  virtual void RemoveLeft(const std::string& Path);
  /// Removes a file; a missing one is no error.
  virtual void Remove(const std::string& Path) = 0;
};

}  // namespace velkrund
