#include "standalone/files/PosixFileSystem.h"

#include <sys/stat.h>

#include <algorithm>

#include "standalone/files/FileMaking.h"
#include "standalone/files/PosixFile.h"

namespace velkrund {
namespace {

bool IsCreating(TFileMode Mode) { return Mode == TFileMode::Create || Mode == TFileMode::CreateNew; }

[[noreturn]] void RaiseNotOpened(TFileMode Mode, const std::string& Path, const std::string& Why, TErrorCode Code) {
  if (IsCreating(Mode)) RaiseFileError<EFCreateError>("create", Path, Why, Code);
  RaiseFileError<EFOpenError>("open", Path, Why, Code);
}

[[noreturn]] void RaiseNotOpened(TFileMode Mode, const std::string& Path, int Error) {
  std::string Why = SystemReason(Error);
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
  if (velkrund::LockForWriting(Descriptor)) return;
  if (!IsLockedByAnother()) RaiseNotOpened(Mode, Path, errno);
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

std::unique_ptr<TFileInMaking> TPosixFileSystem::MakeInPlaceOf(const std::string& Path) {
  return MakeFileInPlaceOf(Path);
}

std::unique_ptr<TFileInMaking> TPosixFileSystem::MakeNew(const std::string& Path, const std::string& Like) {
  return MakeNewFile(Path, Like);
}

void TPosixFileSystem::RemoveLeft(const std::string& Path) { RemoveLeftInMaking(Path); }

void TPosixFileSystem::Remove(const std::string& Path) {
  if (unlink(Path.c_str()) < 0 && errno != ENOENT) RaiseSystemError<EWriteError>("remove", Path);
}

}  // namespace velkrund
