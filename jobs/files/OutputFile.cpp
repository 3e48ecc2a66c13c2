#include "jobs/files/OutputFile.h"

#include <filesystem>

#include "jobs/files/FileOpening.h"
#include "jobs/files/SectionRemoval.h"
#include "jobs/files/StrayMarkers.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// The first bytes, which tell what it is.
std::string StartOf(TFile& File) {
  constexpr std::size_t BytesLookedAt = 4096;
  std::string Result(BytesLookedAt, '\0');
  Result.resize(File.ReadAt(0, Result.data(), Result.size()));
  return Result;
}

}  // namespace

TOutputFile::TOutputFile(TFileSystem& Files, const std::string& Name, bool StrictText, TComplain Complain,
                         TOutputUse Use)
    : FFiles(Files),
      FComplain(std::move(Complain)),
      FName(Name),
      FShownName(Name == "-" ? "standard output" : Name),
      FUse(Use) {
  if (IsPipe(Name)) FSpool = std::make_unique<TSpool>(FFiles);
  FFile = std::make_unique<TEIFile>(FSpool ? *FSpool : FFiles);
  FFile->SetStrictText(StrictText);
  FFile->SetFileName(FShownName);
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
    if (FUse == TOutputUse::MakeAfresh)
      OpenBeside(std::move(Made));
    else
      OpenToAdd(std::move(Made));
  } catch (...) {
    Made.reset();
    FFile.reset();
    FBeside.reset();
    FOld.reset();
    if (FCreated) RemoveUnlessUsed();
    throw;
  }
}

void TOutputFile::OpenToAdd(std::unique_ptr<TFile> Made) {
  Made.reset();
  OpenForSections(*FFile);
  const std::optional<TForeignKind> Kind = ForeignKind(*FFile);
  // What is hidden could have the name of what is added.
  if (!Kind || Kind->Advice.empty()) RefuseHiddenSections(*FFile, FName);
  Refuse(Kind);
  RemoveLeftBeside(FFiles, FName);
}

/// What is there may be damaged; that it is one of ours is enough.
void TOutputFile::OpenBeside(std::unique_ptr<TFile> Made) {
  FOld = Made ? std::move(Made) : FFiles.Open(FName, TFileMode::ReadWrite);
  Refuse(ForeignStart(StartOf(*FOld)));
  RemoveLeftBeside(FFiles, FName);
  // A link stays one: it is the file behind it that is replaced.
  FPath = std::filesystem::canonical(FName).string();
  FBeside = std::make_unique<TFileBeside>(FFiles, FPath);
  FFile->SetFileName(FBeside->Path());
  FFile->Open();
}

/// Another program may have found the file meanwhile, and be writing into it, or be done already.
void TOutputFile::RemoveUnlessUsed() {
  try {
    const std::unique_ptr<TFile> Locked = FFiles.Open(FName, TFileMode::ReadWrite);
    if (Locked->Size() == 0) FFiles.Remove(FName);
  } catch (const std::exception& Error) {
    FComplain(LText("M_Velkrund_Jobs_EmptyFileMayBe", Error.what()).Local());
  }
}

void TOutputFile::Refuse(const std::optional<TForeignKind>& Kind) const {
  if (!Kind) return;
  const char* const Spared = FUse == TOutputUse::MakeAfresh ? "it is not replaced" : "nothing is added to it";
  throw EFOpenError(Format("File '%s' is there already and is %s: %s", FName, Kind->What, Spared),
                    {.Code = TErrorCode::FileKind, .File = FName});
}

TOutputFile::~TOutputFile() {
  if (!FCreated || (!FBeside && FFile->Sections().Count() > 0)) return;
  try {
    FFiles.Remove(FName);  // still locked
  } catch (const std::exception& Error) {
    FComplain(LText("M_Velkrund_Jobs_EmptyFileIs", Error.what()).Local());
  }
}

void TOutputFile::Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled) {
  FFile->Sync();
  if (!Replaced.empty()) RemoveSections(FFiles, *FFile, Replaced, Canceled);
  if (FBeside) {
    if (Canceled && Canceled()) throw EAbort("cancelled before the new file took its place");
    FBeside->PutAt(FPath);
    FCreated = false;
  }
  if (!FSpool || FFile->Sections().Count() == 0) return;
  FSpool->DrainToName(FName, Canceled);
}

}  // namespace velkrund
