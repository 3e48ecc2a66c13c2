#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jobs/files/FileKind.h"
#include "jobs/files/LentFile.h"
#include "jobs/files/Spool.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// What becomes of a file that is there: it gets more sections, or another one takes its place when that is finished.
enum class TOutputUse { AddTo, MakeAfresh };

/// An export/import file to write sections to: one that exists, locked against other writers, or a new one, or a pipe.
/// What was written is safe after Finish. A new file gets its name with its first section; one that is to be made
/// afresh is as it was until Finish, and stays so without it, and so do sections that others are to replace.
class TOutputFile {
 public:
  /// Opens the file. Name: a path, or "-" for standard output. A file that is there and is no export/import file, or
  /// has a section that no reader sees, is refused, and so is one whose headers hold malformed characters when
  /// StrictText says so. Files: borrowed.
  TOutputFile(TFileSystem& Files, const std::string& Name, bool StrictText, TOutputUse Use = TOutputUse::AddTo);
  TOutputFile(const TOutputFile&) = delete;
  TOutputFile& operator=(const TOutputFile&) = delete;
  ~TOutputFile();

  TEIFile& File() { return *FFile; }
  /// Whether nobody has anything of it before Finish.
  bool ArrivesAtEnd() const { return FSpool || FUse == TOutputUse::MakeAfresh; }
  bool IsMadeAfresh() const { return !FSpool && FUse == TOutputUse::MakeAfresh; }
  /// For messages.
  const std::string& Name() const { return FShownName; }
  /// Bytes of unfinished sections that the file ended with, which the first section that is added takes the place of.
  std::int64_t UnfinishedBytes() const { return FUnfinishedBytes; }
  /// Before the first section is written: some will be replaced. Raises what would stand in the way of that.
  void PrepareReplacing();
  /// From now on sections have to wait for Finish, since they replace others. After PrepareReplacing.
  void HoldBack() { FFile->SetHoldsBack(true); }
  bool HoldsBack() const { return FFile->HoldsBack(); }
  /// After a section was written: gives a new file its name.
  void Keep();
  /// Takes the sections with these indexes out again and hands everything to the disk, or to the pipe. Nothing can be
  /// added afterwards. Canceled: raises EAbort. After an error sections that were to be replaced are there, and those
  /// that were held back are not.
  void Finish(const std::vector<int>& Replaced, const TSpool::TCanceled& Canceled);

 private:
  void OpenFile();
  void OpenToAdd();
  void Refuse(const std::optional<TForeignKind>& Kind) const;
  void DropHeld();

  TFileSystem& FFiles;
  const std::string FName, FShownName;
  const TOutputUse FUse;
  std::int64_t FUnfinishedBytes = 0;
  std::unique_ptr<TSpool> FSpool;        // null: a file of its own
  std::unique_ptr<TFile> FOld;           // whose place is to be taken afresh; keeps other writers away
  std::unique_ptr<TFileInMaking> FMade;  // a new file, or one that is to take the place of another
  std::exception_ptr FNotNamed;          // why the new one could not get its name
  bool FIsNamed = true;                  // the new one, or it is none
  std::unique_ptr<TLentFile> FLent;      // of what is made, where sections are written into it
  std::unique_ptr<TEIFile> FFile;
};

}  // namespace velkrund
