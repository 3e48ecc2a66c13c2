#include "velkrund/eif/EIBlobField.h"

namespace velkrund {

void TEIBlobStream::Open() {
  if (FOpened || !FBlobField) return;
  Clear();
  if (FMode != TBlobMode::Create) {
    std::string Bytes(static_cast<std::size_t>(FBlobField->GetDataSize()), '\0');
    FBlobField->GetData(Bytes.data(), static_cast<std::int64_t>(Bytes.size()));
    Write(Bytes);
    SetPosition(0);
  }
  FOpened = true;
}

void TEIBlobStream::Close() {
  FBlobField = nullptr;
  Clear();
  FMode = TBlobMode::ReadWrite;
  FOpened = false;
}

TEIBlobField::TEIBlobField() : TEIBlobField(std::make_unique<TEIBlobStream>()) {}

TEIBlobField::TEIBlobField(std::unique_ptr<TEIBlobStream> Stream)
    : TEIFile(std::unique_ptr<TStream>(Stream.get())), FBlobStream(Stream.release()) {}

void TEIBlobField::CreateFile() {
  FBlobStream->Close();
  FBlobStream->SetBlobField(FBlobField);
  FBlobStream->SetMode(TBlobMode::Create);
  FBlobStream->Open();
}

void TEIBlobField::InternalOpen() {
  FBlobStream->SetBlobField(FBlobField);
  FBlobStream->SetMode(Readonly() ? TBlobMode::Read : TBlobMode::ReadWrite);
  FBlobStream->Open();
}

void TEIBlobField::ExportObject(TEIObject& Object, const std::string& Name) {
  if (!FBlobField) return;
  TEIFile::ExportObject(Object, Name);
  FBlobStream->SetPosition(0);
  FBlobField->SetData(FBlobStream->Memory());
}

void TEIBlobField::ImportObject(TEIObject& Object) {
  if (!FBlobField || !FBlobStream->Opened()) return;
  TEIFile::ImportObject(Object);
}

}  // namespace velkrund
