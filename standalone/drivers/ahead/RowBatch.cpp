#include "standalone/drivers/ahead/RowBatch.h"

#include <algorithm>
#include <cstring>

namespace velkrund {
namespace {

constexpr std::size_t BlockSize = std::size_t{64} << 10U;

}  // namespace

TRowBatch::TRowBatch(std::size_t Columns)
    : FColumns(Columns),
      FMostRows(std::max<std::size_t>(MostValues / std::max<std::size_t>(Columns, 1), 1)),
      FValues(FMostRows * Columns) {}

/// Blocks of large values are given back.
void TRowBatch::Clear() {
  std::erase_if(FBlocks, [](const TBlock& Block) { return Block.Size > BlockSize; });
  FRows = FBlock = FUsed = FSize = 0;
}

std::string_view TRowBatch::Copy(std::string_view Bytes) {
  if (Bytes.empty()) return {};
  while (FBlock < FBlocks.size() && FBlocks[FBlock].Size - FUsed < Bytes.size()) ++FBlock, FUsed = 0;
  if (FBlock == FBlocks.size()) {
    const std::size_t Size = std::max(BlockSize, Bytes.size());
    FBlocks.push_back({std::make_unique_for_overwrite<char[]>(Size), Size});
  }
  char* const Kept = FBlocks[FBlock].Bytes.get() + FUsed;
  std::memcpy(Kept, Bytes.data(), Bytes.size());
  FUsed += Bytes.size();
  FSize += Bytes.size();
  return {Kept, Bytes.size()};
}

}  // namespace velkrund
