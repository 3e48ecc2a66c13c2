#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "jobs/run/JobInterface.h"
#include "velkrund/platform/ormtools/LineReader.h"

namespace velkrund {

/// What the header of a section says, and where the section stands; bytes.
struct TListedSection {
  std::string Name, Type;
  int Version = 0;
  TKvEncoding Encoding = TKvEncoding::Utf8;
  std::vector<std::pair<std::string, std::string>> Parameters = {};
  std::int64_t Position = 0, DataPosition = 0, Size = 0;
};

/// "utf8" or "ansi".
const char* EncodingText(TKvEncoding Encoding);

/// Lists the sections of a file, reading headers only and taking no lock. Of a faulty file the sections before the
/// fault are listed, and the fault is the job's error; so are sections that no reader sees.
class TJobListSections final : public TJob {
 public:
  std::string FileName;  // "-": standard input

  const std::vector<TListedSection>& Found() const { return FFound; }
  /// What the headers could not be read for, or what they hide; null: nothing.
  const std::exception_ptr& HeaderFault() const { return FFault; }
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
  std::vector<TListedSection> FFound;
  std::int64_t FSize = 0;
  bool FHasMalformed = false;
  std::exception_ptr FFault;
};

using TJobListSectionsInterface = TJobInterface<TJobListSections>;

}  // namespace velkrund
