#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "jobs/dictionary/AllowedGaps.h"
#include "jobs/files/InputFile.h"
#include "jobs/policies/LongNames.h"
#include "jobs/policies/Questions.h"
#include "jobs/report/Outcome.h"
#include "jobs/report/PlanStep.h"
#include "standalone/databases/StandaloneManager.h"
#include "velkrund/operations/RecreateContainer.h"

namespace velkrund {

/// The generators, views and procedures that an import makes, since the structures of its files describe them. What is
/// there already is made anew where structures are replaced, or as the policy for objects says. Lives for one run.
class TObjectCreation {
 public:
  /// Borrowed.
  TObjectCreation(TStandaloneManager& Manager, const TPolicies& Policies, const std::string& DatabaseName,
                  TLongNames& LongNames)
      : FManager(Manager), FPolicies(Policies), FDatabaseName(DatabaseName), FLongNames(LongNames) {}

  /// Looks at a structure of such an object; others are passed over.
  void AddStructure(TInputFile& Input, int Index);
  /// Those that are not there: "the view 'V'".
  std::vector<TLText> Missing() const;
  /// Those are not made.
  void Decline() { FDeclined = true; }
  /// Settles what Operation would ask; false: its object is not made.
  bool SetUp(TRecreateOperation& Operation, int ObjectType);
  std::vector<TPlanStep> Steps() const;
  /// What became of one.
  void Note(const TStructureId& Structure, TRecreateState State);
  void AddNotes(TOutcome& Outcome) const;

 private:
  struct TEntry {
    TStructureId Structure;
    bool IsThere;
    std::vector<TScriptStatement> Statements;
  };

  TExisting Existing() const;
  const TEntry* Find(int Type, const std::string& Name) const;
  void Answer(TYesNoAsk& Ask);

  TStandaloneManager& FManager;
  const TPolicies& FPolicies;
  const std::string& FDatabaseName;
  TLongNames& FLongNames;
  TRepeatedQuestion FQuestion;
  std::vector<TEntry> FEntries;
  std::map<std::pair<int, std::string>, std::size_t> FPlaces;  // of them, by type and name in lower case
  std::vector<TLText> FMade, FLeft, FStored;
  bool FDeclined = false;
};

}  // namespace velkrund
