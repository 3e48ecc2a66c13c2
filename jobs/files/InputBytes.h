#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "jobs/files/Spool.h"

namespace velkrund {

/// What shows that a file was written to. Size: -1 where nothing is known of it.
struct TFileState {
  std::uint64_t Device = 0, Number = 0;
  std::int64_t Size = -1, Seconds = 0, Nanoseconds = 0;

  bool operator==(const TFileState&) const = default;
};

/// What a file that is to be read consists of, whatever it is. There is no lock on it. What comes through a pipe is
/// kept in a temporary file, so that positions can be sought.
class TInputBytes {
 public:
  /// Name: a path, or "-" for standard input. Files: borrowed. Canceled: asked while a pipe lets its reader wait; true
  /// raises EAbort.
  TInputBytes(TFileSystem& Files, const std::string& Name, TSpool::TCanceled Canceled);
  /// Before anything is read: reads a pipe to its end.
  void Fill();
  /// Raises EReadError where the file was written to since Fill: what was read of it may be of two kinds.
  void RefuseChanged() const;
  /// Where the file can be opened, more than once, under ShownName().
  TFileSystem& Files() const { return FFiles; }
  /// For messages.
  const std::string& ShownName() const { return FShownName; }

 private:
  std::string FName, FShownName;
  TSpool::TCanceled FCanceled;
  std::unique_ptr<TSpool> FSpool;  // null: a file of its own
  TFileSystem& FFiles;
  TFileState FOpened;
};

}  // namespace velkrund
