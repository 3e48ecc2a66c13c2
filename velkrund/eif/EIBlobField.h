#pragma once

#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/ormtools/Records.h"

namespace velkrund {

/// How a BLOB stream treats the field's content when it opens.
enum class TBlobMode { Read, ReadWrite, Create };

/// A BLOB field's bytes in memory.
class TEIBlobStream final : public TMemoryStream {
 public:
  /// Field: borrowed until Close.
  void SetBlobField(TField* Field) { FBlobField = Field; }
  void SetMode(TBlobMode Mode) { FMode = Mode; }
  bool Opened() const { return FOpened; }

  /// Copies the field's bytes into memory (in create mode: starts empty). Does nothing when opened already or without a
  /// field.
  void Open();
  /// Forgets field and bytes; the mode is read-write again.
  void Close();

 private:
  bool FOpened = false;
  TBlobMode FMode = TBlobMode::ReadWrite;
  TField* FBlobField = nullptr;
};

/// A source in a BLOB field of a table. The field is written by ExportObject only: deleted sections reach it with the
/// next export. Without a field nothing happens.
class TEIBlobField final : public TEIFile {
 public:
  TEIBlobField();

  TField* BlobField() const { return FBlobField; }
  /// Field: borrowed, outlives the source.
  void SetBlobField(TField* Field) { FBlobField = Field; }

  void CreateFile() override;
  void ExportObject(TEIObject& Object, const std::string& Name) override;
  void ImportObject(TEIObject& Object) override;

 protected:
  void InternalOpen() override;

 private:
  explicit TEIBlobField(std::unique_ptr<TEIBlobStream> Stream);

  TEIBlobStream* FBlobStream;  // borrowed from the base
  TField* FBlobField = nullptr;
};

}  // namespace velkrund
