#include "jobs/tables/TableImport.h"

#include <algorithm>

#include "jobs/dictionary/GivenMapping.h"
#include "jobs/files/SectionChoice.h"
#include "jobs/policies/Questions.h"
#include "jobs/tables/ExistingRows.h"
#include "velkrund/dictionary/QueryData.h"
#include "velkrund/eif/EIErrors.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// The field of a query's section that counts its rows, which no table has.
constexpr const char* RowNumberField = "#";

/// Both sides of the pairs.
struct TMappedNames {
  explicit TMappedNames(const TStringPairs& Mapping) {
    for (const auto& [Source, Target] : Mapping) From.Add(Source), To.Add(Target);
  }
  TStringList From, To;
};

bool HasName(const TStringList& Names, const std::string& Name) { return Names.IndexOf(Name) >= 0; }

/// Whether a field of the file goes into one of the table: of a pair, else of its own name unless a pair fills that.
bool FillsOne(const std::string& Field, const TStringList& TableFields, const TMappedNames& Mapping) {
  return HasName(Mapping.From, Field) || (!HasName(Mapping.To, Field) && HasName(TableFields, Field));
}

}  // namespace

TTableImport::TTableImport(TStandaloneManager& Manager, const TPolicies& Policies, TSettings Settings)
    : FManager(Manager),
      FPolicies(Policies),
      FSettings(std::move(Settings)),
      FSearch(Manager, FSettings.DatabaseName, FSettings.DatabaseText),
      FFields(FSettings.Fields) {}

/// Table: null where the run makes it.
TTableImport::TTarget& TTableImport::TargetFor(const std::string& Name, TTable* Table) {
  const auto [Known, IsNew] = FByTable.try_emplace(Name, FTargets.size());
  if (!IsNew) return FTargets[Known->second];
  TTarget Target{Name};
  Target.IsMade = !Table;
  if (Table && TExistingRows(FPolicies, {}).Counts()) Target.Rows = Table->RecordCount();
  FTargets.push_back(std::move(Target));
  return FTargets.back();
}

TTableImport::TKnownTable TTableImport::Known(const std::string& Name, std::unique_ptr<TTable>& Table) const {
  TKnownTable Result;
  const TDicTableDescription* const Described =
      FSettings.Creation && !Name.empty() ? FSettings.Creation->Find(Name) : nullptr;
  if (Described) {
    Result.Name = Described->FullName();
    for (const TDicField& Field : Described->Fields) Result.Fields.Add(Field.Name);
  } else if ((Table = FSearch.Find(Name, true))) {
    if (const auto Info = FManager.Databases().Connection(FSettings.DatabaseName).Schema().FindTable(Name))
      FSearch.RefuseIndex(*Info);
    Result.Name = Table->TableName();
    for (int I = 0; I < Table->Record().FieldCount(); ++I) Result.Fields.Add(Table->Record().Fields(I).Name());
  }
  return Result;
}

void TTableImport::Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) {
  const TEISectionList& Sections = Input.File().Sections();
  Item.IsQuery = Sections[Index].ObjectClass.Role() == TSectionRole::QueryData;
  std::optional<TQueryTableMapping> Choice;
  if (Item.IsQuery && FSettings.TableName.empty() && !(Choice = Chosen(Input, Index, Number))) return;
  if (Choice)
    Item.Table = Choice->TableName;
  else
    Item.Table = FSettings.TableName.empty() ? TableOf(Sections[Index]) : FSettings.TableName;
  std::unique_ptr<TTable> Table;
  const TKnownTable Known = this->Known(Item.Table, Table);
  const bool IsKnown = !Known.Name.empty();
  if (!IsKnown && FSettings.HasToFit && Item.Table.empty())
    throw EEIError(Format("The header of %s names no table: give the one that it is for", SectionText(Sections, Index)),
                   {.Code = TErrorCode::TableMissing, .File = Input.Name(), .Section = Sections[Index].Name()});
  if (!IsKnown && (FSettings.HasToFit || Item.IsQuery))
    FSearch.Missing(Item.Table, " for " + SectionText(Sections, Index));
  if (!IsKnown) return;  // the import of the section says so
  Item.Table = Known.Name;
  if (!Fits(Input, Index, Known, Number)) return;
  TTarget& Target = TargetFor(Known.Name, Table.get());
  if (Choice) {
    Target.IsSettled = true;
    Target.Keep = !Choice->ClearTarget;
  }
  Target.Sections.push_back(Number);
  Target.Texts.push_back(Format("%s of '%s'", SectionText(Sections, Index), Input.Name()));
  FPlaces.emplace(Number, static_cast<std::size_t>(&Target - FTargets.data()));
}

/// Where a person wants the rows of a query; nothing: nowhere. The error where nobody can be asked comes before
/// anything is changed.
std::optional<TQueryTableMapping> TTableImport::Chosen(TInputFile& Input, int Index, std::size_t Number) {
  const std::optional<std::vector<std::string>> Names =
      FSettings.Fields.empty() ? FieldsOf(Input.File(), Index) : FSettings.Fields;
  TQueryTableMapping Result{{}, FSettings.Mapping, FPolicies.ExistingRows == TExisting::Replace};
  if (!CanAsk())
    throw EPolicyUnanswered(TPolicy::QueryTarget, LText("M_Velkrund_Jobs_RowsOfQuery",
                                                        LSectionText(Input.File().Sections(), Index), Input.Name()));
  int Code = mrCancel;
  const std::string Query = QueryTextOf(Input.File(), Index);
  Synchronize([&] {
    Code = SelectQueryTableMapping(Query, Names.value_or(std::vector<std::string>()), FSettings.DatabaseName, Result);
  });
  if (Code == mrOk) {
    FMappings[Number] = Result.FieldMapping;
    return Result;
  }
  FPassedOver.insert(Number);
  return std::nullopt;
}

/// Fields that the table lacks; whoever has chosen where fields go has seen which of them go nowhere.
bool TTableImport::MaySkip(std::size_t Number) const {
  return FPolicies.MissingFields == TMissingFields::Skip || FMappings.contains(Number);
}

const TStringPairs& TTableImport::MappingOf(std::size_t Number) const {
  const auto Own = FMappings.find(Number);
  return Own == FMappings.end() ? FSettings.Mapping : Own->second;
}

/// Whether the section's fields are those of the table. An error that ends the run comes before anything is changed;
/// where the run goes on with the others, the section keeps it until its turn comes.
bool TTableImport::Fits(TInputFile& Input, int Index, const TKnownTable& Table, std::size_t Number) {
  try {
    CheckFields(Input, Index, Table, Number);
    return true;
  } catch (const EEIError&) {
    if (FSettings.HasToFit || FPolicies.OnError != TOnError::Continue) throw;
    FUnfit.emplace(Number, std::current_exception());
    return false;
  }
}

/// Fields that nobody has: the section would refuse them too, after other sections were loaded.
void TTableImport::CheckFields(TInputFile& Input, int Index, const TKnownTable& Table, std::size_t Number) const {
  const TStringPairs& Mapping = MappingOf(Number);
  const std::optional<std::vector<std::string>> Names = FieldsOf(Input.File(), Index);
  if (!Names) return;  // the import says what is wrong with the body
  const TEISectionList& Sections = Input.File().Sections();
  const TErrorInfo Place{.Code = TErrorCode::FieldMissing, .File = Input.Name(), .Section = Sections[Index].Name()};
  if (const auto Doubled = DoubledTarget(Mapping))
    throw ESettingsError(
        Format("%s fills the field '%s' of table '%s' twice", Setting("Mapping"), *Doubled, Table.Name));
  const TStringList InFile(*Names);
  const TMappedNames Mapped(Mapping);
  const auto RequireInFile = [&](const std::string& Field) {
    if (HasName(InFile, Field)) return;
    TErrorInfo Info = Place;
    Info.Column = Field;
    throw EEIError(Format("There is no field '%s' in %s%s", Field, SectionText(Sections, Index),
                          ContentHint(Field, *Names, ": it has ")),
                   Info);
  };
  for (const std::string& Field : FSettings.Fields) RequireInFile(Field);
  for (const auto& [Field, Target] : Mapping) {
    RequireInFile(Field);
    if (!FSettings.Fields.empty() && !HasName(FFields, Field))
      throw ESettingsError(Format("%s gives the field '%s' a place, but it is not among %s", Setting("Mapping"), Field,
                                  Setting("Fields")));
    if (Target.empty() || Table.Has(Target)) continue;
    TErrorInfo Info = Place;
    Info.Table = Table.Name;
    throw EEIError(Format("The table '%s' has no field '%s' for '%s' of %s%s", Table.Name, Target, Field,
                          SectionText(Sections, Index), ContentHint(Target, Table.Fields.Items(), "; it has ")),
                   Info);
  }
  const std::vector<std::string>& Wanted = FSettings.Fields.empty() ? *Names : FSettings.Fields;
  // There are tables without a field, whose rows are merely counted.
  if (Wanted.empty() && Table.Fields.Count() == 0) return;
  const bool IsQuery = Sections[Index].ObjectClass.Role() == TSectionRole::QueryData;
  std::vector<std::string> Missing;
  for (const std::string& Field : Wanted)
    if (!FillsOne(Field, Table.Fields, Mapped) && !(IsQuery && Field == RowNumberField)) Missing.push_back(Field);
  const bool CountsRows = IsQuery && HasName(FSettings.Fields.empty() ? InFile : FFields, RowNumberField);
  const std::size_t Numbers = CountsRows && !FillsOne(RowNumberField, Table.Fields, Mapped) ? 1 : 0;
  if (Missing.size() + Numbers >= Wanted.size()) {
    TErrorInfo Info = Place;
    Info.Table = Table.Name;
    throw EEIError(Format("The table '%s' has none of the fields of %s%s", Table.Name, SectionText(Sections, Index),
                          Wanted.empty() ? ", which has none" : ": " + JoinedInShort(Wanted)),
                   Info);
  }
  if (!MaySkip(Number)) RefuseMissing(Input, Index, Table, Missing);
}

/// Fields that would be passed over.
void TTableImport::RefuseMissing(TInputFile& Input, int Index, const TKnownTable& Table,
                                 const std::vector<std::string>& Missing) const {
  if (Missing.empty()) return;
  std::vector<std::string> Quoted;
  for (const std::string& Field : Missing) Quoted.push_back(Format("'%s'", Field));
  const TEISectionList& Sections = Input.File().Sections();
  const char* const Noun = Missing.size() == 1 ? "field" : "fields";
  throw EEIError(Format("The table '%s' lacks the %s %s of %s%s", Table.Name, Noun, JoinedInShort(std::move(Quoted)),
                        SectionText(Sections, Index), NearestHint(Missing.front(), Table.Fields.Items())),
                 {.Code = TErrorCode::FieldMissing,
                  .File = Input.Name(),
                  .Section = Sections[Index].Name(),
                  .Table = Table.Name,
                  .Column = Missing.front()});
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
  TExistingRows Existing(FPolicies, LText("M_Velkrund_Jobs_RowsOfFile"));
  for (const TTarget& Target : FTargets)
    if (!Target.IsSettled) Existing.Announce(Target.Table, Target.Rows);
  Existing.RefuseUnanswered();
  for (TTarget& Target : FTargets) {
    if (Target.IsSettled) continue;
    const TRowsFate Fate = Existing.FateOf(Target.Table, Target.Rows);
    Target.Keep = Fate != TRowsFate::Go;
    Target.LeaveOut = Fate == TRowsFate::Prevail;
    RefuseRepeated(Target);
    if (Target.LeaveOut) LeaveOut(Outcome, Target, LCounted("M_Velkrund_Jobs_KeepsRows", Target.Rows, Target.Rows));
  }
  for (const std::size_t Number : FPassedOver) {
    Outcome.Items[Number].State = TItemState::LeftOut;
    Outcome.Items[Number].Note = LText("M_Velkrund_Jobs_NoTableChosen");
  }
  if (!FSettings.Creation) return;
  FSettings.Creation->Settle(Outcome);
  for (const TTarget& Target : FTargets)
    if (Target.IsMade && FSettings.Creation->IsDeclined())
      LeaveOut(Outcome, Target, LText("M_Velkrund_Jobs_TableDeclined"));
}

void TTableImport::LeaveOut(TOutcome& Outcome, const TTarget& Target, const TLText& Note) const {
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
  auto* const Data = dynamic_cast<TEIRecordData*>(&Object);
  if (!Data) return;
  if (const auto Unfit = FUnfit.find(Number); Unfit != FUnfit.end()) std::rethrow_exception(Unfit->second);
  const TTarget* const Target = Find(Number);
  if (Target) Data->TableName = Target->Table;
  Data->Append = Target ? Target->Keep : FPolicies.ExistingRows != TExisting::Replace;
  Data->SkipMissingFields = MaySkip(Number);
  Data->StrictLines = true;
  if (FPolicies.Lenient) Data->StrictValues = false;
  if (!FSettings.Fields.empty()) Data->Fields = &FFields;
  Data->FieldMapping = MappingOf(Number);
}

void TTableImport::End(TItem& Item, const TEIObject* Object) {
  if (const auto* const Data = dynamic_cast<const TEIRecordData*>(Object)) Item.Counts = *Data->Report;
  // No table has the numbers of rows, and nobody misses them.
  if (Item.IsQuery) std::erase(Item.Counts.SkippedFields, RowNumberField);
}

}  // namespace velkrund
