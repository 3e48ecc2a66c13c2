#pragma once

#include <exception>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "jobs/dictionary/TableCreation.h"
#include "jobs/policies/Policies.h"
#include "jobs/run/ImportPart.h"
#include "jobs/tables/TableSearch.h"

namespace velkrund {

/// The table data sections of an import: which table each goes into, what becomes of the rows that are there, and which
/// fields are moved.
class TTableImport final : public TImportPart {
 public:
  struct TSettings {
    std::string DatabaseName;
    std::string DatabaseText;              // for messages
    std::string TableName = {};            // the one to load; empty: the one that the section names
    std::vector<std::string> Fields = {};  // the only ones to move; none: all
    bool HasToFit = true;                  // a section whose table is not there, or lacks fields, ends the run at once
    bool AreChosen = false;                // a person has named each of the sections
    TTableCreation* Creation = nullptr;    // borrowed; null: no tables are made
  };

  /// Manager, Policies: borrowed.
  TTableImport(TStandaloneManager& Manager, const TPolicies& Policies, TSettings Settings);

  void Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) override;
  void Settle(TOutcome& Outcome) override;
  std::optional<TLoadTarget> TargetOf(std::size_t Number) const override;
  bool IsMade(std::size_t Number) const override;
  std::optional<TPlanStep> Emptying(std::size_t Number) const override;
  std::vector<TPlanStep> Steps(const TItem& Item, std::size_t Number) const override;
  void Begin(std::size_t Number, TEIObject& Object) override;
  void End(TItem& Item, const TEIObject* Object) override;

 private:
  /// Of several sections for one table the later ones join the rows that were loaded, or are left out together.
  struct TTarget {
    std::string Table;      // the physical name
    std::int64_t Rows = 0;  // that are there; counted only where they are asked about
    bool Keep = false;      // these rows
    bool LeaveOut = false;
    bool IsMade = false;                     // by this run
    std::vector<std::size_t> Sections = {};  // numbers of items
    std::vector<std::string> Texts = {};     // of the sections, for messages
  };

  /// A table that is there, or will be, and its fields.
  struct TKnownTable {
    std::string Name;
    std::vector<std::string> Fields;
    bool Has(const std::string& Field) const;
  };

  TTarget& TargetFor(const std::string& Name, TTable* Table);
  bool Fits(TInputFile& Input, int Index, const TKnownTable& Table, std::size_t Number);
  void CheckFields(TInputFile& Input, int Index, const TKnownTable& Table) const;
  static void RefuseMissing(TInputFile& Input, int Index, const TKnownTable& Table,
                            const std::vector<std::string>& Wanted);
  void LeaveOut(TOutcome& Outcome, const TTarget& Target, const std::string& Note) const;
  void RefuseUnanswered() const;
  void RefuseRepeated(const TTarget& Target) const;
  const TTarget* Find(std::size_t Number) const;

  TStandaloneManager& FManager;
  const TPolicies& FPolicies;
  const TSettings FSettings;
  const TTableSearch FSearch;
  const TStringList FFields;
  std::vector<TTarget> FTargets;                     // by table, in the order in which they were met
  std::map<std::size_t, std::size_t> FPlaces;        // of a section's target, by the number of its item
  std::map<std::size_t, std::exception_ptr> FUnfit;  // why a section fails when its turn comes, by the same number
};

}  // namespace velkrund
