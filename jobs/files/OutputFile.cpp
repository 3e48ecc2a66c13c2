#include "jobs/files/OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "jobs/files/FileBeside.h"
#include "jobs/files/FileKind.h"
#include "jobs/files/FileOpening.h"
#include "jobs/files/SectionRemoval.h"
#include "jobs/files/StrayMarkers.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TOutputFile::TOutputFile(TFileSystem& Files, const std::string& Name, bool StrictText, TComplain Complain)
    : FFiles(Files), FComplain(std::move(Complain)), FName(Name) {
  if (IsPipe(Name)) FSpool = std::make_unique<TSpool>(FFiles);
  FFile = std::make_unique<TEIFile>(FSpool ? *FSpool : FFiles);
  FFile->SetStrictText(StrictText);
  FFile->SetFileName(Name == "-" ? "standard output" : Name);
  if (FSpool)
    FFile->Open();
  else
    OpenFile();
}

void TOutputFile::OpenFile() {
  // Made under the condition that it does not exist: another program may be making it at the same time.
  std::unique_ptr<TFile> Made;
  if (!FFiles.Exists(FName)) Made = FFiles.Open(FName, TFileMode::CreateNew);
  FCreated = Made != nullptr;
  try {
    if (Made) Made->Sync();
    Made.reset();
    OpenForSections(*FFile);
    RefuseForeignFile();
    RemoveLeftBeside(FFiles, FName);
  } catch (...) {
    Made.reset();
    FFile.reset();
    if (FCreated) RemoveUnlessUsed();
    throw;
  }
}

/// Another program may have found the file meanwhile, and be writing into it, or be done already.
void TOutputFile::RemoveUnlessUsed() {
  try {
    const std::unique_ptr<TFile> Locked = FFiles.Open(FName, TFileMode::ReadWrite);
    if (Locked->Size() == 0) FFiles.Remove(FName);
  } catch (const std::exception& Error) {
    FComplain(Format("an empty file may be left: %s", Error.what()));
  }
}

void TOutputFile::RefuseForeignFile() {
  const std::optional<TForeignKind> Kind = ForeignKind(*FFile);
  // What is hidden could have the name of what is added.
  if (!Kind || Kind->Advice.empty()) RefuseHiddenSections(*FFile, FName);
  if (Kind)
    throw EFOpenError(Format("File '%s' is there already and is %s: nothing is added to it", FName, Kind->What),
                      {.Code = TErrorCode::FileKind, .File = FName});
}

TOutputFile::~TOutputFile() {
  if (!FCreated || FFile->Sections().Count() > 0) return;
  try {
    FFiles.Remove(FName);  // still locked
  } catch (const std::exception& Error) {
    FComplain(Format("an empty file is left: %s", Error.what()));
  }
}

void TOutputFile::Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled) {
  FFile->Sync();
  if (!Replaced.empty()) RemoveSections(FFiles, *FFile, Replaced, Canceled);
  if (!FSpool || FFile->Sections().Count() == 0) return;
  if (FName == "-") {
    FSpool->DrainTo(STDOUT_FILENO, "standard output", Canceled);
    return;
  }
  const int Descriptor = open(FName.c_str(), O_WRONLY | O_CLOEXEC);
  if (Descriptor < 0) {
    const int Error = errno;
    throw EFOpenError(Format("Cannot open file '%s': %s", FName, std::generic_category().message(Error)),
                      {.Code = FileErrorCode(Error), .File = FName});
  }
  try {
    FSpool->DrainTo(Descriptor, FName, Canceled);
  } catch (...) {
    close(Descriptor);
    throw;
  }
  close(Descriptor);
}

}  // namespace velkrund
