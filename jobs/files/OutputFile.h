#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jobs/files/FileBeside.h"
#include "jobs/files/FileKind.h"
#include "jobs/files/Spool.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// What becomes of a file that is there: it gets more sections, or another one takes its place when that is finished.
enum class TOutputUse { AddTo, MakeAfresh };

/// An export/import file to write sections to: one that exists, locked against other writers, or a new one, or a pipe.
/// What was written is safe after Finish. A file that was made here and got no section is removed again; one that is to
/// be made afresh is as it was until Finish, and stays so without it.
class TOutputFile {
 public:
  /// Told of what cannot be put right any more.
  using TComplain = std::function<void(const std::string& Text)>;

  /// Opens the file or makes it. Name: a path, or "-" for standard output. A file that is there and is no export/import
  /// file, or has a section that no reader sees, is refused, and so is one whose headers hold malformed characters when
  /// StrictText says so. Files: borrowed.
  TOutputFile(TFileSystem& Files, const std::string& Name, bool StrictText, TComplain Complain,
              TOutputUse Use = TOutputUse::AddTo);
  TOutputFile(const TOutputFile&) = delete;
  TOutputFile& operator=(const TOutputFile&) = delete;
  ~TOutputFile();

  TEIFile& File() { return *FFile; }
  /// Whether nobody has anything of it before Finish.
  bool ArrivesAtEnd() const { return FSpool || FUse == TOutputUse::MakeAfresh; }
  bool IsMadeAfresh() const { return !FSpool && FUse == TOutputUse::MakeAfresh; }
  /// For messages.
  const std::string& Name() const { return FShownName; }
  /// Takes the sections with these indexes out again and hands everything to the disk, or to the pipe. Nothing can be
  /// added afterwards. Canceled: raises EAbort; what was added stays, and so do the sections, unless all arrives at the
  /// end.
  void Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled);

 private:
  void OpenFile();
  void OpenToAdd(std::unique_ptr<TFile> Made);
  void OpenBeside(std::unique_ptr<TFile> Made);
  void Refuse(const std::optional<TForeignKind>& Kind) const;
  void RemoveUnlessUsed();

  TFileSystem& FFiles;
  TComplain FComplain;
  std::string FName, FShownName;
  TOutputUse FUse;
  bool FCreated = false;                 // here, and of no use yet
  std::unique_ptr<TSpool> FSpool;        // null: a file of its own
  std::unique_ptr<TFile> FOld;           // whose place is to be taken; keeps other writers away
  std::string FPath;                     // of it, behind links
  std::unique_ptr<TFileBeside> FBeside;  // that is to take it
  std::unique_ptr<TEIFile> FFile;
};

}  // namespace velkrund
