#include "jobs/files/LineFeeds.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "jobs/files/StrayMarkers.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 256 * 1024;
constexpr std::string_view Markers[] = {"[SECTION]", "[DATA]", "[END]"};
constexpr std::size_t LongestMarker = Markers[0].size();

/// Hands the bytes of a part on, block by block, as long as Use wants more.
template <typename TUse>
void ForEachBlock(TStream& Stream, const TFileRange& Part, TUse Use) {
  std::string Block(std::min(BlockSize, static_cast<std::size_t>(Part.To - Part.From)), '\0');
  Stream.SetPosition(Part.From);
  for (std::int64_t At = Part.From; At < Part.To;) {
    const std::size_t Wanted = std::min(Block.size(), static_cast<std::size_t>(Part.To - At));
    const std::size_t Got = Stream.Read(Block.data(), Wanted);
    if (Got == 0 || !Use(std::string_view(Block.data(), Got))) return;
    At += static_cast<std::int64_t>(Got);
  }
}

/// Watches bytes go by for lines that are markers and that a line feed alone ends, or that stand behind one at the end
/// of the bytes. Keeps no line: one may be as long as the file.
class TLineFeedWatch {
 public:
  void Take(std::string_view Bytes) {
    for (const char Byte : Bytes) Take(Byte);
  }
  /// The end of the bytes ends the last line, in the way of the one before.
  void Finish() { EndLine(FBehindLineFeed); }
  bool Found() const { return FFound; }

 private:
  void Take(char Byte) {
    const bool EndsPair = Byte == '\n' && FBefore == '\r';
    FBefore = Byte;
    if (EndsPair) return;
    if (Byte == '\r' || Byte == '\n')
      EndLine(Byte == '\n');
    else if (Byte == ' ' && !FLine.empty())
      FBlanks = true;
    else if (FBlanks || FLine.size() == LongestMarker)
      FTooMuch = true;
    else
      FLine += Byte;
  }
  void EndLine(bool ByLineFeed) {
    const bool IsMarker = !FTooMuch && std::find(std::begin(Markers), std::end(Markers), FLine) != std::end(Markers);
    FFound = FFound || (IsMarker && ByLineFeed);
    FBehindLineFeed = ByLineFeed;
    FLine.clear();
    FBlanks = FTooMuch = false;
  }

  std::string FLine;
  char FBefore = 0;
  bool FBlanks = false;   // stand behind what is kept
  bool FTooMuch = false;  // for any marker
  bool FBehindLineFeed = false, FFound = false;
};

/// Takes bytes over, each line feed alone with a carriage return in front.
class TLineFeedMender {
 public:
  void Take(std::string_view Bytes, std::string& Out) {
    for (const char Byte : Bytes) {
      if (Byte == '\n' && FBefore != '\r') {
        Out += '\r';
        ++FCount;
      }
      Out += FBefore = Byte;
    }
  }
  std::int64_t Count() const { return FCount; }

 private:
  char FBefore = 0;
  std::int64_t FCount = 0;
};

bool HasLoneLineFeed(TStream& Stream, const TFileRange& Part) {
  TLineFeedMender Mender;
  std::string Out;
  ForEachBlock(Stream, Part, [&](std::string_view Block) {
    Out.clear();
    Mender.Take(Block, Out);
    return Mender.Count() == 0;
  });
  return Mender.Count() > 0;
}

/// The part of a section's body in which every line is one of the section's class.
TFileRange LinesOf(TEIFile& File, const TEISection& Section) {
  const TFileRange Body{Section.DataPosition, Section.DataPosition + Section.DataSize};
  if (Section.ObjectClass.Role() != TSectionRole::Structure) return Body;
  File.Stream().SetPosition(Body.From);
  TEIStream Lines(File.Stream(), Section.DataSize);
  Lines.SetEncoding(Section.Encoding());
  Lines.SetStrictText(false);
  while (!Lines.Peek().empty())
    if (Lines.Readln().starts_with(" [TREE]")) return {Body.From + Lines.Position(), Body.To};
  return Body;
}

}  // namespace

bool HasLineFeedMarkers(TStream& Stream, const TFileRange& Part) {
  TLineFeedWatch Watch;
  ForEachBlock(Stream, Part, [&](std::string_view Block) {
    Watch.Take(Block);
    return !Watch.Found();
  });
  Watch.Finish();
  return Watch.Found();
}

std::vector<TFileRange> LineFeedParts(TEIFile& File) {
  std::vector<TFileRange> Result = FindStrayMarkers(File).LineFeeds;
  for (int Index = 0; Index < File.Sections().Count(); ++Index)
    if (const TFileRange Lines = LinesOf(File, File.Sections()[Index]); HasLoneLineFeed(File.Stream(), Lines))
      Result.push_back(Lines);
  const TFileRange Unread{File.UnreadPosition(), File.Stream().Size()};
  if (Unread.From >= 0 && HasLineFeedMarkers(File.Stream(), Unread)) Result.push_back(Unread);
  std::sort(Result.begin(), Result.end(), [](const TFileRange& A, const TFileRange& B) { return A.From < B.From; });
  return Result;
}

std::int64_t MendLineFeeds(TFileSystem& Files, TEIFile& File, const std::vector<TFileRange>& Parts,
                           const std::function<bool()>& Canceled) {
  const std::unique_ptr<TFileInMaking> Made = Files.MakeInPlaceOf(File.FileName());
  std::int64_t Written = 0, Count = 0;
  std::string Out;
  const auto Copy = [&](const TFileRange& Part, bool Mends) {
    TLineFeedMender Mender;
    ForEachBlock(File.Stream(), Part, [&](std::string_view Block) {
      if (Canceled && Canceled()) throw EAbort("Cancelled while a file was repaired");
      Out.clear();
      if (Mends)
        Mender.Take(Block, Out);
      else
        Out = Block;
      Made->File().WriteAt(Written, Out);
      Written += static_cast<std::int64_t>(Out.size());
      return true;
    });
    Count += Mender.Count();
  };
  std::int64_t At = 0;
  for (const TFileRange& Part : Parts) {
    Copy({At, Part.From}, false);
    Copy(Part, true);
    At = Part.To;
  }
  Copy({At, File.Stream().Size()}, false);
  Made->Put();
  return Count;
}

}  // namespace velkrund
