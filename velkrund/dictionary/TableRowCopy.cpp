#include "velkrund/dictionary/TableRowCopy.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TTableRowCopy::TTableRowCopy(TTable& Old, TTable& New, const TOldName& OldName) : FOld(Old), FNew(New) {
  for (int Index = 0; Index < New.Record().FieldCount(); ++Index) {
    TField& Field = New.Record().Fields(Index);
    if (TField* const Source = Old.FindField(OldName(Field.Name()))) FPairs.push_back({Source, &Field});
  }
}

void TTableRowCopy::CarryTables(const std::string& NewName, std::unique_ptr<TBLOBTableCopy> Copy) {
  for (TPair& Pair : FPairs)
    if (SameText(Pair.New->Name(), NewName)) Pair.Tables = std::move(Copy);
}

bool TTableRowCopy::IsBLOB(const std::string& NewName) const {
  return std::any_of(FPairs.begin(), FPairs.end(), [&](const TPair& Pair) {
    return SameText(Pair.New->Name(), NewName) && Pair.New->Kind() == TKvKind::Bytes &&
           Pair.Old->Kind() == TKvKind::Bytes;
  });
}

std::optional<std::int64_t> TTableRowCopy::CopyByStatement(TODBCBaseManager& BaseManager,
                                                           const std::string& OldDatabase) const {
  TODBCBaseManager::TFieldPairs Names;
  for (const TPair& Pair : FPairs) {
    if (Pair.Tables) return std::nullopt;
    Names.emplace_back(Pair.Old->Name(), Pair.New->Name());
  }
  // An engine has no statement for rows of nothing.
  if (Names.empty()) return std::nullopt;
  return BaseManager.CopyFields(OldDatabase, FOld.TableName(), FNew.TableName(), Names, FCanRecreateAutoSequence);
}

bool TTableRowCopy::CopyByRecord(const std::function<bool(std::int64_t Rows)>& Counted) {
  FNew.SetCanRecreateAutoSequence(FCanRecreateAutoSequence);
  FNew.BeginAppend();
  std::int64_t Rows = 0;
  for (bool Row = FOld.First(); Row; Row = FOld.Next()) {
    FNew.ClearData();
    for (TPair& Pair : FPairs) CopyValue(Pair);
    FNew.AppendRecord();
    if (!Counted(++Rows)) return false;
  }
  FNew.EndAppend();
  return true;
}

/// Bytes are lent, since the old table stands still until the record is appended.
void TTableRowCopy::CopyValue(TPair& Pair) {
  const TKvVariant& Value = Pair.Old->Value();
  const bool HoldsTable = Pair.Tables && !Value.AsText().empty() && Pair.Tables->Copy(Value.AsText(), Pair.Carried);
  if (HoldsTable)
    Pair.New->Buffer().BorrowText(Pair.Carried, TKvKind::Bytes);
  else if (HasBytes(Value.Kind()))
    Pair.New->Buffer().BorrowText(Value.AsText(), Value.Kind());
  else
    Pair.New->SetValue(Value);
}

std::set<std::string> TTableRowCopy::LostFields() const {
  std::set<std::string> Result;
  for (const TPair& Pair : FPairs)
    if (Pair.Tables)
      for (const std::string& Field : Pair.Tables->LostFields()) Result.insert(Pair.Old->Name() + "." + Field);
  return Result;
}

}  // namespace velkrund
