#include "standalone/dictionary/ScannedKeys.h"

#include <algorithm>
#include <map>
#include <string>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TTables = std::map<std::string, TDicTableDescription*>;  // by full name in lower case

TDicField* FieldOf(TDicTableDescription& Table, const std::string& Name) {
  const auto Found = std::find_if(Table.Fields.begin(), Table.Fields.end(),
                                  [&](const TDicField& Field) { return SameText(Field.Name, Name); });
  return Found == Table.Fields.end() ? nullptr : &*Found;
}

/// The field that the pair at Place refers to; null: it is not among the tables.
TDicField* Referred(const TTables& Tables, const TDicForeignKey& Key, std::size_t Place) {
  const auto Other = Tables.find(LowerCase(Key.Schema.empty() ? Key.Table : Key.Schema + "." + Key.Table));
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

void AlignScannedKeys(std::vector<TDicTableDescription*> Tables) {
  TTables Known;
  for (TDicTableDescription* const Table : Tables) Known.emplace(LowerCase(Table->FullName()), Table);
  // Fields that refer to fields that refer: types only get wider, so this ends.
  for (bool Changed = true; Changed;) {
    Changed = false;
    for (TDicTableDescription* const Table : Tables) Changed = AlignKeys(*Table, Known) || Changed;
  }
}

}  // namespace velkrund
