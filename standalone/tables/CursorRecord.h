#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "velkrund/platform/ormtools/Records.h"

namespace velkrund {

/// The record of rows that a cursor walks through. A value costs one decoding, and only if it is asked for.
class TCursorRecord final : public TRecord {
 public:
  /// What: "table 'T'", for messages.
  TCursorRecord(std::string What, std::span<const TColumnInfo> Columns);
  ~TCursorRecord() override;

  int FieldCount() const override { return static_cast<int>(FFields.size()); }
  TField& Fields(int Index) override { return *FFields.at(static_cast<std::size_t>(Index)); }
  const std::vector<std::unique_ptr<TField>>& All() const { return FFields; }

  /// Of which fields cursors that come have the values, in their order; in the beginning all.
  void SetColumns(std::span<const int> Places);

  /// The cursor stands on another row. Decoded: as it says. Both borrowed until the next call; null: on no row, and
  /// reading a field is an EDatabaseError.
  void Move(TCursor* Cursor, const TKvVariant* Decoded = nullptr) {
    FCursor = Cursor;
    FDecoded = Decoded;
    ++FRow;
  }

 private:
  class TCursorField;

  const std::string FWhat;
  std::vector<std::unique_ptr<TField>> FFields;
  TCursor* FCursor = nullptr;
  const TKvVariant* FDecoded = nullptr;
  std::int64_t FRow = 0;  // counts rows over all walks; tells a field that its value is of an earlier one
};

}  // namespace velkrund
