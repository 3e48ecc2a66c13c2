#include "jobs/tables/ExportTables.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "jobs/dictionary/ObjectChoice.h"
#include "jobs/tables/TableSearch.h"
#include "standalone/dictionary/Describer.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

using TThis = TJobExportTables;

constexpr std::string_view Orders[] = {"key", "any"};

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Tables>("Tables", "the tables to save; empty: all of the database"),
    TPolicyRows::Columns,
    PropertyOf<&TThis::Structures>("Structures", "describe each table in a structure section before its rows"),
    PropertyOf<&TThis::Fields>("Fields", "for one table: the only fields to save; empty: all"),
    ChoiceOf<&TThis::RowOrder>("RowOrder", "of every table: by its key, or as the engine has them, which is quickest",
                               Orders),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportTables");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportTablesInterface", {&ExportJobProperties, Properties});

void TJobExportTables::CheckSettings() const {
  TExportJob::CheckSettings();
  if (Structures && !Fields.empty())
    throw ESettingsError(
        Format("%s describes whole tables: it does not go with %s", Setting("Structures"), Setting("Fields")));
  if (Several() && !Fields.empty())
    throw ESettingsError(Format("%s names fields of one table, but several tables are exported", Setting("Fields")));
}

/// What has no rows to save would give an empty section, or one of NULLs.
void TJobExportTables::RefuseWithoutRows() const {
  for (const std::string& Name : Tables) {
    const auto Table = Manager().Databases().Connection(DatabaseName).Schema().FindTable(Name);
    if (Table) TTableSearch(Manager(), DatabaseName, FOutcome.Database).RefuseIndex(*Table);
  }
}

TItem TJobExportTables::WithoutTable(const TTableSearch& Search, const std::string& Name) {
  TItem Result;
  Result.Section = SectionName.empty() ? Name : SectionName;
  Result.Table = Name;
  try {
    Search.Missing(Name);
  } catch (const EDatabaseError&) {
    LeaveOut(Result, std::current_exception());
  }
  return Result;
}

/// The tables under their physical names, each once. A name that is none ends the run before anything is written.
std::vector<TItem> TJobExportTables::PlanItems() {
  RefuseWithoutRows();
  FOperation.Fields = TStringList(Fields);
  FOperation.KeyOrder = RowOrder == TRowOrder::Key;
  std::vector<TItem> Result, Missing;
  std::set<std::string> Seen;
  const TTableSearch Search(Manager(), DatabaseName, FOutcome.Database);
  // The database's own list needs no search.
  if (Tables.empty())
    for (const std::string& Name : TablesWithRows(Manager(), DatabaseName, FOutcome.Notes))
      Result.push_back(RowsItem(Name));
  for (const std::string& Name : Tables) {
    const std::unique_ptr<TTable> Table = Search.Find(Name, false);
    if (!Table) {
      if (Seen.insert(Name).second) Missing.push_back(WithoutTable(Search, Name));
      continue;
    }
    for (const std::string& Field : Fields) Search.RequireField(*Table, Field);
    if (!Seen.insert(Table->TableName()).second) continue;
    Result.push_back(RowsItem(Table->TableName()));
  }
  if (Structures) Result = WithStructures(std::move(Result));
  std::move(Missing.begin(), Missing.end(), std::back_inserter(Result));
  return Result;
}

TItem TJobExportTables::RowsItem(const std::string& Table) const {
  TItem Result;
  Result.Section = SectionName.empty() ? Table : SectionName;
  Result.Table = Table;
  return Result;
}

/// Before the rows of each table the structure that describes it; behind all those of tables without rows of their own:
/// parts of tables, indexes of words.
std::vector<TItem> TJobExportTables::WithStructures(std::vector<TItem> Rows) {
  // That of the rows, which have to fit.
  Moment();
  TConnection& Connection = Manager().Databases().Connection(DatabaseName);
  std::vector<TDefinedObject> Objects;
  std::set<std::string> Seen;
  for (const TItem& Item : Rows) {
    const TTableInfo Table = Connection.Schema().FindTable(Item.Table).value();
    if (Table.Kind == TTableKind::View)
      throw EDatabaseError(Format("'%s' is a view: there is no table to describe. Name tables, or leave %s out",
                                  Item.Table, Setting("Structures")),
                           {.Table = Item.Table});
    Objects.push_back({TDefinedKind::Table, Table});
    Seen.insert(Item.Table);
  }
  const std::size_t WithRows = Objects.size();
  for (TDefinedObject& Object : Connection.Definitions().Objects())
    if (Object.Kind == TDefinedKind::Table && (Tables.empty() || Seen.contains(Object.PartOf)) &&
        Seen.insert(FullName(Object.Table)).second)
      Objects.push_back(std::move(Object));
  RefuseNames(Objects);
  if (Tables.empty())
    for (const std::string& Left : Connection.Definitions().LeftBehind())
      FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NotDescribed", Left));
  TDescriber Describer(Connection, DatabaseName, {.ScanColumns = Policies.Columns == TColumnTypes::Scanned});
  std::vector<TDescribedObject> Described = Describer.Describe(Objects, [this](const TDefinedObject&) {
    if (IsCanceled()) throw EAbort("cancelled");
  });
  std::vector<TItem> Result;
  for (std::size_t I = 0; I < Described.size(); ++I) {
    TItem Item;
    Item.Structure = TStructureId{Described[I].Item.ObjectType, Described[I].Item.ObjectName};
    Item.Section = StructureText(*Item.Structure);
    for (const std::string& Gone : Described[I].Gone)
      FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_GoneFrom", Item.Section, Gone));
    FStructures.Described.Put(std::move(Described[I].Item), std::move(Described[I].Tree));
    Result.push_back(std::move(Item));
    if (I < WithRows) Result.push_back(std::move(Rows[I]));
  }
  for (TItem& Part : StoredParts(std::move(Seen))) Result.push_back(std::move(Part));
  return Result;
}

/// Structures of parts that another engine keeps of these tables, and this one has no tables for: without them the way
/// back would have none. Wholes: by full names.
std::vector<TItem> TJobExportTables::StoredParts(std::set<std::string> Wholes) {
  std::vector<TItem> Result;
  const auto IsPart = [&](const TDicTableDescription& Table) {
    for (const auto& [Engine, Words] : Table.Words) {
      const TScriptWriter* const Writer = Words.Part("PartitionOf") ? Manager().Databases().Scripts(Engine) : nullptr;
      if (!Writer) continue;
      const std::vector<std::string> Needs = Writer->Table(Table, {}, Writer->TablePattern()).Needs;
      if (std::any_of(Needs.begin(), Needs.end(), [&](const std::string& Name) { return Wholes.contains(Name); }))
        return true;
    }
    return false;
  };
  const TDSPList Stored = DSPContainer().Table(DatabaseName).List();
  for (bool Found = true; Found;) {
    Found = false;
    for (const TDSPListItem& Item : Stored) {
      if (Item.ObjectType != TableObjectType) continue;
      const auto Table = StoredTable(DatabaseName, Item.ObjectName);
      if (!Table || Wholes.contains(Table->FullName()) || !IsPart(*Table)) continue;
      Found = Wholes.insert(Table->FullName()).second;
      TItem Part;
      Part.Structure = TStructureId{Item.ObjectType, Item.ObjectName};
      Part.Section = StructureText(*Part.Structure);
      FStructures.Described.Put(Item, std::move(LoadStructure(DatabaseName, Item.ObjectName, Item.ObjectType)->Root()));
      Result.push_back(std::move(Part));
    }
  }
  return Result;
}

TExportUtilOperation& TJobExportTables::OperationFor(const TItem& Item) {
  if (!Item.Structure) {
    FOperation.TableName = Item.Table;
    return FOperation;
  }
  FStructures.ObjectType = Item.Structure->Type;
  FStructures.ObjectName = Item.Structure->Name;
  return FStructures;
}

void TJobExportTables::AddNotes() {
  std::vector<std::string> Unordered;
  for (const TItem& Item : FOutcome.Items)
    if (RowOrder == TRowOrder::Key && Item.State == TItemState::Done && !Item.Counts.InKeyOrder &&
        Item.Counts.RowCount > 1)
      Unordered.push_back(Item.Table);
  if (!Unordered.empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_EngineOrder", Joined(Unordered)));
}

}  // namespace velkrund
