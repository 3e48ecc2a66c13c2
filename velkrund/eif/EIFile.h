#pragma once

#include <memory>
#include <string>

#include "velkrund/eif/EISource.h"
#include "velkrund/platform/ormtools/BufferedStream.h"

namespace velkrund {

/// A source in a disk file. An existing file is opened by Open; a new one is made by CreateFile and then opened. It is
/// closed with the object. Errors of the file come from its stream; during Open they are decorated like all others.
class TEIFile : public TEISource {
 public:
  /// On the installed platform's files.
  TEIFile();
  /// Files: borrowed, outlives the source.
  explicit TEIFile(TFileSystem& Files);
  ~TEIFile() override;

  const std::string& FileName() const { return FFileName; }
  void SetFileName(std::string Name) { FFileName = std::move(Name); }
  /// Read-only: others may read and write meanwhile. Otherwise other writers are refused.
  bool Readonly() const { return FReadonly; }
  void SetReadonly(bool Readonly) { FReadonly = Readonly; }

  /// Makes FileName new and empty; an existing file is emptied.
  void CreateFile() override;
  /// The same; an existing file is an EFCreateError.
  void CreateNewFile();
  TStream& Stream() override { return *FStream; }
  /// Returns when everything written has reached the disk. To be called before success is reported.
  void Sync();

 protected:
  /// For sources that keep their bytes elsewhere.
  explicit TEIFile(std::unique_ptr<TStream> Stream);

  void InternalOpen() override;
  std::optional<std::string> ErrorFileName() const override { return FFileName; }

 private:
  explicit TEIFile(std::unique_ptr<TBufferedStream> Stream);
  void MakeFile(TFileMode Mode);

  std::unique_ptr<TStream> FStream;
  TBufferedStream* FFileStream = nullptr;  // FStream where it is a file, borrowed from it
  std::string FFileName;
  bool FReadonly = false;
};

}  // namespace velkrund
