#include "standalone/dictionary/StandaloneDictionary.h"

#include "standalone/dictionary/DescriptionCheck.h"
#include "standalone/dictionary/Redescription.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "standalone/dictionary/UnfinishedTables.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

/// Which pattern belongs to which table, as applications keep it: names in upper case.
constexpr std::string_view LinkTable = "PATTERNLINKTOTABLE";

/// The text of a pattern: the lines of the engine's own, else of the one for all.
std::string PatternText(const TDSPNode& Root, const std::string& Engine, const std::string& Name) {
  const TDSPNode* Lines = Root.FindNode(Engine);
  if (!Lines) Lines = Root.FindNode("Pattern");
  if (!Lines)
    throw EDSPError(
        Format("The structure '%s' (type %d) has no pattern for this engine: neither a node '%s' nor a node "
               "'Pattern', with nodes L below it, one for each line",
               Name, PatternObjectType, Engine));
  std::string Result;
  for (int Index = 0; Index < Lines->GetCount(); ++Index)
    Result += (Index ? "\n" : "") + Lines->GetNodes(Index).GetAsString();
  return Result;
}

TTableParts PartsOf(TTableScriptPart Part) {
  TTableParts Result;
  if (Part == TTableScriptPart::Table) Result.ForeignKeys = Result.Triggers = Result.Comments = false;
  if (Part == TTableScriptPart::Rest) Result.Table = Result.Indexes = false;
  return Result;
}

}  // namespace

class TStandaloneDictionary::TStoredTables final : public TDicTable {
 public:
  explicit TStoredTables(std::string DatabaseName) : FDatabaseName(std::move(DatabaseName)) {}

  bool GetTableInfo(const std::string& TableName, TDicTableDescription& Description) override {
    std::optional<TDicTableDescription> Found = StoredTable(FDatabaseName, TableName);
    if (Found) Description = std::move(*Found);
    return Found.has_value();
  }

 private:
  const std::string FDatabaseName;
};

TStandaloneDictionary::TStandaloneDictionary(TStandaloneManager& Manager) : FManager(Manager) {}
TStandaloneDictionary::~TStandaloneDictionary() = default;

TDicTable& TStandaloneDictionary::GetDicTable(const std::string& DatabaseName) {
  std::unique_ptr<TStoredTables>& Table = FTables[DatabaseName];
  if (!Table) Table = std::make_unique<TStoredTables>(DatabaseName);
  return *Table;
}

/// That there are none is found once for all tables of a transaction, unless it makes them.
std::optional<TTableInfo> TStandaloneDictionary::FindLinks(const std::string& DatabaseName) {
  TDatabases& Databases = FManager.Databases();
  std::int64_t& Without = FWithoutLinks[DatabaseName];
  const std::int64_t Mark = Databases.IsInTransaction(DatabaseName) ? Databases.TransactionMark(DatabaseName) : 0;
  if (Mark != 0 && Without == Mark) return std::nullopt;
  std::optional<TTableInfo> Result = Databases.Connection(DatabaseName).Schema().FindTable(LinkTable);
  Without = Result ? 0 : Mark;
  return Result;
}

std::string TStandaloneDictionary::GetPatternName(const std::string& TableName, const std::string& DatabaseName) {
  TConnection& Connection = FManager.Databases().Connection(DatabaseName);
  if (const std::optional<TTableInfo> Links = FindLinks(DatabaseName)) {
    const TTableDescription Known = Connection.Schema().Describe(*Links);
    const auto Column = [&](std::string_view Name) {
      for (const TColumnInfo& Each : Known.Columns)
        if (SameText(Each.Name, Name)) return Connection.Dialect().QuoteName(Each.Name);
      throw EDatabaseError(Format("The table '%s' has no column '%s'", FullName(*Links), Name));
    };
    const std::string Key = UpperCase(TableName);
    TKvVariant Parameter;
    Parameter.BorrowText(Key, TKvKind::String);
    const auto Rows = Connection.Query(
        Format("SELECT %s FROM %s WHERE %s = %s", Column("PATTERNNAME"), Connection.Dialect().SQLName(*Links),
               Column("TABLENAME"), Connection.Dialect().ParameterMark(1)),
        {&Parameter, 1});
    TKvVariant Name;
    if (Rows->Next()) {
      Rows->Read(0, Name);
      return std::string(Name.AsText());
    }
  }
  return FManager.Databases().PatternName(DatabaseName);
}

std::string TStandaloneDictionary::GetCreateTablePatternString(const std::string& PatternName,
                                                               const std::string& DatabaseName) {
  const TScriptWriter& Scripts = FManager.Databases().Connection(DatabaseName).Scripts();
  if (PatternName.empty()) return Scripts.TablePattern();
  const auto Form = LoadStructure(DatabaseName, PatternName, PatternObjectType);
  if (!Form)
    throw EDatabaseError(
        Format("There is no pattern '%s' (a structure of type %d) to make tables by", PatternName, PatternObjectType),
        {.Code = TErrorCode::StructureMissing});
  return PatternText(Form->Root(), std::string(Scripts.Engine()), PatternName);
}

TScript TStandaloneDictionary::Script(const std::string& DatabaseName, const TDicTableDescription& Description,
                                      const std::string& Pattern, TTableScriptPart Part) {
  CheckDescription(Description);
  return FManager.Databases().Connection(DatabaseName).Scripts().Table(Description, PartsOf(Part), Pattern);
}

void TStandaloneDictionary::CreateTableByDef(const std::string& DatabaseName, const TDicTableDescription& Description,
                                             const std::string& Pattern, TTableScriptPart Part, bool Replace) {
  TConnection& Connection = FManager.Databases().Connection(DatabaseName);
  const TScript Statements = Script(DatabaseName, Description, Pattern, Part);
  if (SameText(Description.Name, LinkTable)) FWithoutLinks.clear();
  TTransaction Transaction(DatabaseName);
  if (Replace && Part != TTableScriptPart::Rest && Connection.Schema().FindTable(Description.FullName()))
    DropTable(DatabaseName, Description);
  RunScriptWithGaps(DatabaseName, Connection, Statements, FGaps);
  if (Part == TTableScriptPart::All) StoreWords(DatabaseName, {Description.FullName()});
  Transaction.Commit();
}

void TStandaloneDictionary::StoreWords(const std::string& DatabaseName, const std::vector<std::string>& TableNames) {
  TTransaction Transaction(DatabaseName);
  TConnection& Connection = FManager.Databases().Connection(DatabaseName);
  std::vector<TDicTableDescription> Stored;
  std::vector<TTableInfo> Made;
  for (const std::string& Name : TableNames) {
    std::optional<TDicTableDescription> Known = StoredTable(DatabaseName, Name);
    const std::optional<TTableInfo> Found = Known ? Connection.Schema().FindTable(Name) : std::nullopt;
    if (!Found) continue;
    Stored.push_back(std::move(*Known));
    Made.push_back(*Found);
  }
  const std::vector<TDicTableDescription> Now = Connection.Definitions().Tables(Made, {});
  for (std::size_t Table = 0; Table < Now.size(); ++Table) {
    const TDicTableDescription New = WithWords(Stored[Table], Now[Table], Connection.Scripts().Engine());
    if (New != Stored[Table]) StoreDescription(DatabaseName, New);
  }
  Transaction.Commit();
}

TScript TStandaloneDictionary::IndexScript(const std::string& DatabaseName, const TDicTableDescription& Description) {
  const TScriptWriter& Scripts = FManager.Databases().Connection(DatabaseName).Scripts();
  TTableParts Parts;
  Parts.Table = Parts.ForeignKeys = Parts.Triggers = Parts.Comments = false;
  return Scripts.Table(Description, Parts, Scripts.TablePattern());
}

void TStandaloneDictionary::CreateIndexesByDef(const std::string& DatabaseName,
                                               const TDicTableDescription& Description) {
  RunScriptWithGaps(DatabaseName, FManager.Databases().Connection(DatabaseName), IndexScript(DatabaseName, Description),
                    FGaps);
}

TTableStage TStandaloneDictionary::StageOf(const std::string& DatabaseName, const std::string& TableName) {
  return TUnfinishedTables(FManager.Databases().Connection(DatabaseName)).StageOf(TableName);
}

void TStandaloneDictionary::SetStage(const std::string& DatabaseName, const std::string& TableName, TTableStage Stage) {
  TUnfinishedTables(FManager.Databases().Connection(DatabaseName)).SetStage(TableName, Stage);
}

void TStandaloneDictionary::DropTable(const std::string& DatabaseName, const TDicTableDescription& Description) {
  TConnection& Connection = FManager.Databases().Connection(DatabaseName);
  Connection.Execute(Connection.Scripts().DropTable(Description));
  TUnfinishedTables(Connection).SetStage(Description.FullName(), TTableStage::Complete);
}

}  // namespace velkrund
