#pragma once

#include <string>
#include <vector>

#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Writes the strings of several sections in several languages as one XML document, in place of a file that is there
/// only when the policy ExistingFiles or a person says so.
class TJobExportXml final : public TPolicyJob {
 public:
  std::string FileName;                 // "-": standard output
  std::vector<std::string> SectionIDs;  // in any case; none: all of the database
  std::vector<std::string> Languages;   // the same

  void CheckSettings() const override { Require(FileName, "FileName"); }
  std::string CommandName() const override { return "export xml"; }

  /// What the last run has written.
  struct TWritten {
    std::vector<std::string> SectionIDs, Languages, Aliases;
    std::int64_t Strings = 0, Texts = 0, Bytes = 0;
    std::int64_t CharactersLost = 0;  // that XML cannot hold
    bool LeftAlone = false;           // the file was there, and stays
  };
  const TWritten& Written() const { return FWritten; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override {
    FWritten = {};
    ForgetPlan();
  }
  std::string_view Schema() const override { return "xml"; }
  void Describe(TDocument& Document) const override;

 private:
  void Plan();
  void Write();

  TWritten FWritten;
};

using TJobExportXmlInterface = TJobInterface<TJobExportXml>;

}  // namespace velkrund
