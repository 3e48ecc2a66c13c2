#include "hosts/cli/InputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "hosts/cli/Interrupt.h"
#include "jobs/files/FileOpening.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

void FillFromPath(TSpool& Spool, const std::string& Path) {
  const int Descriptor = open(Path.c_str(), O_RDONLY | O_CLOEXEC);
  if (Descriptor < 0) {
    if (TInterrupt::Requested()) throw EAbort("Cancelled while waiting for a pipe");
    throw EFOpenError(Format("Can not open file '%s': %s", Path, std::generic_category().message(errno)));
  }
  try {
    Spool.FillFrom(Descriptor, Path, &TInterrupt::Requested);
  } catch (...) {
    close(Descriptor);
    throw;
  }
  close(Descriptor);
}

}  // namespace

TInputFile::TInputFile(const TSession& Session, const std::string& Name)
    : FName(Name),
      FSpool(IsPipe(Name) ? std::make_unique<TSpool>(Session.Files()) : nullptr),
      FFiles(FSpool ? *FSpool : Session.Files()),
      FFile(std::make_unique<TEIFile>(FFiles)) {
  FFile->SetFileName(Name == "-" ? "standard input" : Name);
  FFile->SetReadonly(true);
}

void TInputFile::Open() {
  if (FSpool && FName == "-") FSpool->FillFrom(STDIN_FILENO, "standard input", &TInterrupt::Requested);
  if (FSpool && FName != "-") FillFromPath(*FSpool, FName);
  OpenPlainly(*FFile);
}

}  // namespace velkrund
