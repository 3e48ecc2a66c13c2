#include "standalone/drivers/sqlite/SQLiteDefinitionReader.h"

#include <algorithm>

#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/sqlite/SQLiteColumnScan.h"
#include "standalone/drivers/sqlite/SQLiteDeclarations.h"
#include "standalone/drivers/sqlite/SQLiteTableDefinition.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

[[noreturn]] void RaiseMissing(std::string_view What, const std::string& Name) {
  throw EDatabaseError(Format("There is no %s '%s' in the database: SQLite has none", What, Name));
}

}  // namespace

std::vector<TDefinedObject> TSQLiteDefinitionReader::Objects() {
  std::vector<TDefinedObject> Tables;
  std::vector<TDefinedObject> TextIndexes;
  std::vector<TDefinedObject> Views;
  for (TTableInfo& Table : FSchema.Tables()) {
    if (Table.Kind == TTableKind::View)
      Views.push_back({TDefinedKind::View, std::move(Table)});
    else if (Table.Kind == TTableKind::IndexOfTable)
      TextIndexes.push_back({TDefinedKind::Table, std::move(Table)});
    else if (Table.Kind != TTableKind::Computed)
      Tables.push_back({TDefinedKind::Table, std::move(Table)});
  }
  for (const TTextIndex& Known : FSchema.TextIndexes())
    for (TDefinedObject& Index : TextIndexes)
      if (Index.Table.Name == Known.Index.Name) Index.PartOf = FullName(Known.Table);
  Tables.insert(Tables.end(), TextIndexes.begin(), TextIndexes.end());
  Tables.insert(Tables.end(), Views.begin(), Views.end());
  return Tables;
}

bool TSQLiteDefinitionReader::KeyIsRowNumber(const TTableDescription& Table) {
  const auto IsKey = [](const TColumnInfo& Column) { return Column.KeyPosition > 0; };
  if (std::count_if(Table.Columns.begin(), Table.Columns.end(), IsKey) != 1) return false;
  static constexpr const char* AskKey = "SELECT 1 FROM pragma_index_list(?1, 'main') WHERE origin = 'pk'";
  auto KeyIndex = FSchema.Memory().Ask(AskKey, Format("Cannot read the keys of table '%s'", Table.Table.Name));
  return !KeyIndex->BindText(1, Table.Table.Name).Step();
}

/// The engine finds what is referred to in any case; others do not.
void TSQLiteDefinitionReader::ResolveReferences(TDicTableDescription& Table) {
  for (TDicForeignKey& Key : Table.ForeignKeys) {
    const TSQLiteListedTable* const Found = FSchema.Memory().Now().FindAsEngine(Key.Table);
    if (!Found || Found->Type == "view") continue;
    Key.Table = Found->Name;
    const TTableDescription Other = FSchema.Describe({Key.Table, {}});
    for (TDicForeignKey::TPair& Pair : Key.Columns)
      for (const TColumnInfo& Column : Other.Columns)
        if (SameSQLiteName(Column.Name, Pair.To)) Pair.To = Column.Name;
  }
}

TDicTableDescription TSQLiteDefinitionReader::Table(const TTableInfo& Table, const TDescribeOptions& Options) {
  const TTableDescription Known = FSchema.Describe(Table);
  TSQLiteTableDefinition Definition(Known);
  for (const TSQLiteKeptItem& Item : FSchema.Memory().Kept(Table.Name)) {
    if (Item.Type == "index") Definition.AddIndex(Item.Name, Item.Statement);
    if (Item.Type == "trigger") Definition.AddTrigger(Item.Name, Item.Statement);
    if (Item.Type != "table") continue;
    if (Table.Kind == TTableKind::Table)
      Definition.AddDeclaration(ReadTableDeclaration(Item.Statement, Table.Name), KeyIsRowNumber(Known));
    else
      Definition.AddVirtual(ReadVirtualTable(Item.Statement).Using);
  }
  TDicTableDescription Result = Definition.Take();
  if (Result.Fields.empty()) throw EDatabaseError(Format("Cannot describe '%s': it is no table", Table.Name));
  ResolveReferences(Result);
  if (Options.ScanColumns) ScanColumns(FDatabase, Known, Result);
  return Result;
}

TDicViewDescription TSQLiteDefinitionReader::View(const TTableInfo& View) {
  TDicViewDescription Result;
  Result.Name = View.Name;
  bool Found = false;
  for (const TSQLiteKeptItem& Item : FSchema.Memory().Kept(View.Name)) {
    if (Item.Type == "trigger") Result.Triggers.push_back(SQLiteTrigger(Item.Name, Item.Statement));
    if (Item.Type != "view") continue;
    TSQLiteViewDeclaration Declared = ReadViewDeclaration(Item.Statement, View.Name);
    Result.Columns = std::move(Declared.Columns);
    Result.Words["sqlite"].Lines = SplitLines(Declared.Query);
    Found = true;
  }
  if (!Found)
    throw EDatabaseError(Format("There is no view '%s' in the database", View.Name),
                         {.Code = TErrorCode::TableMissing, .Table = View.Name});
  return Result;
}

TDicGeneratorDescription TSQLiteDefinitionReader::Generator(const TTableInfo& Generator) {
  RaiseMissing("generator", Generator.Name);
}

TDicProcedureDescription TSQLiteDefinitionReader::Procedure(const TTableInfo& Procedure) {
  RaiseMissing("procedure", Procedure.Name);
}

std::int64_t TSQLiteDefinitionReader::GeneratorValue(const TTableInfo& Generator) {
  RaiseMissing("generator", Generator.Name);
}

std::vector<std::string> TSQLiteDefinitionReader::LeftBehind() {
  std::vector<std::string> Result;
  for (const TTableInfo& Table : FSchema.Tables())
    if (Table.Kind == TTableKind::Computed)
      Result.push_back(
          Format("virtual table '%s', whose rows an extension of the engine makes up or finds elsewhere", Table.Name));
  for (const char* Pragma : {"user_version", "application_id"}) {
    TSQLiteStatement Number(FDatabase.Handle(), std::string("PRAGMA main.") + Pragma, FDatabase.About("read"));
    if (Number.Step() && Number.Integer(0) != 0)
      Result.push_back(Format("%s %d of the database", Pragma, Number.Integer(0)));
  }
  return Result;
}

}  // namespace velkrund
