#include "jobs/files/OutputFile.h"

#include "jobs/files/FileOpening.h"
#include "jobs/files/SectionRemoval.h"
#include "jobs/files/StrayMarkers.h"
#include "velkrund/platform/database/ApplicationManager.h"
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

TOutputFile::TOutputFile(TFileSystem& Files, const std::string& Name, bool StrictText, TOutputUse Use)
    : FFiles(Files), FName(Name), FShownName(Name == "-" ? "standard output" : Name), FUse(Use) {
  if (IsPipe(Name))
    FSpool = std::make_unique<TSpool>(FFiles);
  else
    OpenFile();
  FFile = std::make_unique<TEIFile>(FSpool ? FSpool->Files() : FLent ? *FLent : FFiles);
  FFile->SetStrictText(StrictText);
  FFile->SetFileName(FShownName);
  if (FSpool || FLent)
    FFile->Open();
  else
    OpenToAdd();
}

/// Where sections are not added to one that is there.
void TOutputFile::OpenFile() {
  const bool Exists = FFiles.Exists(FName);
  if (Exists && FUse == TOutputUse::AddTo) return;
  if (Exists) {
    FOld = FFiles.Open(FName, TFileMode::ReadWrite);
    // What is there may be damaged; that it is one of ours is enough.
    Refuse(ForeignStart(StartOf(*FOld)));
  }
  FMade = Exists ? FFiles.MakeInPlaceOf(FName) : FFiles.MakeNew(FName, {});
  FIsNamed = false;
  FLent = std::make_unique<TLentFile>(FMade->File(), true);
}

void TOutputFile::OpenToAdd() {
  OpenForSections(*FFile);
  const std::optional<TForeignKind> Kind = ForeignKind(*FFile);
  // What is hidden could have the name of what is added.
  if (!Kind || Kind->Advice.empty()) RefuseHiddenSections(*FFile, FName);
  Refuse(Kind);
  if (FFile->UnfinishedPosition() >= 0) FUnfinishedBytes = FFile->Stream().Size() - FFile->UnfinishedPosition();
  FFiles.RemoveLeft(FName);
}

void TOutputFile::Refuse(const std::optional<TForeignKind>& Kind) const {
  if (!Kind) return;
  const char* const Spared = FUse == TOutputUse::MakeAfresh ? "it is not replaced" : "nothing is added to it";
  throw EFOpenError(Format("File '%s' is there already and is %s: %s", FName, Kind->What, Spared),
                    {.Code = TErrorCode::FileKind, .File = FName});
}

TOutputFile::~TOutputFile() { DropHeld(); }

void TOutputFile::PrepareReplacing() {
  if (!FSpool && !FMade) FMade = FFiles.MakeInPlaceOf(FName);
}

void TOutputFile::Keep() {
  if (FIsNamed || FUse == TOutputUse::MakeAfresh || FFile->Sections().Count() == 0) return;
  if (FNotNamed) std::rethrow_exception(FNotNamed);
  try {
    FMade->Put();
    FIsNamed = true;
  } catch (const std::exception&) {
    FNotNamed = std::current_exception();
    throw;
  }
}

/// Where this fails they are unfinished, and cut off by the next one that adds to the file.
void TOutputFile::DropHeld() {
  if (!FFile || FSpool) return;
  try {
    FFile->DropHeld();
  } catch (const std::exception& Error) {
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Error.what());
  }
}

void TOutputFile::Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled) {
  if (!Replaced.empty()) return WriteWithout(*FMade, *FFile, Replaced, Canceled);
  FFile->FinishHeld();
  FFile->Stream().Flush();
  if (FSpool) {
    if (FFile->Sections().Count() > 0) FSpool->DrainToName(FName, Canceled);
    return;
  }
  if (FUse == TOutputUse::MakeAfresh) {
    if (Canceled && Canceled()) throw EAbort("cancelled before the new file took its place");
    return FMade->Put();
  }
  if (!FNotNamed) Keep();
  if (FIsNamed) FFile->Sync();
}

}  // namespace velkrund
