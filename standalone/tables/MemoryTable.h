#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "standalone/tables/RowRecord.h"
#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// A small table in memory; no table of an SQL engine, so that nobody empties it by a statement.
class TMemoryTable final : public TTable {
 public:
  using TColumns = std::initializer_list<std::pair<std::string, TKvKind>>;

  TMemoryTable(std::string TableName, TColumns Columns)
      : FTableName(std::move(TableName)), FRecord(FTableName, Columns) {}

  const std::string& TableName() const override { return FTableName; }
  TRecord& Record() override { return FRecord; }

  std::int64_t RecordCount() override { return static_cast<std::int64_t>(FRows.size()); }
  bool First() override;
  bool Next() override;

  void SetCanRecreateAutoSequence(bool) override {}
  void BeginAppend() override { FAppended.clear(); }
  /// The record becomes part of the table at EndAppend, which ends a walk.
  void AppendRecord() override;
  void EndAppend() override;

 private:
  bool Stand();

  std::string FTableName;
  TRowRecord FRecord;
  std::vector<TRowRecord::TRow> FRows;
  std::vector<TRowRecord::TRow> FAppended;
  std::size_t FAt = 0;  // index of the current row; how many there are: none
};

}  // namespace velkrund
