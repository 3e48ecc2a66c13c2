#include "jobs/dictionary/ScriptObjects.h"

#include <algorithm>
#include <iterator>

#include "standalone/dictionary/ScriptRun.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

using TThis = TJobScriptObjects;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Names>("Names", "the structures to make statements of; empty: all that describe objects"),
    PropertyOf<&TThis::Engine>("Engine", "whose statements: sqlite, postgresql; empty: the database's own"),
    ReadOnlyOf<&TThis::Text>("Text", "the statements that the last run made"),
};

bool DescribesObject(int ObjectType) {
  return ObjectType == TableObjectType ||
         (ObjectType >= GeneratorObjectType && ObjectType <= SelectStoredProcObjectType);
}

/// A text as comment lines.
std::string Commented(const std::string& Text) {
  std::string Result = "-- ";
  for (const char C : Text) Result += C == '\n' ? std::string("\n-- ") : std::string(1, C);
  return Result + "\n";
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobScriptObjects");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobScriptObjectsInterface", {&JobProperties, Properties});

std::vector<TStructureId> TThis::Chosen() const {
  std::vector<TStructureId> All, Result;
  for (const TDSPListItem& Item : DSPContainer().Table(DatabaseName).List())
    if (DescribesObject(Item.ObjectType)) All.push_back({Item.ObjectType, Item.ObjectName});
  if (Names.empty()) return All;
  for (const std::string& Name : Names) {
    const auto IsIt = [&](const TStructureId& Each) { return SameText(Each.Name, Name); };
    const std::size_t Before = Result.size();
    std::copy_if(All.begin(), All.end(), std::back_inserter(Result), IsIt);
    if (Result.size() > Before) continue;
    std::vector<std::string> Known;
    for (const TStructureId& Each : All) Known.push_back(Each.Name);
    throw EDatabaseError(Format("No structure in the database %s describes an object '%s'%s", DatabaseText(), Name,
                                Known.empty() ? "" : ContentHint(Name, Known, ": there are ")),
                         {.Code = TErrorCode::StructureMissing});
  }
  return Result;
}

const TScriptWriter& TThis::Writer() const {
  TDatabases& Databases = Manager().Databases();
  if (Engine.empty()) return Databases.Connection(DatabaseName).Scripts();
  if (const TScriptWriter* const Result = Databases.Scripts(Engine)) return *Result;
  throw ESettingsError(Format("%s is none that is known: '%s'%s", Setting("Engine"), Engine,
                              ContentHint(Engine, Databases.Schemes(), "; known are ")));
}

void TThis::Add(TScript Script) {
  std::move(Script.Statements.begin(), Script.Statements.end(), std::back_inserter(FScript.Statements));
  std::move(Script.Gaps.begin(), Script.Gaps.end(), std::back_inserter(FScript.Gaps));
}

void TThis::Run() {
  const std::vector<TStructureId> Structures = Chosen();
  const TScriptWriter& Scripts = Writer();
  AddOthers(Structures, GeneratorObjectType, Scripts);
  AddTables(Structures, Scripts);
  for (const int Type : {ViewObjectType, ExecStoredProcObjectType, SelectStoredProcObjectType})
    AddOthers(Structures, Type, Scripts);
}

/// Of all tables each part before the next one: foreign keys find the keys that they need.
void TThis::AddTables(const std::vector<TStructureId>& Structures, const TScriptWriter& Writer) {
  std::vector<std::pair<TDicTableDescription, std::string>> Tables;
  const bool IsOwn = &Writer == &Manager().Databases().Connection(DatabaseName).Scripts();
  for (const TStructureId& Structure : Structures) {
    if (Structure.Type != TableObjectType) continue;
    const std::string Pattern = IsOwn ? Dictionary().GetCreateTablePatternString(
                                            Dictionary().GetPatternName(Structure.Name, DatabaseName), DatabaseName)
                                      : Writer.TablePattern();
    if (auto Table = StoredTable(DatabaseName, Structure.Name)) Tables.emplace_back(std::move(*Table), Pattern);
  }
  for (bool TTableParts::*const Part : {&TTableParts::Table, &TTableParts::Indexes, &TTableParts::ForeignKeys,
                                        &TTableParts::Triggers, &TTableParts::Comments}) {
    TTableParts Only{false, false, false, false, false};
    Only.*Part = true;
    for (const auto& [Table, Pattern] : Tables) Add(Writer.Table(Table, Only, Pattern));
  }
}

void TThis::AddOthers(const std::vector<TStructureId>& Structures, int ObjectType, const TScriptWriter& Writer) {
  for (const TStructureId& Structure : Structures) {
    if (Structure.Type != ObjectType) continue;
    if (ObjectType == GeneratorObjectType) {
      if (const auto Found = StoredGenerator(DatabaseName, Structure.Name)) Add(Writer.Generator(*Found, std::nullopt));
    } else if (ObjectType == ViewObjectType) {
      if (const auto Found = StoredView(DatabaseName, Structure.Name)) Add(Writer.View(*Found, false));
    } else if (const auto Found =
                   StoredProcedure(DatabaseName, Structure.Name, ObjectType == SelectStoredProcObjectType)) {
      Add(Writer.Procedure(*Found, false));
    }
  }
}

std::string TThis::Text() const {
  std::string Result;
  for (const TScriptStatement& Statement : FScript.Statements) {
    if (!Statement.Unless.empty()) Result += Commented("only where this yields no row: " + Statement.Unless);
    Result += Statement.Text + ";\n";
  }
  for (const TScriptGap& Gap : FScript.Gaps) Result += Commented("not made: " + GapText(Gap));
  return Result;
}

void TThis::Describe(TDocument& Document) const {
  TDocument Statements = TDocument::List(), Gaps = TDocument::List();
  for (const TScriptStatement& Statement : FScript.Statements) {
    TDocument Entry;
    Entry.Set("what", Statement.What).Set("statement", Statement.Text);
    if (!Statement.Unless.empty()) Entry.Set("unless", Statement.Unless);
    Statements.Add(std::move(Entry));
  }
  for (const TScriptGap& Gap : FScript.Gaps) {
    TDocument Entry;
    Entry.Set("kind", Gap.Kind).Set("what", Gap.What);
    if (!Gap.Why.empty()) Entry.Set("why", Gap.Why);
    Gaps.Add(std::move(Entry));
  }
  Document.Set("database", DatabaseText());
  Document.Set("statements", std::move(Statements)).Set("gaps", std::move(Gaps));
}

}  // namespace velkrund
