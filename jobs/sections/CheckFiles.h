#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jobs/files/InputFile.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

struct TCheckedSection {
  TItem Item;
  std::string Type;
  TLText Text;  // "section 3 'ORDERS' (TableData)"
  int Version = 0;
  bool HasRows = false;  // otherwise the section is for something else than a table, or was not read that far
};

struct TCheckedFile {
  std::string Name;  // as it was given
  std::string Text;  // for messages
  std::vector<TCheckedSection> Sections = {};
  std::vector<std::string> Hidden = {};   // what looks like a section that nobody reads: faults
  std::vector<TLText> Notes = {};         // what is no fault
  std::optional<TErrorFacts> Error = {};  // of the headers, or why it could not be opened
  bool IsOpen = true;
  bool HasLineFeeds = false;  // which alone end the lines of hidden sections

  /// Whether it is no export/import file, or has no section.
  bool IsForeign() const {
    return Error && (Error->Info.Code == TErrorCode::FileKind ||
                     (Error->Info.Code == TErrorCode::LineFeeds && Sections.empty()));
  }
};

/// "ok", "faulty", "cancelled" or "not-reached".
const char* CheckText(TItemState State);

/// Hears of results as they come.
class TCheckListener {
 public:
  virtual ~TCheckListener() = default;
  virtual void SectionChecked(const TCheckedFile& File, const TCheckedSection& Section) = 0;
  /// All that has been found, sections included.
  virtual void FileChecked(const TCheckedFile& File) = 0;
};

/// Reads every section of files as an import would, and writes nothing. Goes on after every fault.
class TJobCheckFiles final : public TPolicyJob {
 public:
  std::vector<std::string> FileNames;       // "-": standard input
  TCheckListener* CheckListener = nullptr;  // borrowed, may be null

  struct TTotals {
    int Sections = 0;  // looked at
    int Faults = 0;    // faulty or hidden sections, faulty headers and files
    std::int64_t Rows = 0, Bytes = 0;
    TTextLosses Losses = {};
    double Seconds = 0;
    bool Cancelled = false;
  };
  const TTotals& Totals() const { return FTotals; }
  const std::vector<TCheckedFile>& Checked() const { return FChecked; }

  void CheckSettings() const override;
  std::string CommandName() const override { return "file check"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  bool NeedsDatabase() const override { return false; }
  TEnd Conclusion() const override;
  std::exception_ptr Failure() const override;
  std::string_view Schema() const override { return "check"; }
  void Describe(TDocument& Document) const override;

 private:
  void CheckFile(TCheckedFile& Result);
  bool Open(TInputFile& Input, TCheckedFile& Result);
  void CheckSections(TInputFile& Input, TCheckedFile& Result);
  void CheckGaps(TInputFile& Input, TCheckedFile& Result);
  void Count(const TCheckedFile& File, const TCheckedSection& Section);
  void NoteFault(const std::string& Text, const TErrorInfo& Info);

  std::vector<TCheckedFile> FChecked;
  TTotals FTotals;
  std::string FFirstFault;
  TErrorInfo FFirstInfo;
};

using TJobCheckFilesInterface = TJobInterface<TJobCheckFiles>;

}  // namespace velkrund
