#include "jobs/files/InputFile.h"

#include "jobs/files/FileOpening.h"

namespace velkrund {

TInputFile::TInputFile(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled, TWatch Watch)
    : FBytes(Files, Name, std::move(Canceled), Watch), FFile(std::make_unique<TEIFile>(FBytes.Files())) {
  FFile->SetFileName(FBytes.ShownName());
  FFile->SetReadonly(true);
}

void TInputFile::Open() {
  FBytes.Fill();
  OpenForSections(*FFile);
  // Whoever adds sections goes on with what is unfinished, and behind the end.
  const std::int64_t Unfinished = FFile->UnfinishedPosition();
  FBytes.WatchUntil(Unfinished < 0 ? FFile->Stream().Size() : Unfinished);
}

}  // namespace velkrund
