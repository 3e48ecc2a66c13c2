#include "jobs/files/Spool.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 256 * 1024;
constexpr int PollMilliseconds = 100;

std::string Reason(int Error) { return std::generic_category().message(Error); }

/// Waits until the descriptor can be used, for as long as nobody cancels.
void WaitFor(int Descriptor, short Events, const TSpool::TCanceled& Canceled) {
  for (;;) {
    if (Canceled && Canceled()) throw EAbort("Cancelled while waiting for a pipe");
    struct pollfd Poll = {Descriptor, Events, 0};
    const int Ready = poll(&Poll, 1, PollMilliseconds);
    if (Ready > 0) return;
    // What cannot be polled tells its trouble when it is used.
    if (Ready < 0 && errno != EINTR) return;
  }
}

/// A new, empty file under a name of its own.
std::string MakeTemporaryFile() {
  const char* Folder = getenv("TMPDIR");
  std::string Path = Folder && *Folder ? Folder : "/tmp";
  Path += "/velkrund-XXXXXX";
  const int Descriptor = mkstemp(Path.data());
  if (Descriptor < 0) {
    const int Error = errno;
    throw EFCreateError(
        Format("Cannot create a temporary file '%s': %s. TMPDIR names the folder to use", Path, Reason(Error)),
        {.Code = FileErrorCode(Error), .File = Path});
  }
  close(Descriptor);
  return Path;
}

}  // namespace

TSpool::TSpool(TFileSystem& Files) {
  const std::string Path = MakeTemporaryFile();
  try {
    FFile = Files.Open(Path, TFileMode::ReadWrite);
  } catch (...) {
    unlink(Path.c_str());
    throw;
  }
  Files.Remove(Path);
  FFiles = std::make_unique<TLentFile>(*FFile, false);
}

TSpool::~TSpool() = default;

void TSpool::FillFrom(int Descriptor, const std::string& Name, const TCanceled& Canceled) {
  std::vector<char> Block(BlockSize);
  std::int64_t Position = FFile->Size();
  for (;;) {
    WaitFor(Descriptor, POLLIN, Canceled);
    const ssize_t Got = read(Descriptor, Block.data(), Block.size());
    if (Got == 0) return;
    if (Got > 0) {
      FFile->WriteAt(Position, {Block.data(), static_cast<std::size_t>(Got)});
      Position += Got;
    } else if (errno != EINTR && errno != EAGAIN) {
      throw EReadError(Format("Cannot read %s: %s", Name, Reason(errno)), {.Code = FileErrorCode(errno)});
    }
  }
}

void TSpool::DrainTo(int Descriptor, const std::string& Name, const TCanceled& Canceled) {
  std::vector<char> Block(BlockSize);
  std::int64_t Position = 0;
  while (const std::size_t Got = FFile->ReadAt(Position, Block.data(), Block.size())) {
    WriteToDescriptor(Descriptor, {Block.data(), Got}, Name, Canceled);
    Position += static_cast<std::int64_t>(Got);
  }
}

void TSpool::DrainToName(const std::string& Name, const TCanceled& Canceled) {
  if (Name == "-") return DrainTo(STDOUT_FILENO, "standard output", Canceled);
  const int Descriptor = open(Name.c_str(), O_WRONLY | O_CLOEXEC);
  if (Descriptor < 0) {
    const int Error = errno;
    if (Canceled && Canceled()) throw EAbort("Cancelled while waiting for a pipe");
    throw EFOpenError(Format("Cannot open file '%s': %s", Name, Reason(Error)),
                      {.Code = FileErrorCode(Error), .File = Name});
  }
  try {
    DrainTo(Descriptor, Name, Canceled);
  } catch (...) {
    close(Descriptor);
    throw;
  }
  close(Descriptor);
}

namespace {

[[noreturn]] void RaiseNotWritten(const std::string& Name, int Error) {
  throw EWriteError(Format("Cannot write to %s: %s", Name, Reason(Error)), {.Code = FileErrorCode(Error)});
}

}  // namespace

void WriteToDescriptor(int Descriptor, std::string_view Data, const std::string& Name,
                       const TSpool::TCanceled& Canceled) {
  while (!Data.empty()) {
    WaitFor(Descriptor, POLLOUT, Canceled);
    const ssize_t Put = write(Descriptor, Data.data(), Data.size());
    if (Put >= 0)
      Data.remove_prefix(static_cast<std::size_t>(Put));
    else if (errno != EINTR && errno != EAGAIN)
      RaiseNotWritten(Name, errno);
  }
}

}  // namespace velkrund
