#pragma once

#include <memory>
#include <string>

#include "jobs/files/LentFile.h"
#include "jobs/files/Spool.h"
#include "velkrund/platform/ormtools/BufferedStream.h"

namespace velkrund {

/// A file of another kind than export/import files that is written from its beginning to its end. It gets its name in
/// one step when it is finished: until then, and without Finish, what was there stays as it was. Or a pipe, which gets
/// everything at the end.
class TWholeFile {
 public:
  /// Name: a path, or "-" for standard output. A file that is there is locked against other writers. Files:
  /// borrowed.
  TWholeFile(TFileSystem& Files, const std::string& Name);
  TWholeFile(const TWholeFile&) = delete;
  TWholeFile& operator=(const TWholeFile&) = delete;

  TStream& Stream() { return *FStream; }
  /// For messages.
  const std::string& Name() const { return FShownName; }
  /// Hands everything to the disk, or to the pipe. Canceled: asked before; true raises EAbort.
  void Finish(const TSpool::TCanceled& Canceled);

 private:
  void Make();

  TFileSystem& FFiles;
  const std::string FName, FShownName;
  std::unique_ptr<TSpool> FSpool;  // null: a file of its own
  std::unique_ptr<TFile> FOld;     // whose place is to be taken; keeps other writers away. Null: there is none
  std::unique_ptr<TFileInMaking> FMade;
  std::unique_ptr<TLentFile> FLent;  // of what is made
  std::unique_ptr<TBufferedStream> FStream;
};

}  // namespace velkrund
