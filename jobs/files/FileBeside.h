#pragma once

#include <string>

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund {

/// A new, empty file beside another, with the same permissions and, where allowed, owner: what is to take its place, or
/// to stand beside it, is written here first. Removed again unless it was put somewhere.
///
/// It is called FILE.velkrund-new. Whoever has FILE open for writing keeps everybody else from using that name, so that
/// one found then was left by a program that was killed; the next one that writes FILE removes it.
class TFileBeside {
 public:
  /// Original: open for writing by the caller. Files: borrowed.
  TFileBeside(TFileSystem& Files, const std::string& Original);
  TFileBeside(const TFileBeside&) = delete;
  TFileBeside& operator=(const TFileBeside&) = delete;
  ~TFileBeside();

  const std::string& Path() const { return FPath; }
  /// Gives it that name, in one step. What had the name before is gone.
  void PutAt(const std::string& Path);

 private:
  TFileSystem& FFiles;
  std::string FPath;
  bool FReleased = false;
};

/// Removes what a killed program has left beside a file that the caller has open for writing.
void RemoveLeftBeside(TFileSystem& Files, const std::string& Original);

}  // namespace velkrund
