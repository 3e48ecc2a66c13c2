#include "standalone/files/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

constexpr mode_t NewFileRights = 0666;  // less the process's mask

std::string Reason(int Error) { return std::generic_category().message(Error); }

template <typename TError>
[[noreturn]] void Raise(const char* What, const std::string& Path, const std::string& Why,
                        TErrorCode Code = TErrorCode::Other) {
  throw TError(Format("Cannot %s file '%s': %s", What, Path, Why), {.Code = Code, .File = Path});
}

/// After a system call that has failed.
template <typename TError>
[[noreturn]] void RaiseSystemError(const char* What, const std::string& Path) {
  const int Error = errno;
  Raise<TError>(What, Path, Reason(Error), FileErrorCode(Error));
}

/// Repeats a system call that a signal has interrupted.
template <typename TCall>
auto Uninterrupted(TCall Call) {
  auto Result = Call();
  while (Result < 0 && errno == EINTR) Result = Call();
  return Result;
}

class TDescriptor {
 public:
  explicit TDescriptor(int Number) : FNumber(Number) {}
  TDescriptor(TDescriptor&& Other) noexcept : FNumber(std::exchange(Other.FNumber, -1)) {}
  TDescriptor& operator=(TDescriptor&&) = delete;
  ~TDescriptor() {
    if (FNumber >= 0) close(FNumber);
  }
  int Number() const { return FNumber; }

 private:
  int FNumber;
};

/// Makes a new or renamed entry of the file's folder last.
void SyncFolder(const std::string& Path) {
  const std::size_t Slash = Path.rfind('/');
  const std::string Folder = Slash == std::string::npos ? "." : Path.substr(0, Slash + 1);
  const TDescriptor Descriptor(Uninterrupted([&] { return open(Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  // Some file systems cannot sync a folder and say so with EINVAL.
  if (Descriptor.Number() < 0 || (fsync(Descriptor.Number()) < 0 && errno != EINVAL))
    RaiseSystemError<EWriteError>("sync the folder of", Path);
}

class TPosixFile final : public TFile {
 public:
  TPosixFile(TDescriptor Descriptor, std::string Path, bool IsNew)
      : FDescriptor(std::move(Descriptor)), FPath(std::move(Path)), FFolderToSync(IsNew) {}

  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override {
    std::size_t Done = 0;
    while (Done < Count) {
      const ssize_t Got = Uninterrupted([&] {
        return pread(FDescriptor.Number(), Buffer + Done, Count - Done, Position + static_cast<std::int64_t>(Done));
      });
      if (Got < 0) RaiseSystemError<EReadError>("read", FPath);
      if (Got == 0) break;
      Done += static_cast<std::size_t>(Got);
    }
    return Done;
  }

  void WriteAt(std::int64_t Position, std::string_view Data) override {
    while (!Data.empty()) {
      const ssize_t Put =
          Uninterrupted([&] { return pwrite(FDescriptor.Number(), Data.data(), Data.size(), Position); });
      if (Put < 0) RaiseSystemError<EWriteError>("write", FPath);
      Position += Put;
      Data.remove_prefix(static_cast<std::size_t>(Put));
    }
  }

  std::int64_t Size() override {
    struct stat Status;
    if (fstat(FDescriptor.Number(), &Status) < 0) RaiseSystemError<EReadError>("get the size of", FPath);
    return Status.st_size;
  }

  void SetSize(std::int64_t Size) override {
    if (Uninterrupted([&] { return ftruncate(FDescriptor.Number(), Size); }) < 0)
      RaiseSystemError<EWriteError>("set the size of", FPath);
  }

  void Sync() override {
    if (Uninterrupted([&] { return fsync(FDescriptor.Number()); }) < 0) RaiseSystemError<EWriteError>("sync", FPath);
    if (std::exchange(FFolderToSync, false)) SyncFolder(FPath);
  }

 private:
  TDescriptor FDescriptor;
  std::string FPath;
  bool FFolderToSync;  // the folder does not yet know the file for good
};

bool IsCreating(TFileMode Mode) { return Mode == TFileMode::Create || Mode == TFileMode::CreateNew; }

[[noreturn]] void RaiseNotOpened(TFileMode Mode, const std::string& Path, const std::string& Why, TErrorCode Code) {
  if (IsCreating(Mode)) Raise<EFCreateError>("create", Path, Why, Code);
  Raise<EFOpenError>("open", Path, Why, Code);
}

[[noreturn]] void RaiseNotOpened(TFileMode Mode, const std::string& Path, int Error) {
  std::string Why = Reason(Error);
  // What is missing is the folder.
  const std::string Folder = Path.substr(0, std::min(Path.rfind('/'), Path.size()));
  struct stat Status;
  if (IsCreating(Mode) && Error == ENOENT && Folder != Path && stat(Folder.c_str(), &Status) != 0)
    Why = Format("there is no folder '%s'", Folder);
  RaiseNotOpened(Mode, Path, Why, FileErrorCode(Error));
}

int OpenFlags(TFileMode Mode) {
  switch (Mode) {
    case TFileMode::Read:
      return O_RDONLY;
    case TFileMode::ReadWrite:
      return O_RDWR;
    case TFileMode::Create:
      return O_RDWR | O_CREAT;  // emptied later, under the lock
    case TFileMode::CreateNew:
      return O_RDWR | O_CREAT | O_EXCL;
  }
  return O_RDONLY;
}

void LockForWriting(int Descriptor, TFileMode Mode, const std::string& Path) {
  struct flock Lock = {};
  Lock.l_type = F_WRLCK;
  Lock.l_whence = SEEK_SET;
  if (Uninterrupted([&] { return fcntl(Descriptor, F_OFD_SETLK, &Lock); }) == 0) return;
  if (errno != EAGAIN && errno != EACCES) RaiseNotOpened(Mode, Path, errno);
  RaiseNotOpened(Mode, Path, "it is in use by another program", TErrorCode::FileInUse);
}

/// Whether the path still leads to the open file: another writer may have put a new one in its place meanwhile.
bool IsStillAt(const struct stat& Opened, const std::string& Path) {
  struct stat Now;
  return stat(Path.c_str(), &Now) == 0 && Now.st_dev == Opened.st_dev && Now.st_ino == Opened.st_ino;
}

}  // namespace

std::unique_ptr<TFile> TPosixFileSystem::Open(const std::string& Path, TFileMode Mode) {
  if (Path.find('\0') != std::string::npos)
    RaiseNotOpened(Mode, Path, "the name holds a character U+0000", TErrorCode::FileMissing);
  for (;;) {
    const bool IsNew = IsCreating(Mode) && !Exists(Path);
    TDescriptor Descriptor(
        Uninterrupted([&] { return open(Path.c_str(), OpenFlags(Mode) | O_CLOEXEC, NewFileRights); }));
    struct stat Status;
    if (Descriptor.Number() < 0 || fstat(Descriptor.Number(), &Status) < 0) RaiseNotOpened(Mode, Path, errno);
    if (S_ISDIR(Status.st_mode)) RaiseNotOpened(Mode, Path, EISDIR);
    if (Mode != TFileMode::Read) {
      LockForWriting(Descriptor.Number(), Mode, Path);
      if (!IsStillAt(Status, Path)) continue;
    }
    auto File = std::make_unique<TPosixFile>(std::move(Descriptor), Path, IsNew);
    if (Mode == TFileMode::Create && S_ISREG(Status.st_mode)) File->SetSize(0);
    return File;
  }
}

bool TPosixFileSystem::Exists(const std::string& Path) {
  struct stat Status;
  return stat(Path.c_str(), &Status) == 0;
}

void TPosixFileSystem::Replace(const std::string& From, const std::string& To) {
  if (rename(From.c_str(), To.c_str()) < 0)
    Raise<EWriteError>("replace", To, Format("%s (by '%s')", Reason(errno), From), FileErrorCode(errno));
  SyncFolder(To);
}

void TPosixFileSystem::Remove(const std::string& Path) {
  if (unlink(Path.c_str()) < 0 && errno != ENOENT) RaiseSystemError<EWriteError>("remove", Path);
}

}  // namespace velkrund
