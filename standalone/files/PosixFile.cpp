#include "standalone/files/PosixFile.h"

#include <system_error>

namespace velkrund {

std::string SystemReason(int Error) { return std::generic_category().message(Error); }

std::string FolderOf(const std::string& Path) {
  const std::size_t Slash = Path.rfind('/');
  return Slash == std::string::npos ? "." : Path.substr(0, Slash + 1);
}

void SyncFolder(const std::string& Path) {
  const std::string Folder = FolderOf(Path);
  const TDescriptor Descriptor(Uninterrupted([&] { return open(Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  // Some file systems cannot sync a folder and say so with EINVAL.
  if (Descriptor.Number() < 0 || (fsync(Descriptor.Number()) < 0 && errno != EINVAL))
    RaiseSystemError<EWriteError>("sync the folder of", Path);
}

bool LockForWriting(int Descriptor) {
  struct flock Lock = {};
  Lock.l_type = F_WRLCK;
  Lock.l_whence = SEEK_SET;
  return Uninterrupted([&] { return fcntl(Descriptor, F_OFD_SETLK, &Lock); }) == 0;
}

std::size_t TPosixFile::ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) {
  std::size_t Done = 0;
  while (Done < Count) {
    const ssize_t Got = Uninterrupted(
        [&] { return pread(Descriptor(), Buffer + Done, Count - Done, Position + static_cast<std::int64_t>(Done)); });
    if (Got < 0) RaiseSystemError<EReadError>("read", FPath);
    if (Got == 0) break;
    Done += static_cast<std::size_t>(Got);
  }
  return Done;
}

void TPosixFile::WriteAt(std::int64_t Position, std::string_view Data) {
  while (!Data.empty()) {
    const ssize_t Put = Uninterrupted([&] { return pwrite(Descriptor(), Data.data(), Data.size(), Position); });
    if (Put < 0) RaiseSystemError<EWriteError>("write", FPath);
    Position += Put;
    Data.remove_prefix(static_cast<std::size_t>(Put));
  }
}

struct stat TPosixFile::State() const {
  struct stat Status;
  if (fstat(Descriptor(), &Status) < 0) RaiseSystemError<EReadError>("get the size of", FPath);
  return Status;
}

std::int64_t TPosixFile::Size() { return State().st_size; }

std::int64_t TPosixFile::ChangeTime() {
  constexpr std::int64_t NanosecondsPerSecond = 1'000'000'000;
  const struct timespec Time = State().st_ctim;
  return Time.tv_sec * NanosecondsPerSecond + Time.tv_nsec;
}

void TPosixFile::SetSize(std::int64_t Size) {
  if (Uninterrupted([&] { return ftruncate(Descriptor(), Size); }) < 0)
    RaiseSystemError<EWriteError>("set the size of", FPath);
}

void TPosixFile::Sync() {
  if (Uninterrupted([&] { return fsync(Descriptor()); }) < 0) RaiseSystemError<EWriteError>("sync", FPath);
  if (std::exchange(FFolderToSync, false)) SyncFolder(FPath);
}

}  // namespace velkrund
