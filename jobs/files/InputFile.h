#pragma once

#include <memory>
#include <string>

#include "jobs/files/Spool.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// An export/import file to read from, without a lock. What comes through a pipe is kept in a temporary file.
class TInputFile {
 public:
  /// Name: a path, or "-" for standard input. Files: borrowed. Canceled: asked while a pipe lets its reader wait; true
  /// raises EAbort.
  TInputFile(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled);
  /// Reads the headers. Of a faulty file those before the fault are there when the error comes.
  void Open();
  TEIFile& File() { return *FFile; }
  /// Where the file can be opened again under Name().
  TFileSystem& Files() const { return FFiles; }
  /// For messages.
  const std::string& Name() const { return FFile->FileName(); }

 private:
  std::string FName;
  TSpool::TCanceled FCanceled;
  std::unique_ptr<TSpool> FSpool;  // null: a file of its own
  TFileSystem& FFiles;
  std::unique_ptr<TEIFile> FFile;
};

}  // namespace velkrund
