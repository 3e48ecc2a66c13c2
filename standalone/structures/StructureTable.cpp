#include "standalone/structures/StructureTable.h"

#include <algorithm>
#include <tuple>

#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

const TCatalogueTable& Structures() {
  static const TCatalogueTable Table{"velkrund_structures",
                                     {{"object_type", TKvKind::Int64, false},
                                      {"name_key", TKvKind::String, false},  // the name in lower case
                                      {"object_name", TKvKind::String, false},
                                      {"table_name", TKvKind::String},
                                      {"parent_object", TKvKind::String},
                                      {"remarks", TKvKind::String},
                                      {"tree", TKvKind::Bytes}},
                                     "object_type, name_key"};
  return Table;
}

constexpr const char* ItemColumns = "object_name, object_type, table_name, parent_object, remarks";

TDSPListItem TakeItem(TCursor& Rows) {
  return {TakeText(Rows, 0), static_cast<int>(TakeNumber(Rows, 1).value_or(0)), TakeText(Rows, 2), TakeText(Rows, 3),
          TakeText(Rows, 4)};
}

/// Which row a structure is: with the marks of the first two parameters.
std::string WhereIdentity(const TDialect& Dialect) {
  return Format(" WHERE object_type = %s AND name_key = %s", Dialect.ParameterMark(1), Dialect.ParameterMark(2));
}

}  // namespace

struct TStructureTable::TSetting {
  const char* Column;
  TKvVariant Value;
};

/// Looks once a transaction, and then for each question outside of one.
bool TStructureTable::IsThere(TConnection& Connection) {
  const std::int64_t Mark = FMark();
  if (Mark != 0 && Mark == FKnownAt) return true;
  const bool Result = TCatalogue(Connection).Has(Structures());
  FKnownAt = Result ? Mark : 0;
  return Result;
}

std::unique_ptr<TCursor> TStructureTable::Select(const char* Columns, const std::string& ObjectName, int ObjectType) {
  TConnection& Connection = FConnect();
  if (!IsThere(Connection)) return nullptr;
  const std::string Key = LowerCase(ObjectName);
  const TKvVariant Identity[] = {NumberCell(ObjectType), TextCell(Key)};
  auto Rows = Connection.Query(
      Format("SELECT %s FROM %s%s", Columns, Structures().Name, WhereIdentity(Connection.Dialect())), Identity);
  if (!Rows->Next()) return nullptr;
  return Rows;
}

bool TStructureTable::DSPStructureExist(const std::string& ObjectName, int ObjectType) {
  return Select("object_type", ObjectName, ObjectType) != nullptr;
}

std::optional<TDSPListItem> TStructureTable::GetStructureProperties(const std::string& ObjectName, int ObjectType) {
  const auto Row = Select(ItemColumns, ObjectName, ObjectType);
  return Row ? std::optional(TakeItem(*Row)) : std::nullopt;
}

std::optional<std::string> TStructureTable::ReadTree(const std::string& ObjectName, int ObjectType) {
  const auto Row = Select("tree", ObjectName, ObjectType);
  if (!Row) return std::nullopt;
  TKvVariant Tree;
  Row->Read(0, Tree);
  return Tree.IsNull() ? std::nullopt : std::optional<std::string>(Tree.AsText());
}

void TStructureTable::ChangeStructureProperties(const TDSPListItem& Item) {
  Store(Item.ObjectName, Item.ObjectType,
        {{"table_name", TextCell(Item.TableName)},
         {"parent_object", TextCell(Item.ParentObject)},
         {"remarks", TextCell(Item.Remarks)}});
}

void TStructureTable::WriteTree(const std::string& ObjectName, int ObjectType, std::string_view Bytes) {
  Store(ObjectName, ObjectType, {{"tree", TextCell(Bytes, TKvKind::Bytes)}});
}

void TStructureTable::Store(const std::string& ObjectName, int ObjectType, const std::vector<TSetting>& Settings) {
  TTransaction Transaction(FDatabaseName);
  TConnection& Connection = FConnect();
  const TDialect& Dialect = Connection.Dialect();
  if (!IsThere(Connection)) TCatalogue(Connection).Make(Structures());
  const std::string Key = LowerCase(ObjectName);
  std::vector<TKvVariant> Parameters = {NumberCell(ObjectType), TextCell(Key)};
  std::string Changes, Columns, Marks;
  for (const TSetting& Setting : Settings) {
    Parameters.push_back(Setting.Value);
    const std::string Mark = Dialect.ParameterMark(static_cast<int>(Parameters.size()));
    Changes += Format("%s%s = %s", Changes.empty() ? "" : ", ", Setting.Column, Mark);
    Columns += Format(", %s", Setting.Column);
    Marks += ", " + Mark;
  }
  const std::string Table = Structures().Name;
  if (Connection.Execute("UPDATE " + Table + " SET " + Changes + WhereIdentity(Dialect), Parameters) == 0) {
    Parameters.push_back(TextCell(ObjectName));
    const int Last = static_cast<int>(Parameters.size());
    Connection.Execute(
        Format("INSERT INTO %s (object_type, name_key%s, object_name) VALUES (%s, %s%s, %s)", Table, Columns,
               Dialect.ParameterMark(1), Dialect.ParameterMark(2), Marks, Dialect.ParameterMark(Last)),
        Parameters);
  }
  Transaction.Commit();
}

TDSPList TStructureTable::List() {
  TConnection& Connection = FConnect();
  std::vector<TDSPListItem> Items;
  if (IsThere(Connection)) {
    const auto Rows = Connection.Query(Format("SELECT %s FROM %s", ItemColumns, Structures().Name));
    while (Rows->Next()) Items.push_back(TakeItem(*Rows));
  }
  // Not by the engine, whose order of names may depend on where it stands.
  std::sort(Items.begin(), Items.end(), [](const TDSPListItem& A, const TDSPListItem& B) {
    if (A.ObjectType != B.ObjectType) return A.ObjectType < B.ObjectType;
    return CompareText(A.ObjectName, B.ObjectName) < 0;
  });
  TDSPList Result;
  for (TDSPListItem& Item : Items) Result.Add(std::move(Item));
  return Result;
}

bool TStructureTable::DeleteStructure(const std::string& ObjectName, int ObjectType) {
  TConnection& Connection = FConnect();
  if (!IsThere(Connection)) return false;
  TTransaction Transaction(FDatabaseName);
  const std::string Key = LowerCase(ObjectName);
  const TKvVariant Identity[] = {NumberCell(ObjectType), TextCell(Key)};
  const bool Found =
      Connection.Execute(Format("DELETE FROM %s", Structures().Name) + WhereIdentity(Connection.Dialect()), Identity) >
      0;
  Transaction.Commit();
  return Found;
}

}  // namespace velkrund
