#include "jobs/dictionary/ScriptObjects.h"

#include <algorithm>
#include <iterator>

#include "jobs/dictionary/ScriptOrder.h"
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

/// What the engine cannot make at all is missing from the script, and does not end it.
template <typename TMake>
TScript Made(const char* Kind, const std::string& What, const TMake& Make) {
  try {
    return Make();
  } catch (const EDatabaseError& Error) {
    TScript Result;
    Result.Gaps.push_back({Kind, What, Error.what()});
    return Result;
  }
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

/// What one object needs may be what another one needed: a schema, a type.
void TThis::Add(TScript Script) {
  for (TScriptStatement& Statement : Script.Statements)
    if (Statement.Unless.empty() || FOnce.insert(Statement.Unless + "\n" + Statement.Text).second)
      FScript.Statements.push_back(std::move(Statement));
  for (TScriptGap& Gap : Script.Gaps)
    if (FOnce.insert(GapText(Gap)).second) FScript.Gaps.push_back(std::move(Gap));
}

void TThis::AddAll(std::vector<TObjectScript> Scripts) {
  for (TObjectScript& Each : Scripts) Add(std::move(Each.Script));
}

void TThis::Run() {
  const std::vector<TStructureId> Structures = Chosen();
  const TScriptWriter& Scripts = Writer();
  const auto OfTypes = [&](std::initializer_list<int> Types) {
    std::vector<TObjectScript> Result;
    for (const int Type : Types)
      for (const TStructureId& Structure : Structures)
        if (Structure.Type == Type) ScriptOf(Structure, Scripts, Result);
    return Result;
  };
  TTables Tables = TablesOf(Structures, Scripts);
  AddAll(OfTypes({GeneratorObjectType}));
  std::vector<TObjectScript> Objects = PartsOf(Tables, &TTableParts::Table, Scripts);
  std::vector<TObjectScript> Others = OfTypes({ExecStoredProcObjectType, SelectStoredProcObjectType, ViewObjectType});
  std::move(Others.begin(), Others.end(), std::back_inserter(Objects));
  OrderByNeeds(Objects);
  AddAll(std::move(Objects));
  // Foreign keys find the keys that they need.
  for (bool TTableParts::*const Part :
       {&TTableParts::Indexes, &TTableParts::ForeignKeys, &TTableParts::Triggers, &TTableParts::Comments})
    AddAll(PartsOf(Tables, Part, Scripts));
  for (const TScriptStatement& Statement : FScript.Statements) FText += Scripts.ShellText(Statement);
  for (const TScriptGap& Gap : FScript.Gaps) FText += Commented("not made: " + GapText(Gap));
}

TThis::TTables TThis::TablesOf(const std::vector<TStructureId>& Structures, const TScriptWriter& Writer) {
  TTables Result;
  const bool IsOwn = &Writer == &Manager().Databases().Connection(DatabaseName).Scripts();
  for (const TStructureId& Structure : Structures) {
    if (Structure.Type != TableObjectType) continue;
    const std::string Pattern = IsOwn ? Dictionary().GetCreateTablePatternString(
                                            Dictionary().GetPatternName(Structure.Name, DatabaseName), DatabaseName)
                                      : Writer.TablePattern();
    if (auto Table = StoredTable(DatabaseName, Structure.Name)) Result.emplace_back(std::move(*Table), Pattern);
  }
  return Result;
}

/// Tables keeps those that are made.
std::vector<TObjectScript> TThis::PartsOf(TTables& Tables, bool TTableParts::*Part, const TScriptWriter& Writer) {
  TTableParts Only{false, false, false, false, false};
  Only.*Part = true;
  std::vector<TObjectScript> Scripts;
  std::erase_if(Tables, [&](const TTables::value_type& Each) {
    const TDicTableDescription& Table = Each.first;
    const std::string Name = Table.FullName();
    Scripts.push_back(
        {Table.Name, Name,
         Made("options", Format("the table '%s'", Name), [&] { return Writer.Table(Table, Only, Each.second); }),
         true});
    return Only.Table && Scripts.back().Script.Statements.empty();
  });
  return Scripts;
}

void TThis::ScriptOf(const TStructureId& Structure, const TScriptWriter& Writer, std::vector<TObjectScript>& Result) {
  const auto Take = [&](const auto& Found, const char* Kind, const char* What, const auto& Make) {
    if (!Found) return;
    const std::string Name = Found->FullName();
    Result.push_back({Found->Name, Name, Made(Kind, Format("the %s '%s'", What, Name), Make)});
  };
  if (Structure.Type == GeneratorObjectType) {
    const auto Found = StoredGenerator(DatabaseName, Structure.Name);
    Take(Found, "generators", "generator", [&] { return Writer.Generator(*Found, std::nullopt); });
  } else if (Structure.Type == ViewObjectType) {
    const auto Found = StoredView(DatabaseName, Structure.Name);
    Take(Found, "views", "view", [&] { return Writer.View(*Found, false); });
  } else {
    const auto Found = StoredProcedure(DatabaseName, Structure.Name, Structure.Type == SelectStoredProcObjectType);
    Take(Found, "procedures", "procedure", [&] { return Writer.Procedure(*Found, false); });
  }
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
