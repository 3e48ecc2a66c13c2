#include "standalone/dictionary/StoredDescriptions.h"

#include "standalone/dictionary/Layout.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

std::unique_ptr<TDSPFormManager> FormOf(const std::string& DatabaseName, const std::string& Name, int ObjectType) {
  auto Form = DSPContainer().CreateFormManager(DatabaseName);
  Form->ObjectName = Name;
  Form->ObjectType = ObjectType;
  return Form;
}

template <typename TRead>
auto Stored(const std::string& DatabaseName, const std::string& Name, int ObjectType, TRead Read)
    -> std::optional<decltype(Read(std::declval<const TDSPNode&>()))> {
  const auto Form = LoadStructure(DatabaseName, Name, ObjectType);
  if (!Form) return std::nullopt;
  try {
    auto Result = Read(Form->Root());
    NameAfter(Result, Form->ObjectName);
    return Result;
  } catch (const EDSPError& Error) {
    throw EDSPError(Format("The structure '%s' (type %d): %s", Name, ObjectType, Error.what()), Error.Info());
  }
}

template <typename TDescription>
void Store(const std::string& DatabaseName, const TDescription& Object, int ObjectType) {
  const std::string Name = StructureName(Object.FullName());
  TTransaction Transaction(DatabaseName);
  TDSPTable& Table = DSPContainer().Table(DatabaseName);
  if (!Table.DSPStructureExist(Name, ObjectType))
    Table.ChangeStructureProperties({Name, ObjectType, Object.FullName(), {}, {}});
  const auto Form = FormOf(DatabaseName, Name, ObjectType);
  WriteTree(Object, Form->Root());
  if (!Form->SavePureStructure())
    throw EDSPError(Format("The structure '%s' (type %d) cannot be saved", Name, ObjectType));
  Transaction.Commit();
}

}  // namespace

void NameAfter(TDicObjectDescription& Object, const std::string& Structure) {
  if (SameText(Object.FullName(), Structure)) return;
  const std::string Prefix = Object.Schema + ".";
  const bool IsOfSchema = !Object.Schema.empty() && SameText(Structure.substr(0, Prefix.size()), Prefix);
  if (!IsOfSchema) Object.Schema.clear();
  Object.Name = IsOfSchema ? Structure.substr(Prefix.size()) : Structure;
}

std::string StructureName(std::string_view FullName) { return UpperCase(FullName); }

int ObjectTypeOf(TDefinedKind Kind) {
  switch (Kind) {
    case TDefinedKind::Table:
      return TableObjectType;
    case TDefinedKind::Generator:
      return GeneratorObjectType;
    case TDefinedKind::View:
      return ViewObjectType;
    case TDefinedKind::ExecProcedure:
      return ExecStoredProcObjectType;
    case TDefinedKind::SelectProcedure:
      break;
  }
  return SelectStoredProcObjectType;
}

std::unique_ptr<TDSPFormManager> LoadStructure(const std::string& DatabaseName, const std::string& Name,
                                               int ObjectType) {
  auto Form = FormOf(DatabaseName, Name, ObjectType);
  if (!Form->LoadPureStructure())
    throw EDSPError(Format("The structure '%s' (type %d) cannot be loaded", Name, ObjectType));
  // One that is not there loads as an empty one.
  const bool IsThere =
      Form->Root().GetCount() > 0 || DSPContainer().Table(DatabaseName).DSPStructureExist(Name, ObjectType);
  return IsThere ? std::move(Form) : nullptr;
}

std::optional<TDicTableDescription> StoredTable(const std::string& DatabaseName, const std::string& Name) {
  return Stored(DatabaseName, Name, TableObjectType, [](const TDSPNode& Root) { return ReadTable(Root); });
}

std::optional<TDicViewDescription> StoredView(const std::string& DatabaseName, const std::string& Name) {
  return Stored(DatabaseName, Name, ViewObjectType, [](const TDSPNode& Root) { return ReadView(Root); });
}

std::optional<TDicGeneratorDescription> StoredGenerator(const std::string& DatabaseName, const std::string& Name) {
  return Stored(DatabaseName, Name, GeneratorObjectType, [](const TDSPNode& Root) { return ReadGenerator(Root); });
}

std::optional<TDicProcedureDescription> StoredProcedure(const std::string& DatabaseName, const std::string& Name,
                                                        bool Selects) {
  return Stored(DatabaseName, Name, Selects ? SelectStoredProcObjectType : ExecStoredProcObjectType,
                [Selects](const TDSPNode& Root) { return ReadProcedure(Root, Selects); });
}

void StoreDescription(const std::string& DatabaseName, const TDicTableDescription& Table) {
  Store(DatabaseName, Table, TableObjectType);
}

void StoreDescription(const std::string& DatabaseName, const TDicViewDescription& View) {
  Store(DatabaseName, View, ViewObjectType);
}

void StoreDescription(const std::string& DatabaseName, const TDicGeneratorDescription& Generator) {
  Store(DatabaseName, Generator, GeneratorObjectType);
}

void StoreDescription(const std::string& DatabaseName, const TDicProcedureDescription& Procedure) {
  Store(DatabaseName, Procedure, Procedure.Selects ? SelectStoredProcObjectType : ExecStoredProcObjectType);
}

}  // namespace velkrund
