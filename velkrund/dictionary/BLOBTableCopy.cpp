#include "velkrund/dictionary/BLOBTableCopy.h"

#include <exception>
#include <utility>
#include <vector>

#include "velkrund/dictionary/BLOBFieldMapping.h"
#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

TKvKind KindOf(TDicFieldType Type) {
  switch (Type) {
    case TDicFieldType::Any:
      return TKvKind::Null;
    case TDicFieldType::Int16:
      return TKvKind::SmallInt;
    case TDicFieldType::Int32:
      return TKvKind::Integer;
    case TDicFieldType::Int64:
      return TKvKind::Int64;
    case TDicFieldType::UInt64:
      return TKvKind::UInt64;
    case TDicFieldType::Real32:
    case TDicFieldType::Real64:
      return TKvKind::Double;
    case TDicFieldType::Money:
      return TKvKind::Currency;
    case TDicFieldType::Boolean:
      return TKvKind::Boolean;
    case TDicFieldType::Bytes:
      return TKvKind::Bytes;
    case TDicFieldType::Date:
      return TKvKind::SysDate;
    case TDicFieldType::Time:
      return TKvKind::SysTime;
    case TDicFieldType::DateTime:
    case TDicFieldType::ZonedDateTime:
      return TKvKind::DateTime;
    default:
      return TKvKind::String;
  }
}

}  // namespace

TBLOBTableCopy::TBLOBTableCopy(std::string TableName, std::string FieldName, const TDicTableDescription& Structure,
                               TStringPairs Mapping)
    : FTableName(std::move(TableName)), FFieldName(std::move(FieldName)), FMapping(std::move(Mapping)) {
  for (const TDicField& Field : Structure.Fields) FFields.emplace_back(Field.Name, KindOf(Field.Type));
  static_cast<void>(Make());
}

std::unique_ptr<TBLOBTable> TBLOBTableCopy::Open(std::string_view Bytes) const {
  try {
    return BaseMng().OpenBLOBTable(Bytes);
  } catch (const EDatabaseError&) {
    std::throw_with_nested(
        EDicUtilError(Format("Error opening BLOB table in field '%s' in the table '%s'", FFieldName, FTableName),
                      {.Table = FTableName, .Column = FFieldName}));
  }
}

std::unique_ptr<TBLOBTable> TBLOBTableCopy::Make() const {
  const EDicUtilError Refused(
      Format("Error getting BLOB table in field '%s' in the table '%s'", FFieldName, FTableName),
      {.Table = FTableName, .Column = FFieldName});
  try {
    if (std::unique_ptr<TBLOBTable> Result = BaseMng().NewBLOBTable(FTableName + "." + FFieldName, FFields))
      return Result;
  } catch (const EDatabaseError&) {
    std::throw_with_nested(EDicUtilError(Refused));
  }
  throw EDicUtilError(Refused);
}

bool TBLOBTableCopy::Copy(std::string_view Old, std::string& New) {
  const std::unique_ptr<TBLOBTable> From = Open(Old);
  if (!From) return false;
  const std::unique_ptr<TBLOBTable> To = Make();
  CopyRows(*From, *To);
  New = To->Bytes();
  return true;
}

void TBLOBTableCopy::CopyRows(TBLOBTable& Old, TBLOBTable& New) {
  std::vector<std::pair<TField*, TField*>> Pairs;
  std::set<const TField*> Taken;
  for (int Index = 0; Index < New.Record().FieldCount(); ++Index) {
    TField& To = New.Record().Fields(Index);
    TField* const From = Old.FindField(OldNameFor(FMapping, To.Name()));
    if (!From) continue;
    Pairs.emplace_back(From, &To);
    Taken.insert(From);
  }
  New.BeginAppend();
  for (bool Row = Old.First(); Row; Row = Old.Next()) {
    New.ClearData();
    for (const auto& [From, To] : Pairs) To->SetValue(From->Value());
    New.AppendRecord();
    NoteLost(Old, Taken);
  }
  New.EndAppend();
}

void TBLOBTableCopy::NoteLost(TBLOBTable& Old, const std::set<const TField*>& Taken) {
  if (static_cast<int>(Taken.size()) == Old.Record().FieldCount()) return;
  for (int Index = 0; Index < Old.Record().FieldCount(); ++Index) {
    TField& Field = Old.Record().Fields(Index);
    if (!Taken.contains(&Field) && !Field.Value().IsNull()) FLost.insert(Field.Name());
  }
}

}  // namespace velkrund
