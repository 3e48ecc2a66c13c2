#include "jobs/files/StrayMarkers.h"

#include <algorithm>

#include "velkrund/eif/UnfinishedTail.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

constexpr std::size_t ExcerptLength = 40;  // in UTF-16 units
// A file whose lines end with a line feed alone is one line, however long.
constexpr std::size_t HeadBytes = 4096;

/// The beginning of the next line; the position moves behind the whole of it.
std::string ReadLineHead(TStream& Stream) {
  const auto Skip = [&Stream](std::size_t Count) {
    Stream.Seek(static_cast<std::int64_t>(Count), TSeekOrigin::Current);
  };
  std::string Head;
  for (std::string_view Block = Stream.Peek(); !Block.empty(); Block = Stream.Peek()) {
    const std::size_t End = std::min(Block.find('\r'), Block.size());
    const bool IsWhole = End < Block.size();
    Head += Block.substr(0, std::min(End, HeadBytes - Head.size()));
    Skip(End + (IsWhole ? 1 : 0));
    if (!IsWhole) continue;
    if (Stream.Peek().starts_with('\n')) Skip(1);
    break;
  }
  return Head;
}

constexpr const char* EndWithLineFeeds = "Its lines end with a line feed alone";

bool HasSectionMarker(std::string_view Line) {
  for (std::string_view Rest = Line; !Rest.empty();) {
    const std::size_t End = std::min(Rest.find('\n'), Rest.size());
    if (Trim(Rest.substr(0, End)) == "[SECTION]") return true;
    Rest.remove_prefix(std::min(End + 1, Rest.size()));
  }
  return false;
}

constexpr const char* MissingMarker = "Its \"[SECTION]\" line is damaged or missing: write it anew";
/// To be told instead where the line of an unfinished section comes before: finishing it would make up what it lacks.
constexpr const char* NeverFinished =
    "It is a section that was never finished, with something behind it. Remove its lines, from \";SECTION]\" to the "
    "next "
    "\"[SECTION]\"";

/// Why no reader sees the section that the line belongs to, and what to do; empty: it belongs to none.
std::string ReasonToHide(std::string_view Line) {
  if (HasSectionMarker(Line))
    return Line.find('\n') == std::string_view::npos ? "\"[SECTION]\" has to be alone on its line" : EndWithLineFeeds;
  const std::string_view Marker = TEISource::RightTrim(Line);
  return Marker == "[DATA]" || Marker == "[END]" ? MissingMarker : "";
}

std::string Excerpt(std::string_view Text) {
  std::string Result = Printable(Text);
  Result.resize(Utf16Prefix(Result, ExcerptLength));
  return Result;
}

/// Looks at what lies between two sections, before the first or behind the last. Gap: with the line "[SECTION]" of the
/// next one.
void LookAtGap(TStream& Stream, const TFileRange& Gap, TStrayMarkers& Found) {
  std::string First, Reason;
  bool IsUnfinished = false;
  Stream.SetPosition(Gap.From);
  while (Reason.empty() && Stream.Position() < Gap.To) {
    const std::int64_t Position = Stream.Position();
    const std::string Line = ReadLineHead(Stream);
    if (TEISource::RightTrim(Line) == "[SECTION]") break;
    std::string_view Text = Trim(Line);
    const bool HasMark = Text.starts_with(ByteOrderMark);
    if (HasMark) Text = Trim(Text.substr(ByteOrderMark.size()));
    IsUnfinished = IsUnfinished || TEISource::RightTrim(Line) == UnfinishedMarker;
    Reason = ReasonToHide(HasMark ? Text : Line);
    if (IsUnfinished && Reason == MissingMarker) Reason = NeverFinished;
    if (First.empty() && (Text.starts_with('[') || !Reason.empty()))
      First = Format("(Position:%d): %s%s", Position, HasMark ? "a byte-order mark, " : "",
                     Excerpt(Text.substr(0, Text.find('\n'))));
  }
  // Far behind the beginning of a line, perhaps.
  if (Gap.From < Gap.To && HasLineFeedMarkers(Stream, Gap)) {
    Found.LineFeeds.push_back(Gap);
    Reason = EndWithLineFeeds;
    if (First.empty()) First = Format("(behind Position:%d)", Gap.From);
  }
  if (!Reason.empty())
    Found.Hidden.push_back(Format("what looks like a section is passed over %s. %s", First, Reason));
  else if (!First.empty())
    Found.Doubtful.push_back(
        Format("a line outside of every section begins as a marker does %s. If a section begins there, it is passed "
               "over",
               First));
}

}  // namespace

TStrayMarkers FindStrayMarkers(TEIFile& File) {
  TStrayMarkers Found;
  TStream& Stream = File.Stream();
  std::int64_t From = 0;
  for (int Index = 0; Index < File.Sections().Count(); ++Index) {
    const TEISection& Section = File.Sections()[Index];
    LookAtGap(Stream, {From, Section.Position}, Found);
    Stream.SetPosition(Section.DataPosition + Section.DataSize);
    ReadLineHead(Stream);  // the "[END]"
    From = Stream.Position();
  }
  // What is unfinished is known as that.
  const std::int64_t Behind = File.UnreadPosition() >= 0 ? File.UnreadPosition() : File.UnfinishedPosition();
  LookAtGap(Stream, {From, Behind >= 0 ? Behind : Stream.Size()}, Found);
  return Found;
}

void RefuseHiddenSections(TEIFile& File, const std::string& Name) {
  const TStrayMarkers Found = FindStrayMarkers(File);
  if (Found.Hidden.empty()) return;
  throw EEIError(
      Format(File.Sections().Count() > 0 ? "In '%s' %s" : "'%s' holds no section: %s", Name, Joined(Found.Hidden)),
      {.Code = Found.LineFeeds.empty() ? TErrorCode::FileStructure : TErrorCode::LineFeeds, .File = Name});
}

}  // namespace velkrund
