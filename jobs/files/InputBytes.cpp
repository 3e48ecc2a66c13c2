#include "jobs/files/InputBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "jobs/files/FileOpening.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

void FillFromPath(TSpool& Spool, const std::string& Path, const TSpool::TCanceled& Canceled) {
  const int Descriptor = open(Path.c_str(), O_RDONLY | O_CLOEXEC);
  if (Descriptor < 0) {
    const int Error = errno;
    if (Canceled && Canceled()) throw EAbort("Cancelled while waiting for a pipe");
    throw EFOpenError(Format("Cannot open file '%s': %s", Path, std::generic_category().message(Error)),
                      {.Code = FileErrorCode(Error), .File = Path});
  }
  try {
    Spool.FillFrom(Descriptor, Path, Canceled);
  } catch (...) {
    close(Descriptor);
    throw;
  }
  close(Descriptor);
}

TFileState StateOf(const std::string& Path) {
  struct stat State = {};
  if (stat(Path.c_str(), &State) != 0) return {};
  return {State.st_dev, State.st_ino, State.st_size, State.st_mtim.tv_sec, State.st_mtim.tv_nsec};
}

}  // namespace

TInputBytes::TInputBytes(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled)
    : FName(Name),
      FShownName(Name == "-" ? "standard input" : Name),
      FCanceled(std::move(Canceled)),
      FSpool(IsPipe(Name) ? std::make_unique<TSpool>(Files) : nullptr),
      FFiles(FSpool ? *FSpool : Files) {}

void TInputBytes::Fill() {
  if (FSpool && FName == "-") FSpool->FillFrom(STDIN_FILENO, "standard input", FCanceled);
  if (FSpool && FName != "-") FillFromPath(*FSpool, FName, FCanceled);
  if (!FSpool) FOpened = StateOf(FName);
}

void TInputBytes::RefuseChanged() const {
  if (FSpool || FOpened.Size < 0) return;
  const TFileState Now = StateOf(FName);
  // Another file of that name, or none, leaves the one that is open as it was.
  if (Now.Device != FOpened.Device || Now.Number != FOpened.Number || Now == FOpened) return;
  throw EReadError(Format("File '%s' was written to while it was read", FName),
                   {.Code = TErrorCode::FileInUse, .File = FName});
}

}  // namespace velkrund
