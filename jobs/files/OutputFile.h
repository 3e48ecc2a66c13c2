#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jobs/files/Spool.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// An export/import file to add sections to: one that exists, locked against other writers, or a new one, or a pipe.
/// What was written is safe after Finish. A file that was made here and got no section is removed again.
class TOutputFile {
 public:
  /// Told of what cannot be put right any more.
  using TComplain = std::function<void(const std::string& Text)>;

  /// Opens the file or makes it. Name: a path, or "-" for standard output. A file that is there and is no export/import
  /// file, or has a section that no reader sees, is refused, and so is one whose headers hold malformed characters when
  /// StrictText says so. Files: borrowed.
  TOutputFile(TFileSystem& Files, const std::string& Name, bool StrictText, TComplain Complain);
  TOutputFile(const TOutputFile&) = delete;
  TOutputFile& operator=(const TOutputFile&) = delete;
  ~TOutputFile();

  TEIFile& File() { return *FFile; }
  /// Whether nobody has anything of it before Finish.
  bool IntoPipe() const { return FSpool != nullptr; }
  /// For messages.
  const std::string& Name() const { return FFile->FileName(); }
  /// Takes the sections with these indexes out again and hands everything to the disk, or to the pipe. Nothing can be
  /// added afterwards. Canceled: raises EAbort; what was added stays, and so do the sections.
  void Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled);

 private:
  void OpenFile();
  void RefuseForeignFile();
  void RemoveUnlessUsed();

  TFileSystem& FFiles;
  TComplain FComplain;
  std::string FName;
  bool FCreated = false;
  std::unique_ptr<TSpool> FSpool;  // null: a file of its own
  std::unique_ptr<TEIFile> FFile;
};

}  // namespace velkrund
