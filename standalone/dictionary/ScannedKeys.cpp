#include "standalone/dictionary/ScannedKeys.h"

#include <algorithm>
#include <map>
#include <string>

#include "standalone/drivers/KeysWithNulls.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TTables = std::map<std::string, TDicTableDescription*>;  // by full name in lower case

std::string FullKey(const TDicForeignKey& Key) { return LowerCase(Key.FullTable()); }

TDicField* FieldOf(TDicTableDescription& Table, const std::string& Name) {
  const auto Found = std::find_if(Table.Fields.begin(), Table.Fields.end(),
                                  [&](const TDicField& Field) { return SameText(Field.Name, Name); });
  return Found == Table.Fields.end() ? nullptr : &*Found;
}

/// What a foreign key refers to that names no columns; null: there is none.
const TDicKey* ImpliedKey(const TDicTableDescription& Table) {
  const auto Found = std::find_if(Table.Keys.begin(), Table.Keys.end(), [](const TDicKey& Key) {
    return Key.Primary || std::any_of(Key.Words.begin(), Key.Words.end(),
                                      [&](const auto& Own) { return IsPrimaryWithNulls(Key, Own.first); });
  });
  return Found == Table.Keys.end() ? nullptr : &*Found;
}

/// The columns of a key that others take for a unique one have to be named.
void NameImplied(TDicForeignKey& Key, const TTables& Tables) {
  const auto Other = Tables.find(FullKey(Key));
  const TDicKey* const Implied = Other == Tables.end() ? nullptr : ImpliedKey(*Other->second);
  if (!Implied || Implied->Primary || Implied->Columns.size() != Key.Columns.size()) return;
  for (std::size_t Place = 0; Place < Key.Columns.size(); ++Place)
    if (Key.Columns[Place].To.empty()) Key.Columns[Place].To = Implied->Columns[Place].Name;
}

/// The field that the pair at Place refers to; null: it is not among the tables.
TDicField* Referred(const TTables& Tables, const TDicForeignKey& Key, std::size_t Place) {
  const auto Other = Tables.find(FullKey(Key));
  if (Other == Tables.end()) return nullptr;
  std::string Name = Key.Columns[Place].To;
  for (const TDicKey& Primary : Other->second->Keys)
    if (Name.empty() && Primary.Primary && Place < Primary.Columns.size()) Name = Primary.Columns[Place].Name;
  return FieldOf(*Other->second, Name);
}

bool IsOneOf(TDicFieldType Type, std::initializer_list<TDicFieldType> Types) {
  return std::find(Types.begin(), Types.end(), Type) != Types.end();
}

TDicFieldType Wider(TDicFieldType A, TDicFieldType B) {
  using enum TDicFieldType;
  const auto Both = [&](std::initializer_list<TDicFieldType> Types) { return IsOneOf(A, Types) && IsOneOf(B, Types); };
  if (Both({Int16, Int32, Int64})) return Int64;
  if (Both({Int16, Int32, Int64, Real32, Real64})) return Real64;
  return Both({String, FixedString}) ? String : Any;
}

/// False: they are alike already.
bool Align(TDicField& A, TDicField& B) {
  if (A.Type == B.Type) return false;
  for (TDicField* const Field : {&A, &B}) Field->Size = Field->Scale = std::nullopt;
  A.Type = B.Type = Wider(A.Type, B.Type);
  return true;
}

bool AlignKeys(TDicTableDescription& Table, const TTables& Tables) {
  bool Changed = false;
  for (const TDicForeignKey& Key : Table.ForeignKeys) {
    for (std::size_t Place = 0; Place < Key.Columns.size(); ++Place) {
      TDicField* const Own = FieldOf(Table, Key.Columns[Place].Column);
      TDicField* const Other = Referred(Tables, Key, Place);
      if (Own && Other) Changed = Align(*Own, *Other) || Changed;
    }
  }
  return Changed;
}

}  // namespace

void AlignScannedKeys(const std::vector<TDicTableDescription*>& Tables) {
  TTables Known;
  for (TDicTableDescription* const Table : Tables) Known.emplace(LowerCase(Table->FullName()), Table);
  for (TDicTableDescription* const Table : Tables)
    for (TDicForeignKey& Key : Table->ForeignKeys) NameImplied(Key, Known);
  // Fields that refer to fields that refer: types only get wider, so this ends.
  for (bool Changed = true; Changed;) {
    Changed = false;
    for (TDicTableDescription* const Table : Tables) Changed = AlignKeys(*Table, Known) || Changed;
  }
}

}  // namespace velkrund
