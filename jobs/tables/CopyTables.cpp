#include "jobs/tables/CopyTables.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

#include "jobs/report/ErrorReport.h"
#include "jobs/run/LetGo.h"
#include "jobs/run/LoadOptions.h"
#include "jobs/tables/ExistingRows.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobCopyTables;

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingRows,
    TPolicyRows::OnError,
    TPolicyRows::MissingFields,
    TPolicyRows::Commit,
    TPolicyRows::Triggers,
    TPolicyRows::TableIndexes,
    TPolicyRows::BrokenReferences,
    TPolicyRows::DryRun,
    TPolicyRows::AllowLoss,
    PropertyOf<&TThis::SourceDatabaseName>("SourceDatabaseName", "the database that the rows are from"),
    PropertyOf<&TThis::Tables>("Tables", "the tables to copy; empty: all of that database"),
    PropertyOf<&TThis::TargetTableName>("TargetTableName",
                                        "for one table: the one that it goes into; empty: that of its name"),
    PropertyOf<&TThis::Mapping>("Mapping",
                                "fields with other names in the target: source=target, table.source=target, "
                                "blobfield.source=target"),
    PropertyOf<&TThis::Selection>("Selection", "for one table: a condition that its rows are copied by; empty: all"),
    PropertyOf<&TThis::ExcludedBLOBFields>("ExcludedBLOBFields", "BLOB fields that are copied as they are"),
    PropertyOf<&TThis::Update>("Update", "a row takes the place of the one that has its key"),
};

std::string Quoted(const std::vector<std::string>& Names) {
  std::vector<std::string> Result;
  for (const std::string& Name : Names) Result.push_back(Format("'%s'", Name));
  return JoinedInShort(std::move(Result));
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobCopyTables");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobCopyTablesInterface", {&SectionsJobProperties, Properties});

void TJobCopyTables::CheckSettings() const {
  const auto ForOne = [&](bool IsGiven, std::string_view Property) {
    if (IsGiven && Tables.size() != 1)
      throw ESettingsError(Format("%s is about one table, but several are copied", Setting(Property)));
  };
  ForOne(!TargetTableName.empty(), "TargetTableName");
  ForOne(!Selection.empty(), "Selection");
  if (!Selection.empty() && Trim(Selection).empty()) throw ESettingsError(Setting("Selection") + " is blank");
  if (Update && Policies.ExistingRows == TExisting::Replace)
    throw ESettingsError(Format("%s keeps the rows that are there: it does not go with %s replace", Setting("Update"),
                                Setting("ExistingRows")));
}

void TJobCopyTables::Forget() {
  TSectionsJob::Forget();
  FSourceText.clear();
  FCopies.clear();
}

void TJobCopyTables::Run() {
  FOutcome = {LText("M_Velkrund_Jobs_Copied"), DatabaseText(), {}};
  FErrors.emplace(Policies.OnError);
  FSourceText = CheckedDatabase(SourceDatabaseName, "SourceDatabaseName");
  TDatabases& Databases = Manager().Databases();
  const TLetGo LetGo(Databases, SourceDatabaseName);
  struct TCloser {
    std::unique_ptr<TTableLoading>& Loading;
    ~TCloser() { Loading.reset(); }
  } const Closer{FLoading};
  Plan();
  Settle();
  std::vector<TLoadTarget> Targets;
  for (const std::size_t Number : Taken()) {
    const TPlannedCopy& Copy = FCopies[Number];
    Targets.push_back({Copy.Into(), !Copy.Keep, HasManyRows(Copy.Source.Table)});
  }
  if (Targets.empty()) return;
  FLoading = Relations()->Load(DatabaseName, Targets, LoadOptionsOf(Policies));
  if (Policies.DryRun) return MakePlan();
  FIsOneDatabase = Databases.IsSameDatabase(SourceDatabaseName, DatabaseName);
  // Rows of one table refer to rows of another. One alone is read by one statement, unless the engine runs functions
  // that write where nobody keeps them from it.
  const bool NeedsMoment = Targets.size() > 1 || Databases.Connection(SourceDatabaseName).Capabilities().Procedures;
  std::optional<TReadTransaction> Moment;
  if (NeedsMoment && !FIsOneDatabase) Moment.emplace(Databases, SourceDatabaseName);
  CopyAll();
}

/// Which table goes into which; an error comes before anything is changed.
void TJobCopyTables::Plan() {
  TCopyPlan Plan(Manager(), {SourceDatabaseName, FSourceText}, {DatabaseName, DatabaseText()}, Mapping, Update);
  for (const std::string& Table :
       Tables.empty() ? TablesWithRows(Manager(), SourceDatabaseName, FOutcome.Notes) : Tables)
    PlanOne(Plan, Table);
  Plan.RefuseUnusedMapping();
  for (const std::string& Field : ExcludedBLOBFields)
    if (std::none_of(FCopies.begin(), FCopies.end(),
                     [&](const TPlannedCopy& Copy) { return HasName(FieldNames(Copy.Target), Field); }))
      throw ESettingsError(
          Format("%s names the field '%s', which no table that is filled has", Setting("ExcludedBLOBFields"), Field));
}

void TJobCopyTables::PlanOne(TCopyPlan& Plan, const std::string& Table) {
  TPlannedCopy Copy = Plan.Plan(Table, TargetTableName);
  if (!Selection.empty()) CheckSelection(Copy);
  for (const TPlannedCopy& Other : FCopies) {
    if (Other.From() == Copy.From()) return;
    if (Other.Into() == Copy.Into())
      throw EDatabaseError(
          Format("The tables '%s' and '%s' would both go into '%s'", Other.From(), Copy.From(), Copy.Into()),
          {.Code = TErrorCode::RepeatedTable, .Table = Copy.Into()});
  }
  TItem Item;
  Item.Source = Copy.From();
  Item.Table = Copy.Into();
  TakeSkipped(Item, Copy);
  FOutcome.Items.push_back(std::move(Item));
  FCopies.push_back(std::move(Copy));
}

/// Whether the engine understands it.
void TJobCopyTables::CheckSelection(const TPlannedCopy& Copy) const {
  // Whatever functions it calls, they write nothing.
  const TReadTransaction Moment(Manager().Databases(), SourceDatabaseName);
  const std::unique_ptr<TTable> Table = Manager().GetUserTable(Copy.From(), SourceDatabaseName, false);
  if (!Table) return;
  Table->SetSelection(Selection);
  static_cast<void>(Table->First());
}

/// Fields that would stay behind.
void TJobCopyTables::TakeSkipped(TItem& Item, const TPlannedCopy& Copy) {
  if (Copy.Skipped.empty()) return;
  if (Policies.MissingFields == TMissingFields::Refuse)
    throw EDatabaseError(
        Format("The table '%s' has no field for %s of '%s'. Map what has another name there%s", Copy.Into(),
               Quoted(Copy.Skipped), Copy.From(), NearestHint(Copy.Skipped.front(), FieldNames(Copy.Target))),
        {.Code = TErrorCode::FieldMissing, .Table = Copy.Into(), .Column = Copy.Skipped.front()});
  Item.Counts.SkippedFields = Copy.Skipped;
}

void TJobCopyTables::Settle() {
  TPolicies Own = Policies;
  if (Update) Own.ExistingRows = TExisting::Add;
  TExistingRows Existing(Own, LText("M_Velkrund_Jobs_TheOthers"));
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  for (TPlannedCopy& Copy : FCopies) {
    if (Existing.Counts())
      Copy.Rows = Manager().Databases().Connection(DatabaseName).Schema().RowCount(Copy.Target.Table);
    Existing.Announce(Copy.Into(), Copy.Rows);
  }
  Existing.RefuseUnanswered();
  for (std::size_t Number = 0; Number < FCopies.size(); ++Number) {
    const TRowsFate Fate = Existing.FateOf(FCopies[Number].Into(), FCopies[Number].Rows);
    FCopies[Number].Keep = Fate != TRowsFate::Go;
    if (Fate != TRowsFate::Prevail) continue;
    FOutcome.Items[Number].State = TItemState::LeftOut;
    FOutcome.Items[Number].Note = LCounted("M_Velkrund_Jobs_KeepsRows", FCopies[Number].Rows, FCopies[Number].Rows);
  }
}

std::vector<std::size_t> TJobCopyTables::Taken() const {
  std::vector<std::size_t> Result;
  for (std::size_t Number = 0; Number < FCopies.size(); ++Number)
    if (FOutcome.Items[Number].State == TItemState::NotReached) Result.push_back(Number);
  return Result;
}

/// What hangs together, each with its tables, all in the order of the loading.
std::vector<std::pair<std::size_t, std::vector<std::size_t>>> TJobCopyTables::Groups() const {
  std::vector<std::size_t> Numbers = Taken();
  std::stable_sort(Numbers.begin(), Numbers.end(), [this](std::size_t A, std::size_t B) {
    return FLoading->Rank(FCopies[A].Into()) < FLoading->Rank(FCopies[B].Into());
  });
  std::vector<std::pair<std::size_t, std::vector<std::size_t>>> Result;
  for (const std::size_t Number : Numbers) {
    const std::size_t Group = FLoading->Group(FCopies[Number].Into());
    if (Result.empty() || Result.back().first != Group) Result.push_back({Group, {}});
    Result.back().second.push_back(Number);
  }
  return Result;
}

void TJobCopyTables::MakePlan() {
  const auto Groups = this->Groups();
  TConnection& Connection = Manager().Databases().Connection(DatabaseName);
  for (auto Group = Groups.rbegin(); Group != Groups.rend(); ++Group)
    for (auto Number = Group->second.rbegin(); Number != Group->second.rend(); ++Number) {
      const TPlannedCopy& Copy = FCopies[*Number];
      if (!Copy.Keep)
        AddToPlan({Format("delete the rows of table '%s'", Copy.Into()),
                   Connection.Schema().RowCount(Copy.Target.Table),
                   "DELETE FROM " + Connection.Dialect().SQLName(Copy.Target.Table)});
    }
  for (const auto& [Group, Numbers] : Groups)
    for (const std::size_t Number : Numbers) {
      AddToPlan({Format("copy the rows of table '%s' into '%s'", FCopies[Number].From(), FCopies[Number].Into())});
      FOutcome.Items[Number].State = TItemState::LeftOut;
      FOutcome.Items[Number].Note = LText("M_Velkrund_Jobs_NothingChanged");
    }
}

void TJobCopyTables::CopyAll() {
  const auto Groups = this->Groups();
  FStopped = false;
  if (Policies.Commit == TCommit::Run) FLoading->BeginAll();
  for (const auto& [Group, Numbers] : Groups) {
    if (IsCanceled()) FOutcome.Cancelled = LText("M_Velkrund_Jobs_Cancelled");
    if ((FStopped = IsCanceled() || !CopyGroup(Numbers, Group))) break;
  }
  const std::vector<TLText> Remarks = FLoading->Remarks();
  EndWhole();
  if (FOutcome.Any(TItemState::Done)) FOutcome.Notes.insert(FOutcome.Notes.end(), Remarks.begin(), Remarks.end());
}

/// False: the run ends there.
bool TJobCopyTables::CopyGroup(const std::vector<std::size_t>& Numbers, std::size_t Group) {
  std::size_t At = Numbers.front();
  try {
    const std::vector<std::int64_t> Before = SourceRows(Numbers);
    FLoading->Begin(Group);
    RefuseEmptied(Numbers, Before);
    for (const std::size_t Number : Numbers) CopyOne(At = Number);
    if (IsCanceled()) throw EAbort("cancelled");
    FLoading->End(true);
    return true;
  } catch (const EAbort& Abort) {
    FLoading->End(false);
    FOutcome.Cancelled = CancelText(Abort.what());
    FOutcome.Items[At].State = TItemState::Cancelled;
    TakeBack(Numbers);
    return false;
  } catch (const std::exception&) {
    const std::exception_ptr Error = std::current_exception();
    FLoading->End(false);
    FOutcome.Fail(FOutcome.Items[At], Error);
    TakeBack(Numbers);
    if (Listener) Fault(*FOutcome.Items[At].Error);
    return GoOn(FOutcome.Items[At]);
  }
}

/// So many that it pays to prepare a table for them.
bool TJobCopyTables::HasManyRows(const TTableInfo& Source) const {
  constexpr std::int64_t Many = 10'000;
  // A view is not to be run for that.
  return Policies.TableIndexes == TIndexPolicy::Auto && Source.Kind == TTableKind::Table &&
         Manager().Databases().Connection(SourceDatabaseName).Schema().HasAtLeast(Source, Many);
}

/// Of tables whose rows may go when those of their targets go: what a view shows, what hangs on them by a trigger.
std::vector<std::int64_t> TJobCopyTables::SourceRows(const std::vector<std::size_t>& Numbers) const {
  std::vector<std::int64_t> Result;
  if (!FIsOneDatabase) return Result;
  const bool Empties =
      std::any_of(Numbers.begin(), Numbers.end(), [this](std::size_t Number) { return !FCopies[Number].Keep; });
  for (const std::size_t Number : Numbers) {
    const auto Table = Empties ? Manager().GetUserTable(FCopies[Number].From(), SourceDatabaseName, false) : nullptr;
    Result.push_back(Table ? Table->RecordCount() : 0);
  }
  return Result;
}

void TJobCopyTables::RefuseEmptied(const std::vector<std::size_t>& Numbers,
                                   const std::vector<std::int64_t>& Before) const {
  if (Before.empty() || SourceRows(Numbers) == Before) return;
  throw EDatabaseError(
      Format("Rows of the tables that are to be copied went with those of the tables that they go into "
             "(%s): the ones show, or hang on, the others. Keep the rows that are there, or copy into "
             "other tables",
             FCopies[Numbers.front()].Into()),
      {.Code = TErrorCode::RowRefused, .Table = FCopies[Numbers.front()].Into()});
}

void TJobCopyTables::CopyOne(std::size_t Number) {
  const TPlannedCopy& Copy = FCopies[Number];
  TItem& Item = FOutcome.Items[Number];
  TUOCustomCopyTable Operation;
  Operation.Owner = this;
  Operation.DatabaseName = SourceDatabaseName;
  Operation.TargetDatabaseName = DatabaseName;
  Operation.SourceTableName = Copy.From();
  Operation.TargetTableName = Copy.Into();
  Operation.FieldMapping = Copy.Fields;
  Operation.BLOBFieldMappingList = Copy.Inside;
  Operation.ExcludedBLOBTableFields = TStringList(ExcludedBLOBFields);
  Operation.Selection = Selection;
  Operation.Append = Copy.Keep;
  Operation.Update = Update;
  Operation.StrictText = !Policies.AllowLoss;
  Operation.Loading = FLoading.get();
  Operation.FOnShowProgress = PartProgress();
  const auto Start = std::chrono::steady_clock::now();
  BeginPart(Item.Source, "rows");
  const int Result = Operation.Execute();
  EndPart();
  Item.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
  if (!Operation.Report().Opened)
    throw EDatabaseError(Format("The tables '%s' and '%s' cannot be opened any more", Copy.From(), Copy.Into()),
                         {.Code = TErrorCode::TableMissing, .Table = Copy.Into()});
  if (Result == 0) throw EAbort("cancelled");
  RefuseLost(Operation);
  Item.Counts.RowCount = Operation.Report().Rows;
  Item.Counts.DeletedRows = FLoading->TakeDeletedRows(Copy.Into());
  Item.Counts.ValuesChanged = Operation.Report().ValuesChanged;
  Item.RowsUpdated = Operation.Report().UpdatedRows;
  Item.State = TItemState::Done;
  TellItem({}, "table", [&Item] { return ItemDocument(Item); });
}

/// What tables inside BLOB fields had and no field takes.
void TJobCopyTables::RefuseLost(const TUOCustomCopyTable& Operation) {
  const std::set<std::string>& Lost = Operation.Report().LostFields;
  if (Lost.empty()) return;
  const std::string Names = Joined({Lost.begin(), Lost.end()});
  if (Policies.MissingFields == TMissingFields::Refuse)
    throw EDicUtilError(
        Format("The structures of the tables inside the BLOB fields of table '%s' have no fields for "
               "the values of %s. Map what has another name there",
               Operation.TargetTableName, Names),
        {.Code = TErrorCode::FieldMissing, .Table = Operation.TargetTableName, .Column = *Lost.begin()});
  FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_LeftInside", Operation.SourceTableName, Names));
}

bool TJobCopyTables::GoOn(const TItem& Failed) {
  if (!FOutcome.Any(TItemState::NotReached) && !FOutcome.Any(TItemState::Done)) return false;
  const TLText Question = LText("M_Velkrund_Jobs_ContinueOthers");
  try {
    return FErrors->GoOn(Listener ? Question : LErrorLine(*Failed.Error) + "\r\n" + Question);
  } catch (const EPolicyUnanswered& Unanswered) {
    Stop(Unanswered.Policy());
  } catch (const EAbort& Abort) {
    FOutcome.Cancelled = CancelText(Abort.what());
  }
  return false;
}

/// Keeps what was copied, or takes it back after an error that nobody goes on after, and when it is cancelled.
void TJobCopyTables::EndWhole() {
  if (Policies.Commit == TCommit::Each) return;
  const bool Stays = !FStopped && FOutcome.Cancelled.Empty() && FOutcome.Any(TItemState::Done);
  std::vector<std::size_t> All(FCopies.size());
  for (std::size_t Number = 0; Number < All.size(); ++Number) All[Number] = Number;
  try {
    if (Stays) return FLoading->CommitAll();
  } catch (const EAbort& Abort) {
    FOutcome.Cancelled = CancelText(Abort.what());
  } catch (const std::exception&) {
    FOutcome.Fail(std::current_exception());
    // An answer that never came: what has become of it only the database knows.
    if (FOutcome.Error->Info.Code == TErrorCode::Connection) {
      for (TItem& Item : FOutcome.Items)
        if (Item.State == TItemState::Done) FOutcome.Fail(Item, FOutcome.FirstError);
      return;
    }
  }
  FLoading.reset();
  TakeBack(All);
  FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_DatabaseAsBefore"));
}

void TJobCopyTables::TakeBack(const std::vector<std::size_t>& Numbers) {
  for (const std::size_t Number : Numbers)
    if (FOutcome.Items[Number].State == TItemState::Done) FOutcome.Items[Number].State = TItemState::TakenBack;
}

void TJobCopyTables::Describe(TDocument& Document) const {
  TSectionsJob::Describe(Document);
  Document.Set("sourceDatabase", FSourceText);
}

}  // namespace velkrund
