#include "jobs/files/StrayMarkers.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

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

/// Why no reader sees the section that the line belongs to, and what to do; empty: it belongs to none.
std::string ReasonToHide(std::string_view Line) {
  const bool IsOne = Line.find('\n') == std::string_view::npos;
  for (std::string_view Rest = Line; !Rest.empty();) {
    const std::size_t End = std::min(Rest.find('\n'), Rest.size());
    if (Trim(Rest.substr(0, End)) == "[SECTION]")
      return IsOne ? "\"[SECTION]\" has to be alone on its line"
                   : "Its lines end with a line feed alone: convert them to carriage return and line feed";
    Rest.remove_prefix(std::min(End + 1, Rest.size()));
  }
  const std::string_view Marker = TEISource::RightTrim(Line);
  return Marker == "[DATA]" || Marker == "[END]" ? "Its \"[SECTION]\" line is damaged or missing: write it anew" : "";
}

std::string Excerpt(std::string_view Text) {
  std::string Result = Printable(Text);
  Result.resize(Utf16Prefix(Result, ExcerptLength));
  return Result;
}

/// Looks at the lines from the stream's position to the next section, or to the end.
void LookAtGap(TStream& Stream, TStrayMarkers& Found) {
  std::string First, Reason;
  while (Reason.empty() && !Stream.Peek().empty()) {
    const std::int64_t Position = Stream.Position();
    const std::string Line = ReadLineHead(Stream);
    if (TEISource::RightTrim(Line) == "[SECTION]") break;
    std::string_view Text = Trim(Line);
    const bool HasMark = Text.starts_with(ByteOrderMark);
    if (HasMark) Text = Trim(Text.substr(ByteOrderMark.size()));
    Reason = ReasonToHide(HasMark ? Text : Line);
    if (First.empty() && (Text.starts_with('[') || !Reason.empty()))
      First = Format("(Position:%d): %s%s", Position, HasMark ? "a byte-order mark, " : "",
                     Excerpt(Text.substr(0, Text.find('\n'))));
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
  const TEISectionList& Sections = File.Sections();
  TStream& Stream = File.Stream();
  Stream.SetPosition(0);
  LookAtGap(Stream, Found);
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    Stream.SetPosition(Sections[Index].DataPosition + Sections[Index].DataSize);
    ReadLineHead(Stream);  // the "[END]"
    LookAtGap(Stream, Found);
  }
  return Found;
}

}  // namespace velkrund
