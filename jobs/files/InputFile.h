#pragma once

#include <memory>
#include <string>

#include "jobs/files/InputBytes.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// An export/import file to read from.
class TInputFile {
 public:
  /// As TInputBytes.
  TInputFile(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled, TWatch Watch = TWatch::No);
  /// Reads the headers. Of a faulty file those before the fault are there when the error comes.
  void Open();
  /// As TInputBytes does.
  void RefuseChanged() const { FBytes.RefuseChanged(); }
  TEIFile& File() { return *FFile; }
  /// Where the file can be opened again under Name().
  TFileSystem& Files() const { return FBytes.Files(); }
  /// For messages.
  const std::string& Name() const { return FFile->FileName(); }

 private:
  TInputBytes FBytes;
  std::unique_ptr<TEIFile> FFile;
};

}  // namespace velkrund
