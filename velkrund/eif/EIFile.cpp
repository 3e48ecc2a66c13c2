#include "velkrund/eif/EIFile.h"

#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

namespace {

// Headers are short and far apart: a small first read, which grows where a body is read through.
constexpr std::size_t FirstRead = 1024;

}  // namespace

TEIFile::TEIFile() : TEIFile(BaseMng().Files()) {}

TEIFile::TEIFile(TFileSystem& Files) : TEIFile(std::make_unique<TBufferedStream>(Files, FirstRead)) {}

TEIFile::TEIFile(std::unique_ptr<TBufferedStream> Stream) : FFileStream(Stream.get()) { FStream = std::move(Stream); }

TEIFile::TEIFile(std::unique_ptr<TStream> Stream) : FStream(std::move(Stream)) {}

TEIFile::~TEIFile() = default;

void TEIFile::MakeFile(TFileMode Mode) {
  if (!FFileStream) return;
  FFileStream->SetFileName(FFileName);
  FFileStream->Open(Mode);
}

void TEIFile::CreateFile() { MakeFile(TFileMode::Create); }
void TEIFile::CreateNewFile() { MakeFile(TFileMode::CreateNew); }

void TEIFile::InternalOpen() {
  if (!FFileStream) return;
  // A file that CreateFile has just made is open already, and locked: letting go of it would let another writer in.
  if (FFileStream->IsOpen() && !FReadonly && FFileStream->FileName() == FFileName) {
    FFileStream->SetPosition(0);
    return;
  }
  FFileStream->SetFileName(FFileName);
  FFileStream->Open(FReadonly ? TFileMode::Read : TFileMode::ReadWrite);
}

void TEIFile::Sync() {
  if (FFileStream) FFileStream->Sync();
}

}  // namespace velkrund
