#include "standalone/tables/DriverTable.h"

#include <numeric>

#include "standalone/drivers/OrderingKey.h"
#include "standalone/drivers/ahead/AppendAhead.h"
#include "standalone/drivers/ahead/ReadAhead.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TDriverTable::TDriverTable(TConnection& Connection, const TTableInfo& Table, bool ReadWrite)
    : FConnection(Connection),
      FDescription(Connection.Schema().Describe(Table)),
      FName(FullName(Table)),
      FReadWrite(ReadWrite),
      FRecord(Format("table '%s'", FName), FDescription.Columns),
      FWalked(FDescription.Columns.size()) {
  std::iota(FWalked.begin(), FWalked.end(), 0);
}

TDriverTable::~TDriverTable() = default;

bool TDriverTable::OrderByKey() {
  FOrder = OrderingKey(FConnection.Schema(), FDescription);
  return !FOrder.empty();
}

std::int64_t TDriverTable::RecordCount() {
  return FSelection.empty() ? FConnection.Schema().RowCount(FDescription.Table)
                            : FConnection.Rows().CountRows(FDescription, FSelection);
}

std::int64_t TDriverTable::EstimatedCount() {
  std::optional<std::int64_t> Rows;
  if (FSelection.empty()) Rows = FConnection.Schema().EstimatedRows(FDescription);
  return Rows && *Rows > 0 ? *Rows : RecordCount();
}

bool TDriverTable::HasRecords() {
  return FSelection.empty() ? FConnection.Schema().HasRows(FDescription.Table) : RecordCount() > 0;
}

bool TDriverTable::First() {
  CloseCursor();
  FRecord.SetColumns(FWalked);
  FCursor = FConnection.Rows().OpenCursor(FDescription, FWalked,
                                          {.Order = FOrder, .Condition = FSelection, .Unmoved = FUnmoved});
  TConnectionTurn* const Turn = FConnection.Turn();
  if (Turn || (FReadAhead && FConnection.Capabilities().Threads))
    FCursor = std::make_unique<TReadAheadCursor>(std::move(FCursor), FWalked.size(), Turn);
  return Next();
}

bool TDriverTable::Next() {
  if (!FCursor) return false;
  try {
    if (FCursor->Next()) {
      FRecord.Move(FCursor.get(), FCursor->Decoded());
      return true;
    }
  } catch (...) {
    CloseCursor();
    throw;
  }
  // Closed at once, so that the engine lets go of the table.
  CloseCursor();
  return false;
}

void TDriverTable::CloseCursor() {
  FRecord.Move(nullptr);
  FCursor.reset();
}

void TDriverTable::BeginAppend() {
  if (!FReadWrite)
    throw EDatabaseError(Format("Cannot append to table '%s': it is open for reading only", TableName()));
  // An append that failed or was cancelled has had no end.
  FAppending = false;
  FAppender.reset();
  FAppendOptions.FirstRecord = 1;
  FChangedValues = FUpdatedRecords = 0;
  // What cannot be written at all shows here, before the first record.
  OpenAppender(TColumns::All);
  FAppending = true;
}

void TDriverTable::CloseAppender() {
  if (!FAppender) return;
  FAppender->Finish();
  FChangedValues += FAppender->ChangedValues();
  FUpdatedRecords += FAppender->UpdatedRecords();
  FAppender.reset();
}

void TDriverTable::OpenAppender(TColumns Which) {
  CloseAppender();
  FValues.clear();
  FAssigned.clear();
  std::vector<int> Columns;
  for (const auto& Field : FRecord.All()) {
    const std::size_t Index = FAssigned.size();
    const bool IsMeant = Which == TColumns::All || Field->Assigned();
    const bool Written = IsMeant && !FDescription.Columns[Index].Generated;
    FAssigned.push_back(static_cast<char>(IsMeant));
    if (!Written) continue;
    Columns.push_back(static_cast<int>(Index));
    FValues.push_back(&Field->BufferedValue());
  }
  FAppender = FConnection.Rows().OpenAppender(FDescription, Columns, FAppendOptions);
  if (TConnectionTurn* const Turn = FConnection.Turn())
    FAppender = std::make_unique<TAppendAhead>(std::move(FAppender), Columns.size(), *Turn);
}

bool TDriverTable::AssignedAsBefore() const {
  const auto& Fields = FRecord.All();
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
