#include "standalone/tables/MemoryTable.h"

#include <iterator>

namespace velkrund {

bool TMemoryTable::First() {
  FAt = 0;
  return Stand();
}

bool TMemoryTable::Next() {
  if (FAt < FRows.size()) ++FAt;
  return Stand();
}

bool TMemoryTable::Stand() {
  const bool Found = FAt < FRows.size();
  FRecord.StandOn(Found ? &FRows[FAt] : nullptr);
  return Found;
}

void TMemoryTable::AppendRecord() {
  TRowRecord::TRow& Row = FAppended.emplace_back();
  for (int I = 0; I < FRecord.FieldCount(); ++I) Row.push_back(FRecord.Fields(I).BufferedValue());
}

void TMemoryTable::EndAppend() {
  FRows.insert(FRows.end(), std::make_move_iterator(FAppended.begin()), std::make_move_iterator(FAppended.end()));
  FAppended.clear();
  FRecord.StandOn(nullptr);
  FAt = FRows.size();
}

}  // namespace velkrund
