#pragma once

#include <memory>
#include <string>

#include "hosts/cli/Session.h"
#include "jobs/files/Spool.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// An export/import file to read from, without a lock. What comes through a pipe is kept in a temporary file.
class TInputFile {
 public:
  /// Name: a path, or "-" for standard input.
  TInputFile(const TSession& Session, const std::string& Name);
  /// Reads the headers. Of a faulty file those before the fault are there when the error comes.
  void Open();
  TEIFile& File() { return *FFile; }
  /// Where the file can be opened again under Name().
  TFileSystem& Files() const { return FFiles; }
  /// For messages.
  const std::string& Name() const { return FFile->FileName(); }

 private:
  std::string FName;
  std::unique_ptr<TSpool> FSpool;  // null: a file of its own
  TFileSystem& FFiles;
  std::unique_ptr<TEIFile> FFile;
};

}  // namespace velkrund
