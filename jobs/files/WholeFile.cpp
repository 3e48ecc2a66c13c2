#include "jobs/files/WholeFile.h"

#include <filesystem>

#include "jobs/files/FileOpening.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TWholeFile::TWholeFile(TFileSystem& Files, const std::string& Name)
    : FFiles(Files), FName(Name), FShownName(Name == "-" ? "standard output" : Name) {
  if (IsPipe(Name)) FSpool = std::make_unique<TSpool>(Files);
  FStream = std::make_unique<TBufferedStream>(FSpool ? *FSpool : Files);
  FStream->SetFileName(FShownName);
  if (FSpool)
    FStream->Open(TFileMode::ReadWrite);
  else
    OpenBeside();
}

void TWholeFile::OpenBeside() {
  // Made under the condition that it does not exist: another program may be making it at the same time.
  FCreated = !FFiles.Exists(FName);
  FOld = FFiles.Open(FName, FCreated ? TFileMode::CreateNew : TFileMode::ReadWrite);
  try {
    RemoveLeftBeside(FFiles, FName);
    // A link stays one: it is the file behind it that is replaced.
    FPath = std::filesystem::canonical(FName).string();
    FBeside = std::make_unique<TFileBeside>(FFiles, FPath);
    FStream->SetFileName(FBeside->Path());
    FStream->Open(TFileMode::ReadWrite);
  } catch (...) {
    FBeside.reset();
    if (FCreated) FFiles.Remove(FName);
    throw;
  }
}

TWholeFile::~TWholeFile() {
  if (!FCreated) return;
  try {
    FFiles.Remove(FName);  // still locked
  } catch (const std::exception& Error) {
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Error.what());
  }
}

void TWholeFile::Finish(const TSpool::TCanceled& Canceled) {
  FStream->Flush();
  if (Canceled && Canceled()) throw EAbort("cancelled before the file was finished");
  if (FSpool) return FSpool->DrainToName(FName, Canceled);
  FStream->Sync();
  FStream->Close();
  FBeside->PutAt(FPath);
  FCreated = false;
}

}  // namespace velkrund
