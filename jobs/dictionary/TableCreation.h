#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jobs/dictionary/AllowedGaps.h"
#include "jobs/dictionary/ObjectCreation.h"
#include "jobs/files/InputFile.h"
#include "jobs/policies/LongNames.h"
#include "jobs/report/Outcome.h"
#include "jobs/report/PlanStep.h"
#include "standalone/databases/StandaloneManager.h"
#include "velkrund/operations/MissingTables.h"
#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// The tables that an import makes: those that it has rows or structures of, that the database lacks, and that a
/// structure describes, of the files or of the database. What could go wrong with them is found out before anything is
/// changed. Lives for one run.
class TTableCreation {
 public:
  /// Manager, Policies: borrowed.
  TTableCreation(TStandaloneManager& Manager, const TPolicies& Policies, std::string DatabaseName);

  /// Reads the structure of a table beforehand; sections that are none, or cannot be read, are passed over.
  void AddStructure(TInputFile& Input, int Index);
  /// The description of a table that is to be made; null: it is there, or nothing describes it.
  const TDicTableDescription* Find(const std::string& Table);
  /// Asks whether the tables may be made. Raises EGap for all that the engine has no words for, and EDatabaseError for
  /// tables that cannot be made.
  void Settle(TOutcome& Outcome);
  /// There are tables to be made, and they may not.
  bool IsDeclined() const { return FDeclined; }
  /// Other objects, about which the same question is asked.
  TObjectCreation& Objects() { return FObjects; }
  std::vector<TPlanStep> StepsBefore() const;
  std::vector<TPlanStep> StepsBehind() const;

  /// For the run of Operation. IsUseless: whether none of the rows of a table have come into it, though there were
  /// some.
  using TIsUseless = std::function<bool(const std::string& Table)>;
  std::unique_ptr<TMissingTables> Maker(TUtilOperation& Operation, TIsUseless IsUseless);
  /// What became of it. Stays: it was not taken back.
  void AddNotes(TOutcome& Outcome, bool Stays);

 private:
  class TMaker;
  struct TEntry {
    TDicTableDescription Description;
    std::vector<TScriptGap> Gaps = {};  // of its names
    bool IsThere = false;
    bool IsCancelled = false;  // for its name
    bool IsNone = false;       // the engine makes no table of it
  };

  const TEntry* EntryOf(const std::string& Table) const;
  std::vector<TEntry*> Missing();
  std::vector<const TEntry*> ToBeMade() const;
  /// As it is to be made. Gaps: gets what goes with its names.
  TDicTableDescription Named(TDicTableDescription Table, std::vector<TScriptGap>& Gaps) const;
  void AskFor(const std::vector<TEntry*>& Tables);
  void CheckScripts(const std::vector<TEntry*>& Tables);
  /// Whether the table that a foreign key refers to is there, or will be.
  bool IsReachable(const TDicForeignKey& Key);
  void AddSteps(TTableScriptPart Part, std::vector<TPlanStep>& Steps) const;

  TStandaloneManager& FManager;
  const TPolicies& FPolicies;
  const std::string FDatabaseName;
  TAllowedGaps FGaps;
  TStandaloneDictionary& FDictionary;
  TLongNames FLongNames;
  TObjectCreation FObjects;
  std::map<std::string, TEntry> FEntries;  // by full name in lower case
  std::vector<std::string> FMade, FCompleted, FUnchecked;
  bool FDeclined = false;
  bool FIsSettled = false;
};

}  // namespace velkrund
