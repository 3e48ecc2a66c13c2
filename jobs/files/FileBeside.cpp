#include "jobs/files/FileBeside.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

std::string NameBeside(const std::string& Original) { return Original + ".velkrund-new"; }

[[noreturn]] void RaiseSystemError(const char* What, const std::string& Path) {
  const int Error = errno;
  throw EWriteError(Format("Cannot %s '%s': %s", What, Path, std::generic_category().message(Error)),
                    {.Code = FileErrorCode(Error), .File = Path});
}

/// False: it has no permissions to copy, or they cannot be given.
bool CopyRights(const std::string& Original, int Descriptor) {
  struct stat Status;
  if (stat(Original.c_str(), &Status) != 0) return false;
  // The owner first, since changing it may take permissions away; only a privileged user can.
  if (fchown(Descriptor, Status.st_uid, Status.st_gid) != 0) errno = 0;
  return fchmod(Descriptor, Status.st_mode & 07777) == 0;
}

}  // namespace

TFileBeside::TFileBeside(TFileSystem& Files, const std::string& Original) : FFiles(Files), FPath(NameBeside(Original)) {
  FFiles.Remove(FPath);
  const int Descriptor = open(FPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (Descriptor < 0) RaiseSystemError("create file", FPath);
  const bool Permitted = CopyRights(Original, Descriptor);
  close(Descriptor);
  if (Permitted) return;
  unlink(FPath.c_str());
  RaiseSystemError("copy the permissions of", Original);
}

TFileBeside::~TFileBeside() {
  if (FReleased) return;
  try {
    FFiles.Remove(FPath);
  } catch (const std::exception& Error) {
    // The error on its way out is the one to tell; the next program that writes the original tries again.
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Error.what());
  }
}

void TFileBeside::PutAt(const std::string& Path) {
  FFiles.Replace(FPath, Path);
  FReleased = true;
}

void RemoveLeftBeside(TFileSystem& Files, const std::string& Original) {
  Files.Remove(NameBeside(Original));
  // Reached through a link, the one beside the file behind it.
  std::error_code Error;
  const std::filesystem::path Behind = std::filesystem::canonical(Original, Error);
  if (!Error) Files.Remove(NameBeside(Behind.string()));
}

}  // namespace velkrund
