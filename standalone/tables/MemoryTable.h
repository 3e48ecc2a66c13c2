#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// A small table in memory; no table of an SQL engine, so that nobody empties it by a statement.
class TMemoryTable final : public TTable {
 public:
  using TColumns = std::initializer_list<std::pair<std::string, TKvKind>>;

  TMemoryTable(std::string TableName, TColumns Columns);
  ~TMemoryTable() override;

  const std::string& TableName() const override { return FTableName; }
  TRecord& Record() override;

  std::int64_t RecordCount() override { return static_cast<std::int64_t>(FRows.size()); }
  bool First() override;
  bool Next() override;

  void SetCanRecreateAutoSequence(bool) override {}
  void BeginAppend() override { FAppended.clear(); }
  /// The record becomes part of the table at EndAppend.
  void AppendRecord() override;
  void EndAppend() override;

 private:
  class TMemoryField;
  class TMemoryRecord;
  using TRow = std::vector<TKvVariant>;

  std::string FTableName;
  std::unique_ptr<TMemoryRecord> FRecord;
  std::vector<TRow> FRows;
  std::vector<TRow> FAppended;
  std::size_t FAt = 0;  // number of the current row, from 1; 0: none
};

}  // namespace velkrund
