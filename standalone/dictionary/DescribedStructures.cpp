#include "standalone/dictionary/DescribedStructures.h"

#include <memory>

#include "standalone/dictionary/Layout.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"
#include "velkrund/platform/structures/DSPErrors.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

std::unique_ptr<TDSPFormManager> FormOf(const std::string& DatabaseName, const std::string& Name, int Type) {
  std::unique_ptr<TDSPFormManager> Form = DSPContainer().CreateFormManager(DatabaseName);
  Form->ObjectType = Type;
  Form->ObjectName = Name;
  return Form;
}

/// Read: reads the description out of the root of a tree.
template <typename TRead>
auto Described(const std::string& DatabaseName, std::string Name, int Type, std::string_view What, TRead Read) {
  const auto Properties = DSPContainer().Table(DatabaseName).GetStructureProperties(Name, Type);
  if (!Properties)
    throw EDatabaseError(
        Format("There is no structure that describes the %s '%s' (type %d) in the database", What, Name, Type),
        {.Code = TErrorCode::StructureMissing, .Value = Name});
  Name = Properties->ObjectName;
  const auto Form = FormOf(DatabaseName, Name, Type);
  if (!Form->LoadPureStructure())
    throw EDSPError(Format("The tree of the structure '%s' of type %d cannot be loaded", Name, Type));
  auto Result = Read(Form->Root());
  if (SameText(Result.FullName(), Name)) return Result;
  const std::string Prefix = Result.Schema + ".";
  const bool IsOfSchema = !Result.Schema.empty() && SameText(Name.substr(0, Prefix.size()), Prefix);
  if (!IsOfSchema) Result.Schema.clear();
  Result.Name = IsOfSchema ? Name.substr(Prefix.size()) : Name;
  return Result;
}

template <typename TDescription>
void StoreTree(const std::string& DatabaseName, const std::string& Name, int Type, const TDescription& Description) {
  const auto Form = FormOf(DatabaseName, Name, Type);
  WriteTree(Description, Form->Root());
  if (!Form->SavePureStructure())
    throw EDSPError(Format("The tree of the structure '%s' of type %d cannot be stored", Name, Type));
}

}  // namespace

TDicTableDescription TDescribedStructures::Table(const std::string& Name) const {
  return Described(FDatabaseName, Name, TableObjectType, "table", &ReadTable);
}

TDicViewDescription TDescribedStructures::View(const std::string& Name) const {
  return Described(FDatabaseName, Name, ViewObjectType, "view", &ReadView);
}

TDicGeneratorDescription TDescribedStructures::Generator(const std::string& Name) const {
  return Described(FDatabaseName, Name, GeneratorObjectType, "generator", &ReadGenerator);
}

TDicProcedureDescription TDescribedStructures::Procedure(const std::string& Name, bool Selects) const {
  return Described(FDatabaseName, Name, Selects ? SelectStoredProcObjectType : ExecStoredProcObjectType, "procedure",
                   [Selects](const TDSPNode& Root) { return ReadProcedure(Root, Selects); });
}

void TDescribedStructures::Store(const std::string& Name, const TDicTableDescription& Table) const {
  StoreTree(FDatabaseName, Name, TableObjectType, Table);
}

void TDescribedStructures::Store(const std::string& Name, const TDicViewDescription& View) const {
  StoreTree(FDatabaseName, Name, ViewObjectType, View);
}

void TDescribedStructures::Store(const std::string& Name, const TDicGeneratorDescription& Generator) const {
  StoreTree(FDatabaseName, Name, GeneratorObjectType, Generator);
}

void TDescribedStructures::Store(const std::string& Name, const TDicProcedureDescription& Procedure) const {
  StoreTree(FDatabaseName, Name, Procedure.Selects ? SelectStoredProcObjectType : ExecStoredProcObjectType, Procedure);
}

}  // namespace velkrund
