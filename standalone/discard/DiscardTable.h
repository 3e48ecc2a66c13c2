#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// A table that takes every record and keeps none, without any work per record: for reading data that are only to be
/// looked at. It never has rows, and is no table of an SQL engine, so that nobody empties it by a statement.
///
/// Its fields are of the kind Currency. What a value text may be depends on the column only where a number without a
/// kind of its own meets it: a column of amounts takes an amount, and every number that other columns take besides. So
/// a text that some column could take is taken here, and one that no column could take is none here either.
class TDiscardTable final : public TTable {
 public:
  /// FieldNames: of the columns, in their order.
  TDiscardTable(std::string TableName, const std::vector<std::string>& FieldNames);
  ~TDiscardTable() override;

  const std::string& TableName() const override { return FTableName; }
  TRecord& Record() override;

  std::int64_t RecordCount() override { return 0; }
  bool First() override { return false; }
  bool Next() override { return false; }

  void SetCanRecreateAutoSequence(bool) override {}
  void BeginAppend() override {}
  void AppendRecord() override {}
  void EndAppend() override {}

 private:
  class TDiscardRecord;

  std::string FTableName;
  std::unique_ptr<TDiscardRecord> FRecord;
};

}  // namespace velkrund
