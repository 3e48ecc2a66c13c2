#pragma once

#include <cstdint>
#include <string>

#include "jobs/run/JobInterface.h"
#include "velkrund/eif/Section.h"

namespace velkrund {

/// "utf8" or "ansi".
const char* EncodingText(TKvEncoding Encoding);

/// Lists the sections of a file, reading headers only and taking no lock. Of a faulty file the sections before the
/// fault are listed, and the fault is the job's error; so are sections that no reader sees.
class TJobListSections final : public TJob {
 public:
  std::string FileName;  // "-": standard input

  const TEISectionList& Found() const { return FFound; }
  /// What the headers could not be read for, or what they hide; null: nothing.
  const std::exception_ptr& HeaderFault() const { return FFault; }
  /// Of unfinished sections at the end of the file; -1: there are none.
  std::int64_t UnfinishedPosition() const { return FUnfinished; }
  std::int64_t UnfinishedBytes() const { return FUnfinished < 0 ? 0 : FSize - FUnfinished; }
  /// Headers hold malformed characters, shown as U+FFFD.
  bool HasMalformed() const { return FHasMalformed; }

  void CheckSettings() const override { Require(FileName, "FileName"); }
  std::string CommandName() const override { return "file list"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  bool NeedsDatabase() const override { return false; }
  TEnd Conclusion() const override { return FFault ? TEnd::Failed : TEnd::Done; }
  std::exception_ptr Failure() const override { return FFault; }
  std::string_view Schema() const override { return "sections"; }
  void Describe(TDocument& Document) const override;

 private:
  std::string FFile;  // of the last run
  TEISectionList FFound;
  std::int64_t FSize = 0, FUnfinished = -1;
  bool FHasMalformed = false;
  std::exception_ptr FFault;
};

using TJobListSectionsInterface = TJobInterface<TJobListSections>;

}  // namespace velkrund
