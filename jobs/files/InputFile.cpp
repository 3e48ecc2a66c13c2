#include "jobs/files/InputFile.h"

#include "jobs/files/FileOpening.h"

namespace velkrund {

TInputFile::TInputFile(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled)
    : FBytes(Files, Name, std::move(Canceled)), FFile(std::make_unique<TEIFile>(FBytes.Files())) {
  FFile->SetFileName(FBytes.ShownName());
  FFile->SetReadonly(true);
}

void TInputFile::Open() {
  FBytes.Fill();
  OpenForSections(*FFile);
}

}  // namespace velkrund
