#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "jobs/files/Spool.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// What shows that a file was written to. Size: -1 where nothing is known of it.
struct TFileState {
  std::uint64_t Device = 0, Number = 0;
  std::int64_t Size = -1, Seconds = 0, Nanoseconds = 0;

  bool operator==(const TFileState&) const = default;
};

/// An export/import file to read from, without a lock. What comes through a pipe is kept in a temporary file.
class TInputFile {
 public:
  /// Name: a path, or "-" for standard input. Files: borrowed. Canceled: asked while a pipe lets its reader wait; true
  /// raises EAbort.
  TInputFile(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled);
  /// Reads the headers. Of a faulty file those before the fault are there when the error comes.
  void Open();
  /// Raises EReadError where the file was written to since it was opened: what was read of it may be of two kinds.
  void RefuseChanged() const;
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
  TFileState FOpened;
};

}  // namespace velkrund
