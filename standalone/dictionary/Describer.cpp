#include "standalone/dictionary/Describer.h"

#include <map>
#include <utility>

#include "standalone/dictionary/Layout.h"
#include "standalone/dictionary/Redescription.h"
#include "standalone/dictionary/ScannedKeys.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund {

template <typename TDescription>
TDescribedObject TDescriber::Finish(TDescription Now, const std::optional<TDescription>& Stored, TDefinedKind Kind) {
  TDescribedObject Result;
  const std::string Name = Now.FullName();
  if (Stored) Now = Redescribed(*Stored, std::move(Now), FConnection.Scripts().Engine(), Result.Gone);
  Result.IsStored = Stored.has_value();
  Result.IsChanged = !Stored || *Stored != Now;
  Result.Item = {StructureName(Name), ObjectTypeOf(Kind), Name, {}, {}};
  if (Stored)
    if (auto Known = DSPContainer().Table(FDatabaseName).GetStructureProperties(Name, Result.Item.ObjectType))
      Result.Item = std::move(*Known);
  WriteTree(Now, Result.Tree);
  return Result;
}

std::vector<TDescribedObject> TDescriber::Describe(const std::vector<TDefinedObject>& Objects, const TNext& Next) {
  std::vector<TDicTableDescription> Tables = ReadTables(Objects, Next);
  std::vector<TDescribedObject> Result;
  auto Table = Tables.begin();
  for (const TDefinedObject& Object : Objects) {
    if (Object.Kind == TDefinedKind::Table) {
      const std::string Name = Table->FullName();
      Result.push_back(Finish(std::move(*Table++), StoredTable(FDatabaseName, Name), Object.Kind));
    } else {
      Next(Object);
      Result.push_back(DescribeOther(Object));
    }
  }
  return Result;
}

std::vector<TDicTableDescription> TDescriber::ReadTables(const std::vector<TDefinedObject>& Objects,
                                                         const TNext& Next) {
  // A table whose cells are looked at can take long.
  const std::size_t AtOnce = FOptions.ScanColumns ? 1 : TDefinitionReader::AtOnce;
  std::vector<TTableInfo> Wanted;
  std::vector<TDicTableDescription> Result;
  const auto Take = [&] {
    for (TDicTableDescription& Table : FConnection.Definitions().Tables(Wanted, FOptions))
      Result.push_back(std::move(Table));
    Wanted.clear();
  };
  for (const TDefinedObject& Object : Objects) {
    if (Object.Kind != TDefinedKind::Table) continue;
    Next(Object);
    Wanted.push_back(Object.Table);
    if (Wanted.size() == AtOnce) Take();
  }
  Take();
  if (!FOptions.ScanColumns) return Result;
  std::vector<TDicTableDescription*> Tables;
  for (TDicTableDescription& Table : Result) Tables.push_back(&Table);
  AlignScannedKeys(Tables);
  return Result;
}

TDescribedObject TDescriber::DescribeOther(const TDefinedObject& Object) {
  TDefinitionReader& Definitions = FConnection.Definitions();
  const std::string Name = FullName(Object.Table);
  if (Object.Kind == TDefinedKind::View)
    return Finish(Definitions.View(Object.Table), StoredView(FDatabaseName, Name), Object.Kind);
  if (Object.Kind == TDefinedKind::Generator)
    return Finish(Definitions.Generator(Object.Table), StoredGenerator(FDatabaseName, Name), Object.Kind);
  const bool Selects = Object.Kind == TDefinedKind::SelectProcedure;
  return Finish(Definitions.Procedure(Object.Table), StoredProcedure(FDatabaseName, Name, Selects), Object.Kind);
}

void StoreDescribed(TDescribedObject Described, const std::string& DatabaseName) {
  DSPContainer().Table(DatabaseName).ChangeStructureProperties(Described.Item);
  const auto Form = DSPContainer().CreateFormManager(DatabaseName);
  Form->ObjectName = Described.Item.ObjectName;
  Form->ObjectType = Described.Item.ObjectType;
  Form->Root() = std::move(Described.Tree);
  if (!Form->SavePureStructure())
    throw EDSPError(Format("The structure '%s' (type %d) cannot be saved", Form->ObjectName, Form->ObjectType));
}

std::vector<std::string> MeetingNames(const std::vector<TDefinedObject>& Objects) {
  std::map<std::pair<int, std::string>, std::vector<std::string>> Names;
  for (const TDefinedObject& Object : Objects) {
    // A structure's name has no quotes that would tell where a dot belongs.
    Names[{ObjectTypeOf(Object.Kind), LowerCase(DottedName(Object.Table))}].push_back(
        Format("'%s'", FullName(Object.Table)));
  }
  std::vector<std::string> Result;
  for (const auto& [Key, Alike] : Names)
    for (std::size_t I = 1; I < Alike.size(); ++I) Result.push_back(Format("%s and %s", Alike[I - 1], Alike[I]));
  return Result;
}

}  // namespace velkrund
