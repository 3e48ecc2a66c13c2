#include "jobs/files/InputFiles.h"

namespace velkrund {

TInputFiles::TInputFiles(TFileSystem& Files, const std::vector<std::string>& Names, const TSpool::TCanceled& Canceled)
    : FFiles(Files) {
  for (const std::string& Name : Names)
    FInputs.push_back(std::make_unique<TInputFile>(Files, Name, Canceled, TWatch::Yes));
}

std::vector<std::string> TInputFiles::FileNames() const {
  std::vector<std::string> Result;
  for (const auto& Input : FInputs) Result.push_back(Input->Name());
  return Result;
}

std::unique_ptr<TFile> TInputFiles::Open(const std::string& Path, TFileMode Mode) {
  return Behind(Path).Open(Path, Mode);
}

TFileSystem& TInputFiles::Behind(const std::string& Path) const {
  for (const auto& Input : FInputs)
    if (Input->Name() == Path) return Input->Files();
  return FFiles;
}

}  // namespace velkrund
