#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "jobs/files/InputFile.h"
#include "jobs/report/Outcome.h"
#include "jobs/report/PlanStep.h"
#include "jobs/run/ImportPart.h"
#include "velkrund/platform/database/Relations.h"

namespace velkrund {

/// What an import does with one section.
struct TImportStep {
  TImportPart* Part;   // borrowed; null: the section is imported as its class is made
  std::int64_t Bytes;  // of the section's body
  bool IsTable;
  std::size_t Number;  // of the item
};

/// The sections that an import takes, each with its item in the outcome. An item that becomes left out takes its
/// section out of all answers.
class TImportSteps {
 public:
  /// Outcome: borrowed.
  explicit TImportSteps(TOutcome& Outcome) : FOutcome(Outcome) {}

  void Clear() { FSteps.clear(), FOfTables.clear(); }
  /// Adds the section and its item. Raises ESettingsError where two inputs go by one name, and what the part does.
  void Add(TInputFile& Input, int Index, TImportPart* Part);

  /// Of a section that was added, left out or not.
  const TImportStep& StepOf(const TEIFile& File, const TEISection& Section) const;
  bool Takes(const TEIFile& File, const TEISection& Section) const;
  bool HaveStructures() const;
  std::int64_t Bytes() const;
  /// The tables that rows go into, but for those that the run makes.
  std::vector<TLoadTarget> Targets() const;
  /// Whether there were rows for the table, and none of them stay.
  bool HaveLostRows(const std::string& Table) const;

  /// For a dry run: what is done with structures, and with rows: all tables are emptied first. Loading: whose order
  /// counts; null: that of the files.
  std::vector<TPlanStep> PlanOfStructures() const;
  std::vector<TPlanStep> PlanOfRows(const TTableLoading* Loading) const;

 private:
  using TPosition = std::pair<std::string, std::int64_t>;  // a file, the place of a section in it

  const TItem& ItemOf(const TImportStep& Step) const { return FOutcome.Items[Step.Number]; }
  bool IsTaken(const TImportStep& Step) const { return ItemOf(Step).State != TItemState::LeftOut; }

  TOutcome& FOutcome;
  std::map<TPosition, TImportStep> FSteps;
  std::multimap<std::string, const TImportStep*> FOfTables;  // those with rows, by the table in lower case
};

}  // namespace velkrund
