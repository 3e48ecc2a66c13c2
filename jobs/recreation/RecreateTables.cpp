#include "jobs/recreation/RecreateTables.h"

#include <algorithm>

#include "jobs/recreation/TableChanges.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

using TThis = TJobRecreateTables;

constexpr TProperty Properties[] = {
    PropertyOf<&TRecreationJob::Names>("ObjectNames", "the tables to make anew"),
    PropertyOf<&TThis::Mapping>("Mapping", "fields with other names now: old=new, table.old=new, blobfield.old=new"),
    PropertyOf<&TThis::DropData>("DropData", "the rows are not carried over, but dropped with the old table"),
    TPolicyRows::ExistingObjects,
    TPolicyRows::MissingFields,
    TPolicyRows::AllowMissing,
    TPolicyRows::LongNames,
    TPolicyRows::OnError,
    TPolicyRows::DryRun,
};

std::string Quoted(const std::vector<std::string>& Names) {
  std::vector<std::string> Result;
  for (const std::string& Name : Names) Result.push_back(Format("'%s'", Name));
  return Joined(Result);
}

/// While it lives, nobody is told what takes its time.
class TInSilence {
 public:
  explicit TInSilence(TDatabases& Databases) : FDatabases(Databases), FBefore(Databases.SetNotice({})) {}
  TInSilence(const TInSilence&) = delete;
  TInSilence& operator=(const TInSilence&) = delete;
  ~TInSilence() { FDatabases.SetNotice(std::move(FBefore)); }

 private:
  TDatabases& FDatabases;
  TDatabases::TNotice FBefore;
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobRecreateTables");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobRecreateTablesInterface", {&JobProperties, Properties});

/// The list, with the answers that the job has, and each table kept together.
class TThis::TList final : public TUORecreateTables {
 public:
  TList(TJobRecreateTables& Job, TAllowedGaps& Gaps) : FJob(Job), FGaps(Gaps) {}

 private:
  void RecreateOne(TUORecreateTable& Operation) override { FJob.Recreate(Operation, FGaps); }
  void GoOn(const std::exception&, const std::string&) override {
    TRecreation& Item = *FJob.Find({TableObjectType, FJob.FAt});
    FJob.Fail(Item, std::current_exception());
    if (!FJob.MayGoOn(Item)) throw;
  }

  TJobRecreateTables& FJob;
  TAllowedGaps& FGaps;
};

void TThis::Forget() {
  TRecreationJob::Forget();
  FTables.clear();
  FMapping.emplace(Mapping, DatabaseName);
}

bool TThis::Exists(const TRecreation& Item) {
  const std::optional<TTableInfo> Found = Connection().Schema().FindTable(Item.Structure.Name);
  if (Found && Found->Kind == TTableKind::View)
    throw EDatabaseError(
        Format("'%s' is a view in the database, and a table in its structure: drop or rename one", FullName(*Found)));
  return Found.has_value();
}

TThis::TTable& TThis::Prepared(const std::string& Name) { return FTables[UpperCase(Name)]; }

void TThis::Check(TRecreation& Item) {
  Prepare(Item.Structure.Name, TNotes::Later);
  if (LongNames().MayMakeTable(Prepared(Item.Structure.Name).New)) return;
  Item.State = TItemState::LeftOut;
  Item.Note = LText("M_Velkrund_Jobs_NameIsLong");
}

/// Looks at the table and its structure as they are now. Notes: tells what goes with the old table.
void TThis::Prepare(const std::string& Name, TNotes Notes) {
  TTable& Table = Prepared(Name) = {};
  if (!Dictionary().GetDicTable(DatabaseName).GetTableInfo(Name, Table.New))
    throw EDatabaseError(Format("The structure of table '%s' cannot be read", Name));
  Table.Info = Connection().Schema().FindTable(Name);
  CheckReferences(Name, Table);
  if (!Table.Info) return;
  KeepPhysicalName(Table.New, FullName(*Table.Info));
  TakeMapping(Name, Table);
  CheckRows(Name, Table, Notes);
}

void TThis::TakeMapping(const std::string& Name, TTable& Table) {
  FMapping->Take({Name, Name, FieldNames(Connection().Schema().Describe(*Table.Info)), FieldNames(Table.New)},
                 Table.Fields, Table.Inside);
}

/// Locked, and looked at again: others may have changed it since the first look.
std::unique_ptr<TSurroundings> TThis::Locked(const std::string& Name) {
  const TTableInfo Before = *Prepared(Name).Info;
  Connection().Surroundings(Before, {})->Lock();
  Prepare(Name, TNotes::Now);
  const TTable& Table = Prepared(Name);
  if (!Table.Info || *Table.Info != Before)
    throw EDatabaseError(Format("The table '%s' was dropped or renamed by somebody else meanwhile; run it again", Name),
                         {.Table = Name});
  return Connection().Surroundings(*Table.Info, Table.Fields);
}

/// Tables that are left out may be meant by the mapping, too.
void TThis::CheckAll() {
  for (const TRecreation& Item : Items()) {
    const std::optional<TTableInfo> There = Connection().Schema().FindTable(Item.Structure.Name);
    TTable LeftOut;
    if (Item.State == TItemState::NotReached || !There) continue;
    LeftOut.Info = There;
    if (Dictionary().GetDicTable(DatabaseName).GetTableInfo(Item.Structure.Name, LeftOut.New))
      TakeMapping(Item.Structure.Name, LeftOut);
  }
  FMapping->RefuseUnused();
}

void TThis::CheckRows(const std::string& Name, const TTable& Table, TNotes Notes) {
  const TTableChanges Changes = ChangesOf(Connection().Definitions().Table(*Table.Info, {}), Table.New, Table.Fields);
  const auto Tell = [&](const TLText& Text) {
    if (Notes == TNotes::Now) Remark(Name, Text);
  };
  for (const std::string& Gone : Changes.Gone) Tell(LText("M_Velkrund_Jobs_GoneFromTable", Name, Gone));
  if (DropData || !Connection().Schema().HasRows(*Table.Info)) return;
  for (const std::string& Field : Changes.Unzoned) Tell(LText("M_Velkrund_Jobs_Unzoned", Field, Name));
  if (!Changes.LostFields.empty()) {
    const std::string Lost = Quoted(Changes.LostFields);
    if (Policies.MissingFields == TMissingFields::Refuse)
      throw EDatabaseError(Format("The structure of table '%s' has no field for the values of %s. Map what has another "
                                  "name now",
                                  Name, Lost),
                           {.Code = TErrorCode::FieldMissing, .Table = Name, .Column = Changes.LostFields.front()});
    Tell(LText("M_Velkrund_Jobs_FieldsDropped", Name, Lost));
  }
  if (!Changes.Unfilled.empty())
    throw EDatabaseError(
        Format("New in table '%s', without a default, and never NULL: %s. The rows that are there have "
               "nothing for it: give the field a default in the structure, or map an old one to it",
               Name, Quoted(Changes.Unfilled)),
        {.Table = Name, .Column = Changes.Unfilled.front()});
}

void TThis::SetUp(TUORecreateTable& Operation) {
  TTable& Table = Prepared(Operation.TableName);
  Operation.FieldMapping = Table.Fields;
  Operation.BLOBFieldMappingList = Table.Inside;
  Operation.SaveData.FYes = !DropData;
  Operation.TakesLongNames = true;
}

/// Tables that it refers to, and that are made too, come first.
void TThis::AddBehindParents(const std::string& Name, std::vector<std::string>& Meant, int Depth) {
  if (HasName(Meant, Name)) return;
  for (const TDicForeignKey& Key : Prepared(Name).New.ForeignKeys) {
    const TRecreation* const Parent = Find({TableObjectType, UpperCase(Key.FullTable())});
    const bool IsMade = Parent && Parent->State == TItemState::NotReached && !SameText(Parent->Structure.Name, Name);
    if (IsMade && Depth < static_cast<int>(Items().size())) AddBehindParents(Parent->Structure.Name, Meant, Depth + 1);
  }
  if (!HasName(Meant, Name)) Meant.push_back(Name);
}

/// An engine may take a key to a table that is not there, and then no row. What was so before stays so.
void TThis::CheckReferences(const std::string& Name, const TTable& Table) {
  std::vector<std::string> Before;
  if (Table.Info)
    for (const TDicForeignKey& Key : Connection().Definitions().Table(*Table.Info, {}).ForeignKeys)
      Before.push_back(Key.FullTable());
  for (const TDicForeignKey& Key : Table.New.ForeignKeys) {
    const std::string To = Key.FullTable();
    if (Connection().Schema().FindTable(To) || Find({TableObjectType, UpperCase(To)}) || HasName(Before, To)) continue;
    const TScriptGap Gap{"references", Format("the foreign key of table '%s' to the table '%s'", Name, To),
                         "that table is not in the database"};
    if (!InstalledDictionary().Gaps().Allows(Gap)) throw EGap({Gap});
  }
}

void TThis::RecreateAll(TAllowedGaps& Gaps) {
  std::vector<std::string> Meant;
  for (const TRecreation& Item : Items())
    if (Item.State == TItemState::NotReached) AddBehindParents(Item.Structure.Name, Meant);
  BeginPart(Meant.size() == 1 ? Meant.front() : Counted(static_cast<std::int64_t>(Meant.size()), "table"), "rows");
  const TProgressCallback Show = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  };
  if (Meant.size() == 1) {
    TUORecreateTable Operation;
    Operation.Owner = this;
    Operation.DatabaseName = DatabaseName;
    Operation.TableName = Meant.front();
    Operation.FOnShowProgress = Show;
    try {
      Recreate(Operation, Gaps);
    } catch (const EAbort&) {
      throw;
    } catch (const std::exception&) {
      Fail(*Find({TableObjectType, Meant.front()}), std::current_exception());
      throw;
    }
  } else {
    TList Operation(*this, Gaps);
    Operation.Owner = this;
    Operation.DatabaseName = DatabaseName;
    Operation.TableNames = TStringList(Meant);
    Operation.FOnShowProgress = Show;
    if (Operation.Execute() == 0) throw EAbort("cancelled");
  }
  EndPart();
}

void TThis::Recreate(TUORecreateTable& Operation, TAllowedGaps& Gaps) {
  FAt = Operation.TableName;
  SetSubject(FAt);
  if (!Prepared(FAt).Info) {
    SetUp(Operation);
    // One that somebody else has made by now was not asked about.
    Operation.OverWrite.FYes = false;
    Operation.Execute();
    return Finish(Operation);
  }
  const auto Around = Locked(FAt);
  SetUp(Operation);
  Rehearse(FAt, Gaps);
  Around->SetAside();
  if (DropData) Prepared(FAt).Rows = Connection().Schema().RowCount(*Prepared(FAt).Info);
  if (Operation.Execute() == 0 || IsCanceled()) throw EAbort("cancelled");
  RefuseLost(Operation);
  Around->PutBack(TPutBack::Whole);
  for (const std::string& Text : Around->Remarks()) Remark(FAt, Text);
  Finish(Operation);
}

/// What does not come back shows here, while the table is still there with all its rows.
void TThis::Rehearse(const std::string& Name, TAllowedGaps& Gaps) {
  const TInSilence Silence(Manager().Databases());
  const TTable& Table = Prepared(Name);
  TStandaloneDictionary& Dictionary = Gaps.Dictionary();
  TTransaction Part(DatabaseName);
  const auto Around = Connection().Surroundings(*Table.Info, Table.Fields);
  Around->SetAside();
  Dictionary.CreateTableByDef(DatabaseName, Table.New, PatternOf(Name, Dictionary), TTableScriptPart::All, true);
  Around->PutBack(TPutBack::Rehearsed);
  if (!Policies.DryRun) Dictionary.Gaps().TakeNoted();
}

std::string TThis::PatternOf(const std::string& Name, TStandaloneDictionary& Dictionary) const {
  return Dictionary.GetCreateTablePatternString(Dictionary.GetPatternName(Name, DatabaseName), DatabaseName);
}

void TThis::RefuseLost(const TUORecreateTable& Operation) {
  if (Operation.LostFields().empty()) return;
  const std::string Lost = Quoted({Operation.LostFields().begin(), Operation.LostFields().end()});
  if (Policies.MissingFields == TMissingFields::Refuse)
    throw EDatabaseError(
        Format("The structures of the tables inside the BLOB fields of table '%s' have no field for "
               "the values of %s. Map what has another name now",
               Operation.TableName, Lost),
        {.Code = TErrorCode::FieldMissing, .Table = Operation.TableName, .Column = *Operation.LostFields().begin()});
  Remark(Operation.TableName, LText("M_Velkrund_Jobs_InsideDropped", Operation.TableName, Lost));
}

void TThis::Remark(const std::string& Name, const TLText& Text) {
  Find({TableObjectType, Name})->Remarks.push_back(Text);
}

void TThis::Finish(const TUORecreateTable& Operation) {
  TRecreation& Item = *Find({TableObjectType, Operation.TableName});
  if (Operation.End() == TUORecreateTable::TEnd::LeftAlone) {
    Item.State = TItemState::LeftOut;
    Item.Note = LText("M_Velkrund_Jobs_MadeMeanwhile");
    return;
  }
  Item.State = TItemState::Done;
  if (!Item.IsThere) return;
  if (DropData)
    Item.RowsDropped = Prepared(Operation.TableName).Rows;
  else
    Item.Rows = Operation.Rows();
}

void TThis::Plan(TAllowedGaps& Gaps) {
  for (const TRecreation& Item : Items()) {
    if (Item.State != TItemState::NotReached) continue;
    if (Item.IsThere) static_cast<void>(Locked(Item.Structure.Name));
    if (Item.IsThere) Rehearse(Item.Structure.Name, Gaps);
    AddSteps(Item.Structure.Name, Gaps);
  }
}

void TThis::AddSteps(const std::string& Name, TAllowedGaps& Gaps) {
  const TTable& Table = Prepared(Name);
  if (Table.Info) {
    const std::int64_t Rows = Connection().Schema().RowCount(*Table.Info);
    // Not as a statement: run as it is printed, it would take the rows away.
    if (!DropData) AddToPlan({Format("carry the rows of table '%s' over, and drop the old table", Name), Rows});
    if (DropData)
      AddToPlan({Format("drop table '%s' with its rows", Name), Rows, Connection().Scripts().DropTable(Table.New)});
  }
  TStandaloneDictionary& Dictionary = Gaps.Dictionary();
  for (const TScriptStatement& Statement :
       Dictionary.Script(DatabaseName, Table.New, PatternOf(Name, Dictionary), TTableScriptPart::All).Statements)
    AddToPlan({"make " + Statement.What, {}, Statement.Text});
}

}  // namespace velkrund
