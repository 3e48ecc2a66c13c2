#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Rows on their way from one thread to another, with their bytes; filled again and again without allocating.
class TRowBatch {
 public:
  // Few enough that a batch is still in the processor's cache when it is used, enough that handing it over costs
  // nothing.
  static constexpr std::size_t MostValues = 4'096;
  static constexpr std::size_t MostBytes = std::size_t{256} << 10U;
  /// Of each of the two ways: small tables are not worth a thread.
  static constexpr std::size_t RowsWithoutThread = 32;

  explicit TRowBatch(std::size_t Columns);

  void Clear();
  bool IsFull() const { return FRows == FMostRows || FSize >= MostBytes; }
  std::size_t Rows() const { return FRows; }
  const TKvVariant* Row(std::size_t Index) const { return FValues.data() + Index * FColumns; }

  /// The place of a row that AddRow adds, for its values.
  TKvVariant* NewRow() { return FValues.data() + FRows * FColumns; }
  void AddRow() { ++FRows; }
  /// Gives a value that has borrowed its bytes a copy of them, which the batch keeps.
  void Keep(TKvVariant& Value) {
    if (HasBytes(Value.Kind())) Value.BorrowText(Copy(Value.AsText()), Value.Kind());
  }

 private:
  struct TBlock {
    std::unique_ptr<char[]> Bytes;
    std::size_t Size;
  };

  std::string_view Copy(std::string_view Bytes);

  const std::size_t FColumns, FMostRows;
  std::vector<TKvVariant> FValues;  // row by row
  std::size_t FRows = 0;
  std::vector<TBlock> FBlocks;  // that the values borrow from
  std::size_t FBlock = 0;       // that is filled
  std::size_t FUsed = 0;        // of it
  std::size_t FSize = 0;
};

}  // namespace velkrund
