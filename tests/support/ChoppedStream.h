#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund::tests {

/// Shows its content in blocks of a few bytes, and spoils each block when it shows the next one.
class TChoppedStream final : public TStream {
 public:
  TChoppedStream(std::string Data, std::size_t BlockSize) : FData(std::move(Data)), FBlockSize(BlockSize) {}

  std::size_t Read(char*, std::size_t) override { throw std::logic_error("bytes are peeked, not read"); }
  void Write(std::string_view) override { throw std::logic_error("read only"); }
  void SetSize(std::int64_t) override { throw std::logic_error("read only"); }
  std::int64_t Size() override { return static_cast<std::int64_t>(FData.size()); }
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override {
    FAt = static_cast<std::size_t>(SeekTarget(Offset, Origin, static_cast<std::int64_t>(FAt), Size()));
    return static_cast<std::int64_t>(FAt);
  }
  std::string_view Peek() override {
    if (FAt >= FStart && FAt < FStart + FBlock.size()) return std::string_view(FBlock).substr(FAt - FStart);
    std::fill(FBlock.begin(), FBlock.end(), '#');
    FSpoiled.push_back(std::move(FBlock));
    FStart = FAt;
    FBlock = FData.substr(FAt, FBlockSize);
    return FBlock;
  }

 private:
  std::string FData;
  std::size_t FBlockSize;
  std::size_t FAt = 0;
  std::size_t FStart = 0;
  std::string FBlock;
  std::vector<std::string> FSpoiled;
};

}  // namespace velkrund::tests
