#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "standalone/tables/RowRecord.h"
#include "velkrund/platform/database/BLOBTable.h"

namespace velkrund {

/// A BLOB table as it stands in the value of its field; docs/blob-tables.md has the layout. Rows are kept as their
/// bytes, so that it takes the memory of the value, and are decoded as they are walked. Raises EDatabaseError.
class TStandaloneBlobTable final : public TBLOBTable {
 public:
  /// Whether bytes begin as a BLOB table does; otherwise they are a plain BLOB.
  static bool IsOne(std::string_view Bytes);
  /// Looks through all of it before the first row is given out. An error names the table, the place and what is wrong
  /// there.
  static std::unique_ptr<TStandaloneBlobTable> Open(std::string_view Bytes);
  /// An empty one. At least one field, each of another name; an error otherwise.
  TStandaloneBlobTable(std::string Name, const TFields& Fields);

  const std::string& TableName() const override { return FName; }
  TRecord& Record() override { return FRecord; }
  std::int64_t RecordCount() override { return static_cast<std::int64_t>(FCount); }
  bool First() override;
  bool Next() override;

  void SetCanRecreateAutoSequence(bool) override {}
  void BeginAppend() override;
  /// A value that its kind does not have is an error. The record becomes part of the table at EndAppend, which ends a
  /// walk.
  void AppendRecord() override;
  void EndAppend() override;

  std::string Bytes() const override;

 private:
  void ReadRow();

  const std::string FName;
  const TFields FFields;
  TRowRecord FRecord;
  std::string FRows;  // of all rows, as they are stored
  std::uint64_t FCount = 0;
  std::string FAppended;
  std::uint64_t FAppendedCount = 0;
  TRowRecord::TRow FRow;  // the current one; borrows FRows
  std::size_t FNext = 0;  // where the next row begins
};

}  // namespace velkrund
