#include "jobs/files/WholeFile.h"

#include "jobs/files/FileOpening.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TWholeFile::TWholeFile(TFileSystem& Files, const std::string& Name)
    : FFiles(Files), FName(Name), FShownName(Name == "-" ? "standard output" : Name) {
  if (IsPipe(Name))
    FSpool = std::make_unique<TSpool>(Files);
  else
    Make();
  FStream = std::make_unique<TBufferedStream>(FSpool ? FSpool->Files() : *FLent);
  FStream->SetFileName(FShownName);
  FStream->Open(TFileMode::ReadWrite);
}

void TWholeFile::Make() {
  if (FFiles.Exists(FName)) FOld = FFiles.Open(FName, TFileMode::ReadWrite);
  FMade = FOld ? FFiles.MakeInPlaceOf(FName) : FFiles.MakeNew(FName, {});
  FLent = std::make_unique<TLentFile>(FMade->File(), true);
}

void TWholeFile::Finish(const TSpool::TCanceled& Canceled) {
  FStream->Flush();
  if (Canceled && Canceled()) throw EAbort("cancelled before the file was finished");
  if (FSpool) return FSpool->DrainToName(FName, Canceled);
  FStream->Close();
  FMade->Put();
}

}  // namespace velkrund
