#include "jobs/tables/TableImport.h"

#include <algorithm>

#include "jobs/files/SectionChoice.h"
#include "jobs/policies/Questions.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/eif/EIErrors.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

std::string RowsText(const std::string& Table, std::int64_t Rows, bool Begins = true) {
  return Format("%s '%s' has %s", Begins ? "Table" : "table", Table, Counted(Rows, "row"));
}

}  // namespace

TTableImport::TTableImport(TStandaloneManager& Manager, const TPolicies& Policies, TSettings Settings)
    : FManager(Manager),
      FPolicies(Policies),
      FSettings(std::move(Settings)),
      FSearch(Manager, FSettings.DatabaseName, FSettings.DatabaseText),
      FFields(FSettings.Fields) {}

bool TTableImport::TKnownTable::Has(const std::string& Field) const {
  return std::any_of(Fields.begin(), Fields.end(), [&](const std::string& Each) { return SameText(Each, Field); });
}

/// Table: null where the run makes it.
TTableImport::TTarget& TTableImport::TargetFor(const std::string& Name, TTable* Table) {
  const auto IsIt = [&](const TTarget& Target) { return Target.Table == Name; };
  const auto Known = std::find_if(FTargets.begin(), FTargets.end(), IsIt);
  if (Known != FTargets.end()) return *Known;
  TTarget Target{Name};
  Target.IsMade = !Table;
  Target.Keep = FPolicies.ExistingRows != TExisting::Replace;
  const bool Counts = FPolicies.ExistingRows == TExisting::Ask || FPolicies.ExistingRows == TExisting::Skip;
  if (Counts && Table) Target.Rows = Table->RecordCount();
  FTargets.push_back(std::move(Target));
  return FTargets.back();
}

void TTableImport::Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) {
  const TEISectionList& Sections = Input.File().Sections();
  Item.Table = FSettings.TableName.empty() ? TableOf(Sections[Index]) : FSettings.TableName;
  const TDicTableDescription* const Described =
      FSettings.Creation && !Item.Table.empty() ? FSettings.Creation->Find(Item.Table) : nullptr;
  const std::unique_ptr<TTable> Table = Described ? nullptr : FSearch.Find(Item.Table, true);
  TKnownTable Known;
  if (Described) {
    Known.Name = Described->FullName();
    for (const TDicField& Field : Described->Fields) Known.Fields.push_back(Field.Name);
  } else if (Table) {
    Known.Name = Table->TableName();
    for (int I = 0; I < Table->Record().FieldCount(); ++I) Known.Fields.push_back(Table->Record().Fields(I).Name());
  }
  const bool IsKnown = Described || Table;
  if (!IsKnown && FSettings.HasToFit && Item.Table.empty())
    throw EEIError(Format("The header of %s names no table: give the one that it is for", SectionText(Sections, Index)),
                   {.Code = TErrorCode::TableMissing, .File = Input.Name(), .Section = Sections[Index].Name()});
  if (!IsKnown && FSettings.HasToFit) FSearch.Missing(Item.Table, " for " + SectionText(Sections, Index));
  if (!IsKnown) return;  // the import of the section says so
  Item.Table = Known.Name;
  if (!Fits(Input, Index, Known, Number)) return;
  TTarget& Target = TargetFor(Known.Name, Table.get());
  Target.Sections.push_back(Number);
  Target.Texts.push_back(Format("%s of '%s'", SectionText(Sections, Index), Input.Name()));
  FPlaces.emplace(Number, static_cast<std::size_t>(&Target - FTargets.data()));
}

/// Whether the section's fields are those of the table. An error that ends the run comes before anything is changed;
/// where the run goes on with the others, the section keeps it until its turn comes.
bool TTableImport::Fits(TInputFile& Input, int Index, const TKnownTable& Table, std::size_t Number) {
  try {
    CheckFields(Input, Index, Table);
    return true;
  } catch (const EEIError&) {
    if (FSettings.HasToFit || FPolicies.OnError != TOnError::Continue) throw;
    FUnfit.emplace(Number, std::current_exception());
    return false;
  }
}

/// Fields that nobody has: the section would refuse them too, after other sections were loaded.
void TTableImport::CheckFields(TInputFile& Input, int Index, const TKnownTable& Table) const {
  const std::optional<std::vector<std::string>> Names = FieldsOf(Input.File(), Index);
  if (!Names) return;  // the import says what is wrong with the body
  const TEISectionList& Sections = Input.File().Sections();
  const auto InFile = [&](const std::string& Field) {
    return std::any_of(Names->begin(), Names->end(), [&](const std::string& Name) { return SameText(Name, Field); });
  };
  for (const std::string& Field : FSettings.Fields)
    if (!InFile(Field))
      throw EEIError(
          Format("There is no field '%s' in %s%s", Field, SectionText(Sections, Index),
                 ContentHint(Field, *Names, ": it has ")),
          {.Code = TErrorCode::FieldMissing, .File = Input.Name(), .Section = Sections[Index].Name(), .Column = Field});
  const std::vector<std::string>& Wanted = FSettings.Fields.empty() ? *Names : FSettings.Fields;
  const auto InTable = [&](const std::string& Field) { return Table.Has(Field); };
  // There are tables without a field, whose rows are merely counted.
  if (Wanted.empty() && Table.Fields.empty()) return;
  if (std::none_of(Wanted.begin(), Wanted.end(), InTable))
    throw EEIError(Format("The table '%s' has none of the fields of %s%s", Table.Name, SectionText(Sections, Index),
                          Wanted.empty() ? ", which has none" : ": " + JoinedInShort(Wanted)),
                   {.Code = TErrorCode::FieldMissing,
                    .File = Input.Name(),
                    .Section = Sections[Index].Name(),
                    .Table = Table.Name});
  if (FPolicies.MissingFields == TMissingFields::Refuse) RefuseMissing(Input, Index, Table, Wanted);
}

/// Fields that would be passed over.
void TTableImport::RefuseMissing(TInputFile& Input, int Index, const TKnownTable& Table,
                                 const std::vector<std::string>& Wanted) {
  std::vector<std::string> Missing;
  std::string First;
  for (const std::string& Field : Wanted) {
    if (Table.Has(Field)) continue;
    if (Missing.empty()) First = Field;
    Missing.push_back(Format("'%s'", Field));
  }
  if (Missing.empty()) return;
  const TEISectionList& Sections = Input.File().Sections();
  const char* const Noun = Missing.size() == 1 ? "field" : "fields";
  throw EEIError(Format("The table '%s' lacks the %s %s of %s%s", Table.Name, Noun, JoinedInShort(std::move(Missing)),
                        SectionText(Sections, Index), NearestHint(First, Table.Fields)),
                 {.Code = TErrorCode::FieldMissing,
                  .File = Input.Name(),
                  .Section = Sections[Index].Name(),
                  .Table = Table.Name,
                  .Column = First});
}

void TTableImport::RefuseUnanswered() const {
  std::vector<std::string> Met;
  for (const TTarget& Target : FTargets)
    if (Target.Rows > 0) Met.push_back(RowsText(Target.Table, Target.Rows, Met.empty()));
  if (!Met.empty() && !CanAsk()) throw EPolicyUnanswered(TPolicy::ExistingRows, Joined(Met) + ".");
}

/// It cannot be told whether the rows of all are wanted, or the last ones in place of the others.
void TTableImport::RefuseRepeated(const TTarget& Target) const {
  if (Target.Keep || Target.LeaveOut || Target.Sections.size() < 2 || FSettings.AreChosen ||
      FPolicies.RepeatedTables == TRepeatedTables::Join)
    return;
  throw EEIError(Format("The table '%s' is to be replaced, and there are %d sections for it: %s", Target.Table,
                        Target.Sections.size(), JoinedInShort(Target.Texts)),
                 {.Code = TErrorCode::RepeatedTable, .Table = Target.Table});
}

void TTableImport::Settle(TOutcome& Outcome) {
  if (FPolicies.ExistingRows == TExisting::Ask) RefuseUnanswered();
  TRepeatedQuestion Question;
  for (TTarget& Target : FTargets) {
    if (Target.Rows == 0) RefuseRepeated(Target);
    if (Target.Rows == 0) continue;
    TAnswer Answer = TAnswer::No;
    if (FPolicies.ExistingRows == TExisting::Ask)
      Answer = Question.Ask({RowsText(Target.Table, Target.Rows) + ". Delete them and put the file's in their place?",
                             {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Append, TAnswer::Cancel},
                             TPolicy::ExistingRows});
    Target.Keep = Answer != TAnswer::Yes;
    Target.LeaveOut = Answer == TAnswer::No;
    RefuseRepeated(Target);
    if (Target.LeaveOut) LeaveOut(Outcome, Target, Format("the table keeps its %s", Counted(Target.Rows, "row")));
  }
  if (!FSettings.Creation) return;
  FSettings.Creation->Settle(Outcome);
  for (const TTarget& Target : FTargets)
    if (Target.IsMade && FSettings.Creation->IsDeclined())
      LeaveOut(Outcome, Target, "the table is not there, and making it was declined");
}

void TTableImport::LeaveOut(TOutcome& Outcome, const TTarget& Target, const std::string& Note) const {
  for (const std::size_t Number : Target.Sections) {
    Outcome.Items[Number].State = TItemState::LeftOut;
    Outcome.Items[Number].Note = Note;
  }
}

const TTableImport::TTarget* TTableImport::Find(std::size_t Number) const {
  const auto Place = FPlaces.find(Number);
  return Place == FPlaces.end() ? nullptr : &FTargets[Place->second];
}

std::optional<TLoadTarget> TTableImport::TargetOf(std::size_t Number) const {
  const TTarget* const Target = Find(Number);
  if (!Target) return std::nullopt;
  return TLoadTarget{Target->Table, !Target->Keep};
}

bool TTableImport::IsMade(std::size_t Number) const {
  const TTarget* const Target = Find(Number);
  return Target && Target->IsMade;
}

std::optional<TPlanStep> TTableImport::Emptying(std::size_t Number) const {
  const TTarget* const Target = Find(Number);
  if (!Target || Target->Keep || Target->IsMade || Target->Sections.front() != Number) return std::nullopt;
  TConnection& Connection = FManager.Databases().Connection(FSettings.DatabaseName);
  const TTableInfo Table = Connection.Schema().FindTable(Target->Table).value();
  return TPlanStep{Format("delete the rows of table '%s'", Target->Table), Connection.Schema().RowCount(Table),
                   "DELETE FROM " + Connection.Dialect().SQLName(Table)};
}

std::vector<TPlanStep> TTableImport::Steps(const TItem& Item, std::size_t Number) const {
  const TTarget* const Target = Find(Number);
  if (!Target) return {};
  return {{Format("load the section '%s' into table '%s'", Item.Section, Target->Table)}};
}

void TTableImport::Begin(std::size_t Number, TEIObject& Object) {
  auto* const Data = dynamic_cast<TEICommonTableData*>(&Object);
  if (!Data) return;
  if (const auto Unfit = FUnfit.find(Number); Unfit != FUnfit.end()) std::rethrow_exception(Unfit->second);
  const TTarget* const Target = Find(Number);
  if (Target) Data->TableName = Target->Table;
  Data->Append = Target ? Target->Keep : FPolicies.ExistingRows != TExisting::Replace;
  Data->SkipMissingFields = FPolicies.MissingFields == TMissingFields::Skip;
  Data->StrictLines = true;
  if (FPolicies.Lenient) Data->StrictValues = false;
  if (!FSettings.Fields.empty()) Data->Fields = &FFields;
}

void TTableImport::End(TItem& Item, const TEIObject* Object) {
  if (const auto* const Data = dynamic_cast<const TEICommonTableData*>(Object)) Item.Counts = *Data->Report;
}

}  // namespace velkrund
