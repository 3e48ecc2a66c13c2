#pragma once

#include <memory>
#include <string>

#include "jobs/files/Spool.h"
#include "jobs/files/WatchedFiles.h"

namespace velkrund {

/// Whether a file is to be the same from its first byte read to its last.
enum class TWatch { No, Yes };

/// What a file that is to be read consists of, whatever it is. There is no lock on it. What comes through a pipe is
/// kept in a temporary file, so that positions can be sought.
class TInputBytes {
 public:
  /// Name: a path, or "-" for standard input. Files: borrowed. Canceled: asked while a pipe lets its reader wait; true
  /// raises EAbort. Watch: RefuseChanged will be asked.
  TInputBytes(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled, TWatch Watch);
  /// Before anything is read: reads a pipe to its end.
  void Fill();
  /// Raises EReadError where what was read of the file was written to meanwhile: it may be of two kinds. Reading it
  /// raises that too, as soon as it is noticed.
  void RefuseChanged() const {
    if (FWatched) FWatched->RefuseChanged();
  }
  /// What stands from this position on may change.
  void WatchUntil(std::int64_t Position) const {
    if (FWatched) FWatched->WatchUntil(Position);
  }
  /// Where the file can be opened, more than once, under ShownName().
  TFileSystem& Files() const { return FFiles; }
  /// For messages.
  const std::string& ShownName() const { return FShownName; }

 private:
  std::string FName, FShownName;
  TSpool::TCanceled FCanceled;
  std::unique_ptr<TSpool> FSpool;           // null: a file of its own
  std::unique_ptr<TWatchedFiles> FWatched;  // null: nobody asks, or nobody else can write to it
  TFileSystem& FFiles;
};

}  // namespace velkrund
