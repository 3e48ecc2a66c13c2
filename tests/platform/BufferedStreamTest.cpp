#include "velkrund/platform/ormtools/BufferedStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/MemoryFiles.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {
namespace {

std::string Noise(std::mt19937& Random, std::size_t Size) {
  std::string Data(Size, '\0');
  for (char& Byte : Data) Byte = static_cast<char>(Random());
  return Data;
}

/// A stream beside the simplest thing that behaves like one.
class TStreamPair {
 public:
  TStreamPair(TStream& Stream, unsigned Seed) : FStream(Stream), FRandom(Seed) {}

  /// One random operation on both; compares what they return.
  void Step() {
    switch (FRandom() % 12) {
      case 0:
      case 1:
      case 2:
      case 3: {
        const std::string Data = Noise(FRandom, Length());
        FStream.Write(Data);
        if (FData.size() < FAt + Data.size()) FData.resize(FAt + Data.size());
        FData.replace(FAt, Data.size(), Data);
        FAt += Data.size();
        break;
      }
      case 4:
      case 5:
      case 6: {
        std::string Buffer(Length(), '\0');
        Buffer.resize(FStream.Read(Buffer.data(), Buffer.size()));
        ASSERT_TRUE(Buffer == FData.substr(FAt, FLength));
        FAt += Buffer.size();
        break;
      }
      case 7: {
        const std::string_view Shown = FStream.Peek();
        ASSERT_EQ(Shown.empty(), FAt == FData.size());
        ASSERT_TRUE(std::string_view(FData).substr(FAt).starts_with(Shown));
        const std::size_t Used = Shown.empty() ? 0 : FRandom() % (Shown.size() + 1);
        FAt += Used;
        ASSERT_EQ(FStream.Seek(static_cast<std::int64_t>(Used), TSeekOrigin::Current), Signed(FAt));
        break;
      }
      case 8:
      case 9:
        Seek();
        break;
      case 10: {
        const std::size_t Size = FRandom() % 2 ? FRandom() % (FData.size() + 1) : FData.size() + Length() / 8;
        FStream.SetSize(Signed(Size));
        FData.resize(Size);
        FAt = std::min(FAt, Size);
        break;
      }
      default:
        FStream.Flush();
    }
    ASSERT_EQ(FStream.Size(), Signed(FData.size()));
    ASSERT_EQ(FStream.Position(), Signed(FAt));
  }

  /// What a writer does after an error: go back to where it was.
  void CutHere() {
    FStream.SetSize(Signed(FAt));
    FData.resize(FAt);
    ASSERT_EQ(FStream.Position(), Signed(FAt));
  }

  const std::string& Data() const { return FData; }

 private:
  static std::int64_t Signed(std::size_t Value) { return static_cast<std::int64_t>(Value); }

  std::size_t Length() {
    constexpr std::size_t Lengths[] = {0, 1, 2, 13, 100, 1000, 1024, 5000, 100'000, 262'143, 262'144, 262'145, 600'000};
    const std::size_t Choices = FRandom() % 8 == 0 ? std::size(Lengths) : 8;
    return FLength = Lengths[FRandom() % Choices];
  }

  void Seek() {
    const auto Origin = static_cast<TSeekOrigin>(FRandom() % 3);
    const std::int64_t Distance = FRandom() % 3 == 0 ? Signed(FRandom() % (FData.size() + 20)) : Signed(FRandom() % 64);
    const std::int64_t Offset = FRandom() % 2 ? Distance : -Distance;
    const std::int64_t Base =
        Origin == TSeekOrigin::Beginning ? 0 : Signed(Origin == TSeekOrigin::End ? FData.size() : FAt);
    const std::int64_t Target = std::clamp<std::int64_t>(Base + Offset, 0, Signed(FData.size()));
    ASSERT_EQ(FStream.Seek(Offset, Origin), Target);
    FAt = static_cast<std::size_t>(Target);
  }

  TStream& FStream;
  std::mt19937 FRandom;
  std::string FData;
  std::size_t FAt = 0;
  std::size_t FLength = 0;
};

class TOpenStream {
 public:
  explicit TOpenStream(TMemoryFiles& Files, TFileMode Mode = TFileMode::Create, std::size_t BufferSize = 1024)
      : Stream(Files, BufferSize) {
    Stream.SetFileName("file");
    Stream.Open(Mode);
  }
  TBufferedStream Stream;
};

TEST(MemoryStream, BehavesLikeTheModel) {
  TMemoryStream Stream;
  TStreamPair Pair(Stream, 1);
  for (int Index = 0; Index < 3000; ++Index) ASSERT_NO_FATAL_FAILURE(Pair.Step());
  EXPECT_TRUE(Stream.Memory() == Pair.Data());
}

TEST(BufferedStream, BehavesLikeTheModel) {
  for (const std::size_t BufferSize : {1u, 16u, 1024u, 262'144u}) {
    TMemoryFiles Files;
    TOpenStream Open(Files, TFileMode::Create, BufferSize);
    TStreamPair Pair(Open.Stream, static_cast<unsigned>(BufferSize));
    for (int Index = 0; Index < 2000; ++Index) ASSERT_NO_FATAL_FAILURE(Pair.Step()) << BufferSize;
    Open.Stream.Sync();
    EXPECT_TRUE(Files.GetSynced("file") == Pair.Data());
  }
}

TEST(BufferedStream, LosesNothingWhenWritesAndReadsFail) {
  TMemoryFiles Files;
  TOpenStream Open(Files);
  TStreamPair Pair(Open.Stream, 5);
  int Failures = 0;
  for (int Index = 0; Index < 6000; ++Index) {
    if (Index % 7 == 0) Files.Faults.FailWrite = Files.Faults.FailRead = 3;
    try {
      ASSERT_NO_FATAL_FAILURE(Pair.Step()) << Index;
    } catch (const EStreamError&) {
      // A failed read may have moved the position, and what went straight to the file may be there in part.
      ++Failures;
      ASSERT_NO_FATAL_FAILURE(Pair.CutHere());
    }
  }
  EXPECT_GT(Failures, 50);
  Files.Faults = {};
  Open.Stream.Flush();
  EXPECT_TRUE(Files.Get("file") == Pair.Data());
}

TEST(BufferedStream, ReadsLittleWhenHoppingAndMuchWhenScanning) {
  TMemoryFiles Files;
  Files.Put("file", std::string(10'000'000, 'x'));
  TOpenStream Open(Files, TFileMode::Read);
  for (int Hop = 0; Hop < 100; ++Hop) {
    Open.Stream.SetPosition(Hop * 100'000);
    ASSERT_FALSE(Open.Stream.Peek().empty());
    Open.Stream.Seek(40, TSeekOrigin::Current);
  }
  EXPECT_EQ(Files.Counts.Reads, 100);
  EXPECT_EQ(Files.Counts.LargestRead, 1024);

  Open.Stream.SetPosition(0);
  Files.Counts = {};
  std::int64_t Seen = 0;
  for (std::string_view Block; !(Block = Open.Stream.Peek()).empty(); Seen += static_cast<std::int64_t>(Block.size()))
    Open.Stream.Seek(static_cast<std::int64_t>(Block.size()), TSeekOrigin::Current);
  EXPECT_EQ(Seen, 10'000'000);
  EXPECT_LT(Files.Counts.Reads, 60);
  EXPECT_EQ(Files.Counts.LargestRead, 262'144);
}

TEST(BufferedStream, FollowsAFileThatAnotherCutsWhileItIsRead) {
  TMemoryFiles Files;
  Files.Put("file", std::string(3000, 'a'));
  TOpenStream Reader(Files, TFileMode::Read);
  ASSERT_EQ(Reader.Stream.Peek().size(), 1024u);
  Files.Put("file", std::string(2000, 'a'));
  std::string Buffer(5000, '\0');
  EXPECT_EQ(Reader.Stream.Read(Buffer.data(), Buffer.size()), 2000u);
  EXPECT_EQ(Reader.Stream.Size(), 2000);
  EXPECT_TRUE(Reader.Stream.Peek().empty());
}

TEST(BufferedStream, ClosingDropsWhatWasNotFlushedAndRefusesTheRest) {
  TMemoryFiles Files;
  TOpenStream Open(Files);
  Open.Stream.Write("dropped");
  Open.Stream.Close();
  EXPECT_EQ(Files.Get("file"), "");
  EXPECT_THROW(Open.Stream.Peek(), EStreamError);
  EXPECT_THROW(Open.Stream.Write(""), EStreamError);
  EXPECT_THROW(Open.Stream.SetSize(1), EStreamError);
  Open.Stream.Open(TFileMode::ReadWrite);
  EXPECT_EQ(Open.Stream.Size(), 0);
  EXPECT_THROW(Open.Stream.SetSize(-1), EWriteError);
}

}  // namespace
}  // namespace velkrund::tests
