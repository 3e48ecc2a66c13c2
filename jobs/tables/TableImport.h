#pragma once

#include <exception>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "jobs/dictionary/TableCreation.h"
#include "jobs/policies/Policies.h"
#include "jobs/run/ImportPart.h"
#include "jobs/tables/TableSearch.h"
#include "velkrund/dialogs/QueryTableMappingSelectForm.h"

namespace velkrund {

/// The sections of an import that hold rows, of tables or of queries: which table each goes into, what becomes of the
/// rows that are there, and which fields are moved. Where the rows of a query go and nobody has said, a person is
/// asked.
class TTableImport final : public TImportPart {
 public:
  struct TSettings {
    std::string DatabaseName;
    std::string DatabaseText;              // for messages
    std::string TableName = {};            // the one to load; empty: the one that the section names
    TStringPairs Mapping = {};             // fields of the file, and those of the table that they fill
    std::vector<std::string> Fields = {};  // the only ones to move, as the file has them; none: all
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
    bool IsSettled = false;                  // what becomes of the rows, by the person who chose the table
    std::vector<std::size_t> Sections = {};  // numbers of items
    std::vector<std::string> Texts = {};     // of the sections, for messages
  };

  /// A table that is there, or will be, and its fields.
  struct TKnownTable {
    std::string Name;
    TStringList Fields;
    bool Has(const std::string& Field) const { return Fields.IndexOf(Field) >= 0; }
  };

  TTarget& TargetFor(const std::string& Name, TTable* Table);
  TKnownTable Known(const std::string& Name, std::unique_ptr<TTable>& Table) const;
  std::optional<TQueryTableMapping> Chosen(TInputFile& Input, int Index, std::size_t Number);
  bool Fits(TInputFile& Input, int Index, const TKnownTable& Table, std::size_t Number);
  void CheckFields(TInputFile& Input, int Index, const TKnownTable& Table, std::size_t Number) const;
  bool MaySkip(std::size_t Number) const;
  void RefuseMissing(TInputFile& Input, int Index, const TKnownTable& Table,
                     const std::vector<std::string>& Missing) const;
  const TStringPairs& MappingOf(std::size_t Number) const;
  void LeaveOut(TOutcome& Outcome, const TTarget& Target, const TLText& Note) const;
  void RefuseRepeated(const TTarget& Target) const;
  const TTarget* Find(std::size_t Number) const;

  TStandaloneManager& FManager;
  const TPolicies& FPolicies;
  const TSettings FSettings;
  const TTableSearch FSearch;
  const TStringList FFields;
  std::vector<TTarget> FTargets;                          // by table, in the order in which they were met
  std::unordered_map<std::string, std::size_t> FByTable;  // places in it
  std::map<std::size_t, std::size_t> FPlaces;             // of a section's target, by the number of its item
  std::map<std::size_t, TStringPairs> FMappings;          // that were chosen, by the same number
  std::set<std::size_t> FPassedOver;                      // sections for which no table was chosen
  std::map<std::size_t, std::exception_ptr> FUnfit;       // why a section fails when its turn comes, by the same number
};

}  // namespace velkrund
