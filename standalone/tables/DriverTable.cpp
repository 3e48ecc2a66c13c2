#include "standalone/tables/DriverTable.h"

#include <numeric>

#include "standalone/drivers/OrderingKey.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

class TDriverTable::TDriverField final : public TField {
 public:
  TDriverField(TDriverTable& Table, const TColumnInfo& Column, int Index)
      : TField(Column.Name, Column.Kind), FTable(Table), FIndex(Index) {}

  const TKvVariant& Value() override {
    if (FRow != FTable.FRow) {
      if (!FTable.FCursor)
        throw EDatabaseError(
            Format("Field '%s' of table '%s' has no value: the table stands on no row", Name(), FTable.TableName()));
      FTable.FCursor->Read(FIndex, FValue);
      FRow = FTable.FRow;
    }
    return FValue;
  }

 private:
  TDriverTable& FTable;
  int FIndex;
  std::int64_t FRow = -1;  // the row of FValue
  TKvVariant FValue;
};

class TDriverTable::TDriverRecord final : public TRecord {
 public:
  explicit TDriverRecord(TDriverTable& Table) {
    const std::vector<TColumnInfo>& Columns = Table.FDescription.Columns;
    FFields.reserve(Columns.size());
    for (std::size_t I = 0; I < Columns.size(); ++I)
      FFields.push_back(std::make_unique<TDriverField>(Table, Columns[I], static_cast<int>(I)));
  }

  int FieldCount() const override { return static_cast<int>(FFields.size()); }
  TField& Fields(int Index) override { return *FFields.at(static_cast<std::size_t>(Index)); }
  const std::vector<std::unique_ptr<TDriverField>>& All() const { return FFields; }

 private:
  std::vector<std::unique_ptr<TDriverField>> FFields;
};

TDriverTable::TDriverTable(TConnection& Connection, const TTableInfo& Table, bool ReadWrite)
    : FConnection(Connection),
      FDescription(Connection.Schema().Describe(Table)),
      FName(FullName(Table)),
      FReadWrite(ReadWrite),
      FRecord(std::make_unique<TDriverRecord>(*this)) {}

TDriverTable::~TDriverTable() = default;

TRecord& TDriverTable::Record() { return *FRecord; }

bool TDriverTable::OrderByKey() {
  FOrder = OrderingKey(FConnection.Schema(), FDescription);
  return !FOrder.empty();
}

bool TDriverTable::First() {
  FCursor.reset();
  std::vector<int> Columns(FDescription.Columns.size());
  std::iota(Columns.begin(), Columns.end(), 0);
  FCursor = FConnection.Rows().OpenCursor(FDescription, Columns, FOrder);
  return Next();
}

bool TDriverTable::Next() {
  if (!FCursor) return false;
  ++FRow;
  if (FCursor->Next()) return true;
  // Closed at once, so that the engine lets go of the table.
  FCursor.reset();
  return false;
}

void TDriverTable::BeginAppend() {
  if (!FReadWrite)
    throw EDatabaseError(Format("Cannot append to table '%s': it is open for reading only", TableName()));
  // An append that failed or was cancelled has had no end.
  FAppending = false;
  FAppender.reset();
  FAppendOptions.FirstRecord = 1;
  FChangedValues = 0;
  // What cannot be written at all shows here, before the first record.
  OpenAppender(TColumns::All);
  FAppending = true;
}

void TDriverTable::CloseAppender() {
  if (!FAppender) return;
  FAppender->Finish();
  FChangedValues += FAppender->ChangedValues();
  FAppender.reset();
}

void TDriverTable::OpenAppender(TColumns Which) {
  CloseAppender();
  FValues.clear();
  FAssigned.clear();
  std::vector<int> Columns;
  for (const auto& Field : FRecord->All()) {
    const std::size_t Index = FAssigned.size();
    const bool IsMeant = Which == TColumns::All || Field->Assigned();
    const bool Written = IsMeant && !FDescription.Columns[Index].Generated;
    FAssigned.push_back(static_cast<char>(IsMeant));
    if (!Written) continue;
    Columns.push_back(static_cast<int>(Index));
    FValues.push_back(&Field->BufferedValue());
  }
  FAppender = FConnection.Rows().OpenAppender(FDescription, Columns, FAppendOptions);
}

bool TDriverTable::AssignedAsBefore() const {
  const auto& Fields = FRecord->All();
  for (std::size_t I = 0; I < Fields.size(); ++I)
    if (Fields[I]->Assigned() != (FAssigned[I] != 0)) return false;
  return true;
}

void TDriverTable::AppendRecord() {
  if (!FAppending) throw EDatabaseError(Format("Cannot append to table '%s': no append has begun", TableName()));
  if (!FAppender || !AssignedAsBefore()) OpenAppender(TColumns::Assigned);
  FAppender->Append(FValues);
  ++FAppendOptions.FirstRecord;
}

void TDriverTable::EndAppend() {
  if (!FAppending) throw EDatabaseError(Format("Cannot append to table '%s': no append has begun", TableName()));
  FAppending = false;
  CloseAppender();
}

}  // namespace velkrund
