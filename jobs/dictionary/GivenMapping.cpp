#include "jobs/dictionary/GivenMapping.h"

#include <algorithm>

#include "jobs/policies/Policies.h"
#include "velkrund/platform/dictionary/Dictionary.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// The text without "Table." before it.
std::string WithoutTable(const std::string& Table, const std::string& Text) {
  const bool HasTable =
      Text.size() > Table.size() + 1 && Text[Table.size()] == '.' && SameText(Text.substr(0, Table.size()), Table);
  return HasTable ? Text.substr(Table.size() + 1) : Text;
}

}  // namespace

std::vector<std::string> FieldNames(const TTableDescription& Table) {
  std::vector<std::string> Result;
  for (const TColumnInfo& Column : Table.Columns) Result.push_back(Column.Name);
  return Result;
}

std::vector<std::string> FieldNames(const TDicTableDescription& Table) {
  std::vector<std::string> Result;
  for (const TDicField& Field : Table.Fields) Result.push_back(Field.Name);
  return Result;
}

bool HasName(const std::vector<std::string>& Names, const std::string& Name) {
  return std::any_of(Names.begin(), Names.end(), [&](const std::string& Each) { return SameText(Each, Name); });
}

std::optional<std::string> DoubledTarget(const TStringPairs& Mapping) {
  TStringList Seen;
  for (const auto& [From, To] : Mapping) {
    if (!To.empty() && Seen.IndexOf(To) >= 0) return To;
    Seen.Add(To);
  }
  return std::nullopt;
}

void TGivenMapping::Take(const TTables& Tables, TStringPairs& Fields, TBLOBFieldMappingList& Inside) {
  FNames.insert(FNames.end(), Tables.NewFields.begin(), Tables.NewFields.end());
  for (std::size_t Index = 0; Index < FGiven.size(); ++Index) {
    const std::string From = WithoutTable(Tables.Old, FGiven[Index].first);
    if (!HasName(Tables.OldFields, From) || !HasName(Tables.NewFields, FGiven[Index].second)) continue;
    Fields.emplace_back(From, FGiven[Index].second);
    FUsed[Index] = true;
  }
  // When the names of the BLOB fields themselves are known.
  for (std::size_t Index = 0; Index < FGiven.size(); ++Index) {
    const std::string From = WithoutTable(Tables.Old, FGiven[Index].first);
    if (!HasName(Tables.OldFields, From) && TakeInside(Tables, From, FGiven[Index].second, Fields, Inside))
      FUsed[Index] = true;
  }
}

/// False when no structure describes such an inside with such a field.
bool TGivenMapping::TakeInside(const TTables& Tables, const std::string& Old, const std::string& New,
                               const TStringPairs& Fields, TBLOBFieldMappingList& Inside) {
  const std::size_t Stop = Old.find('.');
  if (Stop == Old.npos) return false;
  std::string Field = Old.substr(0, Stop);
  const auto Renamed =
      std::find_if(Fields.begin(), Fields.end(), [&](const auto& Pair) { return SameText(Pair.first, Field); });
  if (Renamed != Fields.end()) Field = Renamed->second;
  TDicTableDescription Described;
  if (!Dictionary().GetDicTable(FDatabaseName).GetTableInfo(Tables.New + "." + Field, Described)) return false;
  if (!HasName(Tables.NewFields, Field) || !HasName(FieldNames(Described), New)) return false;
  TBLOBFieldMapping* const Known = Inside.GetMappingByField(Field);
  (Known ? *Known : Inside.Add(Field)).Mapping.emplace_back(Old.substr(Stop + 1), New);
  return true;
}

void TGivenMapping::RefuseUnused() const {
  for (std::size_t Index = 0; Index < FGiven.size(); ++Index) {
    if (FUsed[Index]) continue;
    const auto& [Old, New] = FGiven[Index];
    throw ESettingsError(
        Format("%s '%s=%s' fits no table: one has to have a field '%s', and what its rows go into a "
               "field '%s'%s",
               Setting("Mapping"), Old, New, Old, New, ContentHint(New, FNames, "; it has ")));
  }
}

}  // namespace velkrund
