#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "standalone/drivers/Connection.h"
#include "standalone/tables/CursorRecord.h"
#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// A table of a database that a driver reaches. What the walk and the append need is resolved once: a row costs one
/// step of the engine, a value one decoding, and only if it is asked for.
class TDriverTable final : public TODBCTable {
 public:
  /// Connection: borrowed; outlives the table. ReadWrite false: appending is an error.
  TDriverTable(TConnection& Connection, const TTableInfo& Table, bool ReadWrite);
  ~TDriverTable() override;

  const std::string& TableName() const override { return FName; }
  std::string SQLName() const override { return FConnection.Dialect().SQLName(FDescription.Table); }
  TRecord& Record() override { return FRecord; }

  std::int64_t RecordCount() override;
  std::int64_t EstimatedCount() override;
  bool HasRecords() override;
  bool OrderByKey() override;
  void SetWalkedFields(const std::vector<int>& Places) override { FWalked = Places; }
  void SetSelection(const std::string& Condition) override { FSelection = Condition; }
  void SetUnmoved(bool Value) override { FUnmoved = Value; }
  void SetReadAhead(bool Value) override { FReadAhead = Value; }
  bool First() override;
  bool Next() override;

  void SetCanRecreateAutoSequence(bool Value) override { FAppendOptions.CanRecreateAutoSequence = Value; }
  void SetUpdateByKey(bool Value) override { FAppendOptions.UpdateByKey = Value; }
  std::int64_t UpdatedRecords() const override { return FUpdatedRecords; }
  void SetAllowLoss(bool Value) override { FAppendOptions.AllowLoss = Value; }
  std::int64_t ChangedValues() const override { return FChangedValues; }
  void BeginAppend() override;
  void AppendRecord() override;
  void EndAppend() override;

  const TTableDescription& Description() const { return FDescription; }

 private:
  void CloseCursor();
  bool AssignedAsBefore() const;
  enum class TColumns { All, Assigned };
  void OpenAppender(TColumns Which);
  void CloseAppender();

  TConnection& FConnection;
  TTableDescription FDescription;
  std::string FName;
  bool FReadWrite;
  TCursorRecord FRecord;

  std::vector<int> FWalked;  // columns that walks read
  std::vector<int> FOrder;   // columns that walks go by; empty: the table's own order
  std::string FSelection;
  bool FReadAhead = false, FUnmoved = false;
  std::unique_ptr<TCursor> FCursor;  // open between First and the end of the walk

  bool FAppending = false;
  TAppendOptions FAppendOptions;
  std::int64_t FChangedValues = 0, FUpdatedRecords = 0;
  std::unique_ptr<TBulkAppender>
      FAppender;                           // for the fields that the last record assigned; before the first one for all
  std::vector<char> FAssigned;             // per field: part of the appender's columns
  std::vector<const TKvVariant*> FValues;  // the buffers of these fields
};

}  // namespace velkrund
