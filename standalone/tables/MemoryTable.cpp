#include "standalone/tables/MemoryTable.h"

#include <iterator>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

class TMemoryTable::TMemoryField final : public TField {
 public:
  TMemoryField(TMemoryTable& Table, const std::string& Name, TKvKind Kind, std::size_t Index)
      : TField(Name, Kind), FTable(Table), FIndex(Index) {}

  const TKvVariant& Value() override {
    if (FTable.FAt == 0)
      throw EDatabaseError(
          Format("Field '%s' of table '%s' has no value: the table stands on no row", Name(), FTable.TableName()));
    return FTable.FRows[FTable.FAt - 1][FIndex];
  }

 private:
  TMemoryTable& FTable;
  std::size_t FIndex;
};

class TMemoryTable::TMemoryRecord final : public TRecord {
 public:
  TMemoryRecord(TMemoryTable& Table, TColumns Columns) {
    for (const auto& [Name, Kind] : Columns)
      FFields.push_back(std::make_unique<TMemoryField>(Table, Name, Kind, FFields.size()));
  }

  int FieldCount() const override { return static_cast<int>(FFields.size()); }
  TField& Fields(int Index) override { return *FFields.at(static_cast<std::size_t>(Index)); }

 private:
  std::vector<std::unique_ptr<TMemoryField>> FFields;
};

TMemoryTable::TMemoryTable(std::string TableName, TColumns Columns)
    : FTableName(std::move(TableName)), FRecord(std::make_unique<TMemoryRecord>(*this, Columns)) {}

TMemoryTable::~TMemoryTable() = default;

TRecord& TMemoryTable::Record() { return *FRecord; }

bool TMemoryTable::First() {
  FAt = FRows.empty() ? 0 : 1;
  return FAt != 0;
}

bool TMemoryTable::Next() {
  FAt = FAt != 0 && FAt < FRows.size() ? FAt + 1 : 0;
  return FAt != 0;
}

void TMemoryTable::AppendRecord() {
  TRow& Row = FAppended.emplace_back();
  for (int I = 0; I < FRecord->FieldCount(); ++I) Row.push_back(FRecord->Fields(I).BufferedValue());
}

void TMemoryTable::EndAppend() {
  FRows.insert(FRows.end(), std::make_move_iterator(FAppended.begin()), std::make_move_iterator(FAppended.end()));
  FAppended.clear();
}

}  // namespace velkrund
