#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/Records.h"

namespace velkrund {

/// The record of a table whose rows are values in memory: its fields read the row that it is told to stand on.
class TRowRecord final : public TRecord {
 public:
  /// One value per field.
  using TRow = std::vector<TKvVariant>;

  /// TableName: for messages.
  TRowRecord(std::string TableName, std::span<const std::pair<std::string, TKvKind>> Fields);
  ~TRowRecord() override;

  int FieldCount() const override { return static_cast<int>(FFields.size()); }
  TField& Fields(int Index) override;

  /// Borrowed, until the next call. Null: on no row, and reading a field is an EDatabaseError.
  void StandOn(const TRow* Row) { FRow = Row; }

 private:
  class TRowField;

  std::string FTableName;
  std::vector<std::unique_ptr<TRowField>> FFields;
  const TRow* FRow = nullptr;
};

}  // namespace velkrund
