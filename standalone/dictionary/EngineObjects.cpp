#include "standalone/dictionary/EngineObjects.h"

#include <algorithm>

#include "standalone/dictionary/CatalogueGenerators.h"
#include "standalone/dictionary/CatalogueProcedures.h"
#include "standalone/drivers/GeneratorRange.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

std::vector<TDefinedObject> ObjectsOf(TConnection& Connection, std::initializer_list<TDefinedKind> Kinds) {
  std::vector<TDefinedObject> Result = Connection.Definitions().Objects();
  std::erase_if(Result, [&](const TDefinedObject& Object) {
    return std::find(Kinds.begin(), Kinds.end(), Object.Kind) == Kinds.end();
  });
  return Result;
}

TTableInfo Named(const TDicObjectDescription& Object) { return {Object.Name, Object.Schema}; }

constexpr std::initializer_list<TDefinedKind> ProcedureKinds = {TDefinedKind::ExecProcedure,
                                                                TDefinedKind::SelectProcedure};

}  // namespace

std::optional<TDefinedObject> FindObject(TConnection& Connection, std::initializer_list<TDefinedKind> Kinds,
                                         const std::string& Name) {
  std::optional<TDefinedObject> Alike;
  std::vector<std::string> Names;
  for (TDefinedObject& Object : ObjectsOf(Connection, Kinds)) {
    const std::string Full = FullName(Object.Table);
    if (Full == Name) return Object;
    if (!SameText(Full, Name)) continue;
    Names.push_back("\"" + Full + "\"");
    Alike = std::move(Object);
  }
  if (Names.size() > 1)
    throw EDatabaseError(
        Format("Several objects go by the name '%s': %s; name one in its own case", Name, Joined(Names)));
  return Alike;
}

std::vector<TDicGeneratorDescription> TEngineGenerators::List() {
  std::vector<TDicGeneratorDescription> Result;
  for (const TDefinedObject& Object : ObjectsOf(FConnection, {TDefinedKind::Generator}))
    Result.push_back(FConnection.Definitions().Generator(Object.Table));
  return Result;
}

std::optional<TDicGeneratorDescription> TEngineGenerators::Find(const std::string& Name) {
  const std::optional<TDefinedObject> Found = FindObject(FConnection, {TDefinedKind::Generator}, Name);
  return Found ? std::optional(FConnection.Definitions().Generator(Found->Table)) : std::nullopt;
}

void TEngineGenerators::Create(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) {
  RunScript(FConnection, FConnection.Scripts().Generator(Generator, Start), FGaps);
}

void TEngineGenerators::Alter(const TDicGeneratorDescription& There, const TDicGeneratorDescription& Generator,
                              std::optional<std::int64_t> Start) {
  const TScriptWriter& Scripts = FConnection.Scripts();
  const TScript Altered = Scripts.AlterGenerator(Generator, Start);
  if (Start) return RunScript(FConnection, Altered, FGaps);
  // As it is, so that nobody asks it from here on.
  RunScript(FConnection, Scripts.AlterGenerator(There, std::nullopt), FGaps);
  const std::int64_t Stands = Value(There);
  RunScript(FConnection, Altered, FGaps);
  const std::string Name = Generator.FullName();
  const TGeneratorRange Old = RangeOf(Name, There.Counter), New = RangeOf(Name, Generator.Counter);
  const bool WasAsked = Stands != Before(Name, Old.Start, Old.Step);
  const bool LiesAhead = New.Step > 0 ? New.Start > Old.Start : New.Start < Old.Start;
  if (WasAsked && Value(Generator) != Stands) SetValue(Generator, Stands);
  if (!WasAsked && LiesAhead) SetValue(Generator, Before(Name, New.Start, New.Step));
}

std::int64_t TEngineGenerators::Value(const TDicGeneratorDescription& Generator) {
  return FConnection.Definitions().GeneratorValue(Named(Generator));
}

void TEngineGenerators::SetValue(const TDicGeneratorDescription& Generator, std::int64_t Value) {
  RunScript(FConnection, FConnection.Scripts().SetGenerator(Generator, Value), FGaps);
}

void TEngineGenerators::Drop(const TDicGeneratorDescription& Generator) {
  FConnection.Execute(FConnection.Scripts().DropGenerator(Generator));
}

std::vector<TDicProcedureDescription> TEngineProcedures::List() {
  std::vector<TDicProcedureDescription> Result;
  for (const TDefinedObject& Object : ObjectsOf(FConnection, ProcedureKinds))
    Result.push_back(FConnection.Definitions().Procedure(Object.Table));
  return Result;
}

std::optional<TDicProcedureDescription> TEngineProcedures::Find(const std::string& Name) {
  const std::optional<TDefinedObject> Found = FindObject(FConnection, ProcedureKinds, Name);
  return Found ? std::optional(FConnection.Definitions().Procedure(Found->Table)) : std::nullopt;
}

void TEngineProcedures::Create(const TDicProcedureDescription& Procedure) {
  RunScript(FConnection, FConnection.Scripts().Procedure(Procedure, false), FGaps);
}

void TEngineProcedures::Redefine(const TDicProcedureDescription& Procedure) {
  RunScript(FConnection, FConnection.Scripts().Procedure(Procedure, true), FGaps);
  // Other parameters make another one beside it.
  if (!Find(Procedure.FullName()))
    throw EDatabaseError(Format("Cannot redefine procedure '%s': its parameters are others", Procedure.FullName()));
}

std::unique_ptr<TSurroundings> TEngineProcedures::Surroundings(const TDicProcedureDescription& Procedure) {
  return FConnection.SurroundingsOfProcedure(Named(Procedure));
}

void TEngineProcedures::Drop(const TDicProcedureDescription& Procedure) {
  FConnection.Execute(FConnection.Scripts().DropProcedure(Procedure));
}

std::unique_ptr<TGenerators> GeneratorsOf(TConnection& Connection, TGapBook& Gaps) {
  if (Connection.Capabilities().Generators) return std::make_unique<TEngineGenerators>(Connection, Gaps);
  return std::make_unique<TCatalogueGenerators>(Connection);
}

std::unique_ptr<TProcedures> ProceduresOf(TConnection& Connection, TGapBook& Gaps) {
  if (Connection.Capabilities().Procedures) return std::make_unique<TEngineProcedures>(Connection, Gaps);
  return std::make_unique<TCatalogueProcedures>(Connection);
}

}  // namespace velkrund
