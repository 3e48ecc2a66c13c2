#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/FileSystem.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

inline constexpr unsigned NewFileRights = 0666;  // less the process's mask

std::string SystemReason(int Error);

template <typename TError>
[[noreturn]] void RaiseFileError(const char* What, const std::string& Path, const std::string& Why,
                                 TErrorCode Code = TErrorCode::Other) {
  throw TError(Format("Cannot %s file '%s': %s", What, Path, Why), {.Code = Code, .File = Path});
}

/// After a system call that has failed.
template <typename TError>
[[noreturn]] void RaiseSystemError(const char* What, const std::string& Path) {
  const int Error = errno;
  RaiseFileError<TError>(What, Path, SystemReason(Error), FileErrorCode(Error));
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

/// The folder that a file of that path is in; ends with a slash unless it is the current one.
std::string FolderOf(const std::string& Path);

/// Makes a new or renamed entry of the file's folder last.
void SyncFolder(const std::string& Path);

/// Keeps other writers away for as long as the descriptor is open; false: errno says why not.
bool LockForWriting(int Descriptor);
/// Whether that was because another has it.
inline bool IsLockedByAnother() { return errno == EAGAIN || errno == EACCES; }

/// An open file of the operating system.
class TPosixFile final : public TFile {
 public:
  /// Path: for messages. IsNew: Sync has to make it known to the folder for good too.
  TPosixFile(TDescriptor Descriptor, std::string Path, bool IsNew)
      : FDescriptor(std::move(Descriptor)), FPath(std::move(Path)), FFolderToSync(IsNew) {}

  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override;
  void WriteAt(std::int64_t Position, std::string_view Data) override;
  std::int64_t Size() override;
  /// In nanoseconds. Not the time of the content, which anybody can set back.
  std::int64_t ChangeTime() override;
  void SetSize(std::int64_t Size) override;
  void Sync() override;

  int Descriptor() const { return FDescriptor.Number(); }

 private:
  struct stat State() const;

  TDescriptor FDescriptor;
  std::string FPath;
  bool FFolderToSync;
};

}  // namespace velkrund
