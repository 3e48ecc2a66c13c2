#include "jobs/files/WatchedFiles.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 256 * 1024;

constexpr std::uint64_t Added(std::uint64_t Sum, std::uint64_t Word) {
  return std::rotl((Sum ^ Word) * 0x9E3779B97F4A7C15, 29);
}

std::uint64_t WordAt(const char* Data, std::size_t Size = sizeof(std::uint64_t)) {
  std::uint64_t Word = 0;
  std::memcpy(&Word, Data, Size);
  return Word;
}

/// For noticing changes, at the speed of memory; nothing that has to stand against malice. A sum waits for the one
/// before it, which four of them that take turns do not.
std::uint64_t ChecksumOf(const char* Data, std::size_t Size) {
  constexpr std::size_t WordSize = sizeof(std::uint64_t);
  std::array<std::uint64_t, 4> Sums = {Size, 1, 2, 3};
  std::size_t At = 0;
  for (; Size - At >= Sums.size() * WordSize; At += Sums.size() * WordSize)
    for (std::size_t Turn = 0; Turn < Sums.size(); ++Turn)
      Sums[Turn] = Added(Sums[Turn], WordAt(Data + At + Turn * WordSize));
  for (; At < Size; At += WordSize) Sums[0] = Added(Sums[0], WordAt(Data + At, std::min(WordSize, Size - At)));
  return Added(Added(Sums[0], Sums[1]), Added(Sums[2], Sums[3]));
}

}  // namespace

/// The open file, and what was read of it.
class TWatchedFiles::TSource {
 public:
  TSource(std::unique_ptr<TFile> File, std::string Path)
      : FFile(std::move(File)), FPath(std::move(Path)), FKnown(StateNow()) {}

  const std::string& Path() const { return FPath; }
  std::int64_t Size() { return FFile->Size(); }

  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) {
    std::size_t Done = 0;
    while (Done < Count) {
      const std::int64_t At = Position + static_cast<std::int64_t>(Done);
      const auto Within = static_cast<std::size_t>(At % static_cast<std::int64_t>(BlockSize));
      Load(static_cast<std::size_t>(At / static_cast<std::int64_t>(BlockSize)), Within);
      if (Within >= FLoaded) break;
      const std::size_t Taken = std::min(Count - Done, FLoaded - Within);
      std::memcpy(Buffer + Done, FBlock.data() + Within, Taken);
      Done += Taken;
      if (FLoaded < BlockSize) break;
    }
    return Done;
  }

  void WatchUntil(std::int64_t Position) {
    RefuseChanged();
    FLimit = static_cast<std::size_t>(Position);
    const std::size_t Block = FLimit / BlockSize;
    if (Block >= FSums.size()) return;
    FSums.resize(Block + 1);
    FLoadedAt = NoBlock;
    const std::size_t Now = Read(Block);
    if (FSums[Block].Size > 0) Compare(Block, Now);
    Remember(Block, Now);
  }

  void RefuseChanged() {
    const TState Now = StateNow();
    if (Now == FKnown) return;
    FReadSince = 0;
    FLoadedAt = NoBlock;
    for (std::size_t Block = 0; Block < FSums.size(); ++Block)
      if (FSums[Block].Size > 0) Compare(Block, Read(Block));
    FKnown = Now;
  }

 private:
  struct TState {
    std::int64_t Size, Time;
    bool operator==(const TState&) const = default;
  };
  struct TSum {
    std::size_t Size = 0;  // of the block when it was read; 0: it was not
    std::uint64_t Sum = 0;
  };
  static constexpr std::size_t NoBlock = static_cast<std::size_t>(-1);

  TState StateNow() { return {FFile->Size(), FFile->ChangeTime()}; }

  std::size_t Read(std::size_t Block) {
    return FFile->ReadAt(static_cast<std::int64_t>(Block * BlockSize), FBlock.data(), BlockSize);
  }

  /// Makes the block the one at hand, unless it is and has more than Within bytes.
  void Load(std::size_t Block, std::size_t Within) {
    if (FLoadedAt == Block && Within < FLoaded) return;
    FLoadedAt = NoBlock;
    FLoaded = Read(Block);
    if (Block < FSums.size() && FSums[Block].Size > 0) Compare(Block, FLoaded);
    Remember(Block, FLoaded);
    FReadSince += FLoaded;
    NoticeChange();
    FLoadedAt = Block;
  }

  /// Size: bytes of the block at hand.
  void Remember(std::size_t Block, std::size_t Size) {
    const std::size_t Watched = std::min(Size, FLimit - std::min(FLimit, Block * BlockSize));
    if (Watched == 0 && Block >= FSums.size()) return;
    if (FSums.size() <= Block) FSums.resize(Block + 1);
    // The same bytes have just been compared.
    if (FSums[Block].Size == Watched) return;
    FSums[Block] = {Watched, ChecksumOf(FBlock.data(), Watched)};
  }

  /// Behind the reading of a block, so that what was read so far stood in the file at one moment.
  void NoticeChange() {
    const TState Now = StateNow();
    if (Now == FKnown || (Now.Size > FKnown.Size && FReadSince < FSums.size() * BlockSize)) return;
    const std::size_t Loaded = FLoadedAt;
    std::vector<char> Kept(FBlock);
    RefuseChanged();
    FBlock.swap(Kept);
    FLoadedAt = Loaded;
  }

  /// Size: bytes of the block now; more than before were added behind.
  void Compare(std::size_t Block, std::size_t Size) const {
    const TSum& Before = FSums[Block];
    if (Size >= Before.Size && ChecksumOf(FBlock.data(), Before.Size) == Before.Sum) return;
    throw EReadError(Format("File '%s' was written to while it was read", FPath),
                     {.Code = TErrorCode::FileInUse, .File = FPath});
  }

  const std::unique_ptr<TFile> FFile;
  const std::string FPath;
  TState FKnown;  // with which all that was read has been compared
  std::vector<TSum> FSums;
  std::size_t FLimit = static_cast<std::size_t>(-1);  // what stands behind is not watched
  std::size_t FReadSince = 0;                         // bytes, since they were compared
  std::vector<char> FBlock = std::vector<char>(BlockSize);
  std::size_t FLoadedAt = NoBlock, FLoaded = 0;  // the block at hand, and its bytes
};

class TWatchedFiles::TView final : public TFile {
 public:
  explicit TView(std::shared_ptr<TSource> Source) : FSource(std::move(Source)) {}

  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override {
    return FSource->ReadAt(Position, Buffer, Count);
  }
  void WriteAt(std::int64_t, std::string_view) override { RefuseWriting(); }
  std::int64_t Size() override { return FSource->Size(); }
  void SetSize(std::int64_t) override { RefuseWriting(); }
  void Sync() override {}

 private:
  [[noreturn]] void RefuseWriting() const {
    throw EWriteError(Format("File '%s' is open for reading only", FSource->Path()), {.File = FSource->Path()});
  }

  const std::shared_ptr<TSource> FSource;
};

TWatchedFiles::TWatchedFiles(TFileSystem& Files) : FFiles(Files) {}

TWatchedFiles::~TWatchedFiles() = default;

void TWatchedFiles::WatchUntil(std::int64_t Position) {
  if (FSource) FSource->WatchUntil(Position);
}

void TWatchedFiles::RefuseChanged() {
  if (FSource) FSource->RefuseChanged();
}

std::unique_ptr<TFile> TWatchedFiles::Open(const std::string& Path, TFileMode Mode) {
  if (Mode != TFileMode::Read) return FFiles.Open(Path, Mode);
  if (!FSource || FSource->Path() != Path) FSource = std::make_shared<TSource>(FFiles.Open(Path, Mode), Path);
  return std::make_unique<TView>(FSource);
}

}  // namespace velkrund
