#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jobs/run/JobInterface.h"
#include "velkrund/eif/Section.h"

namespace velkrund {

/// Takes sections out of a file; everything else stays byte for byte. Whatever happens, the old file is there or the
/// new one. Several sections of one name go only when the policy Yes, or a person, agrees.
class TJobRemoveSections final : public TPolicyJob {
 public:
  struct TRemoved {
    int Index;
    std::string Name, Type;
    TLText Text;  // "section 3 'ORDERS' (TableData)"
  };

  std::string FileName;
  std::vector<std::string> Indexes;  // decimal numbers, from 0
  std::vector<std::string> Names;    // of sections, ignoring case

  const std::vector<TRemoved>& Removed() const { return FRemoved; }
  int SectionsLeft() const { return FLeft; }

  void CheckSettings() const override;
  std::string CommandName() const override { return "file remove"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  bool NeedsDatabase() const override { return false; }
  std::string_view Schema() const override { return "removal"; }
  void Describe(TDocument& Document) const override;

 private:
  std::set<int> Chosen(const TEISectionList& Sections) const;

  std::string FFile;  // of the last run
  std::vector<TRemoved> FRemoved;
  int FLeft = 0;
};

using TJobRemoveSectionsInterface = TJobInterface<TJobRemoveSections>;

}  // namespace velkrund
