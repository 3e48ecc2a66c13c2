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

/// What shows that a file was written to; always the same of what is none.
struct TMoment {
  std::int64_t Size = 0, Seconds = 0, Nanoseconds = 0;
  bool operator==(const TMoment&) const = default;
};

TMoment MomentOf(int Descriptor) {
  struct stat Status;
  if (fstat(Descriptor, &Status) != 0 || !S_ISREG(Status.st_mode)) return {};
  return {Status.st_size, Status.st_mtim.tv_sec, Status.st_mtim.tv_nsec};
}

}  // namespace

TInputBytes::TInputBytes(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled, TWatch Watch)
    : FName(Name),
      FShownName(Name == "-" ? "standard input" : Name),
      FCanceled(std::move(Canceled)),
      FSpool(IsPipe(Name) ? std::make_unique<TSpool>(Files) : nullptr),
      FWatched(!FSpool && Watch == TWatch::Yes ? std::make_unique<TWatchedFiles>(Files) : nullptr),
      FFiles(FSpool     ? FSpool->Files()
             : FWatched ? *FWatched
                        : Files) {}

void TInputBytes::Fill() {
  if (FSpool && FName == "-") {
    const TMoment Before = MomentOf(STDIN_FILENO);
    FSpool->FillFrom(STDIN_FILENO, "standard input", FCanceled);
    if (MomentOf(STDIN_FILENO) != Before)
      throw EReadError("The file that is standard input was written to while it was read",
                       {.Code = TErrorCode::FileInUse});
  }
  if (FSpool && FName != "-") FillFromPath(*FSpool, FName, FCanceled);
}

}  // namespace velkrund
