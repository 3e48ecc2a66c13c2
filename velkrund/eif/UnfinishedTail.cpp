#include "velkrund/eif/UnfinishedTail.h"

#include <algorithm>
#include <string>

namespace velkrund {

namespace {

constexpr std::string_view EndMarker = "[END]";
constexpr std::string_view HeaderStarts[] = {"Encoding = ", "Name = "};
constexpr std::size_t HeadBytes = 16;  // tell every line that is asked for from longer ones

/// Walks over lines, and keeps the first bytes of each: one may be as long as the file.
class TLineHeads {
 public:
  explicit TLineHeads(TStream& Stream) : FStream(Stream) {}

  bool Next() {
    FStart = FStream.Position();
    FHead.clear();
    FHasEnd = false;
    for (std::string_view Block = FStream.Peek(); !FHasEnd && !Block.empty(); Block = FStream.Peek()) {
      const std::size_t End = std::min(Block.find('\r'), Block.size());
      FHasEnd = End < Block.size();
      FHead += Block.substr(0, std::min(End, HeadBytes - FHead.size()));
      Pass(End + (FHasEnd ? 1 : 0));
    }
    if (FHasEnd && FStream.Peek().starts_with('\n')) Pass(1);
    return FHasEnd || !FHead.empty();
  }
  std::int64_t Start() const { return FStart; }
  bool Is(std::string_view Line) const { return FHead == Line; }
  bool StartsWith(std::string_view Text) const { return FHead.starts_with(Text); }
  /// Whether the line is the last one and ends within Text.
  bool IsPieceOf(std::string_view Text) const { return !FHasEnd && Text.starts_with(FHead); }

 private:
  void Pass(std::size_t Count) { FStream.Seek(static_cast<std::int64_t>(Count), TSeekOrigin::Current); }

  TStream& FStream;
  std::int64_t FStart = 0;
  std::string FHead;
  bool FHasEnd = false;
};

bool BeginsHeader(const TLineHeads& Line) {
  return std::any_of(std::begin(HeaderStarts), std::end(HeaderStarts),
                     [&](std::string_view Start) { return Line.StartsWith(Start) || Line.IsPieceOf(Start); });
}

}  // namespace

std::int64_t FindUnfinishedTail(TStream& Stream, std::int64_t From) {
  enum class TPlace { Outside, BehindMarker, Within, BehindEnd };
  TPlace Place = TPlace::Outside;
  std::int64_t Start = -1;
  Stream.SetPosition(From);
  for (TLineHeads Line(Stream); Line.Next();) {
    if (Line.Is(UnfinishedMarker) || (Place == TPlace::Outside && Line.IsPieceOf(UnfinishedMarker) && !Line.Is(";"))) {
      // A ";" alone may be anybody's remark.
      if (Place != TPlace::BehindEnd) Start = Line.Start();
      Place = TPlace::BehindMarker;
    } else if ((Place == TPlace::BehindMarker && !BeginsHeader(Line)) ||
               (Place == TPlace::BehindEnd && !Line.IsPieceOf(UnfinishedMarker))) {
      Place = TPlace::Outside;
    } else if (Place != TPlace::Outside) {
      Place = Line.Is(EndMarker) ? TPlace::BehindEnd : TPlace::Within;
    }
  }
  return Place == TPlace::Outside ? -1 : Start;
}

}  // namespace velkrund
