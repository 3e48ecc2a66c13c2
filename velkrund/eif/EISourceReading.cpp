// How TEISource finds its sections: the reading side of the layout that EISource.h draws.

#include "velkrund/eif/BodySkipper.h"
#include "velkrund/eif/EISource.h"
#include "velkrund/eif/TypeList.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view InvalidStructure = "Invalid Export/Import source structure. ";

// What the parameters of a header may take in memory. Where the "[DATA]" line is damaged, the lines of the body are
// parameters too, however many there are; no header that anybody writes comes near.
constexpr std::size_t MaxHeaderSize = 16 * 1024 * 1024;
constexpr std::size_t ParameterCost = 32;  // besides its text: in the list and among the names

}  // namespace

void TEISource::StructureError(std::string_view What, std::string_view Detail) {
  std::string Message(InvalidStructure);
  Message += What;
  Message += Format(" (%sPosition:%d).", Detail, Stream().Position());
  throw EEIError(Message);
}

// Marker lines are ASCII in every encoding, so they are looked for without decoding what lies between them.
bool TEISource::FindMarkerLine(std::string_view Marker, std::int64_t& LineStart) {
  TBodySkipper Skipper(Stream());
  const std::int64_t LinesBefore = FReadLnCnt;
  bool Found = false;
  const auto CountLines = [&] { FReadLnCnt = LinesBefore + Skipper.Lines(); };
  try {
    while (!Found && Skipper.NextBracketLine()) {
      LineStart = Stream().Position();
      Found = Skipper.PassLine(Marker);
    }
  } catch (...) {
    CountLines();
    throw;
  }
  CountLines();
  return Found;
}

void TEISource::ReadSection() {
  TEISection& Section = FSections.AddSection();
  try {
    Section.Position = Stream().Position();
    Section.FVersion = -1;
    std::string TypeName;
    ReadHeader(Section, TypeName);
    CheckHeader(Section, TypeName);
    Section.DataPosition = Stream().Position();
    Section.DataLinePosition = FReadLnCnt;
    std::int64_t EndLineStart = 0;
    if (!FindMarkerLine("[END]", EndLineStart)) StructureError("Section end not found");
    Section.DataSize = EndLineStart - Section.DataPosition;
  } catch (...) {
    FSections.DeleteSection(FSections.Count() - 1);
    throw;
  }
}

void TEISource::ReadHeader(TEISection& Section, std::string& TypeName) {
  std::size_t Size = 0;
  while (Size <= MaxHeaderSize && !Stream().Peek().empty()) {
    const std::string_view Line = ReadHeaderLine(Section.FEncoding);
    if (RightTrim(Line) == "[DATA]") return Section.FParameters.Pack();
    const std::string_view Text = Trim(Line);
    if (Text.empty() || Text.front() == ';') continue;
    TakeHeaderLine(Section, TypeName, Text);
    Size += Text.size() + ParameterCost;
  }
  StructureError("Data begin not found");
}

std::string_view TEISource::ReadHeaderLine(TKvEncoding Encoding) {
  const std::string_view Raw = ReadRawLine(Stream(), FSpill, MaxHeaderLine);
  ++FReadLnCnt;
  if (Raw.size() > MaxHeaderLine) StructureError(Format("A header line is longer than %d bytes", MaxHeaderLine));
  return Decoded(Raw, Encoding);
}

void TEISource::TakeHeaderLine(TEISection& Section, std::string& TypeName, std::string_view Line) {
  const std::size_t Equals = Line.find('=');
  const std::string_view Name = Trim(Line.substr(0, Equals));
  const std::string_view Value = Equals == std::string_view::npos ? std::string_view() : Trim(Line.substr(Equals + 1));
  if (Name == "Name") {
    Section.FName = FUnreadName = Value;
  } else if (Name == "Type") {
    TypeName = Value;
  } else if (Name == "Version") {
    const auto Version = StrToInt32(Value);
    if (!Version) StructureError("Version is not numeric value");
    Section.FVersion = *Version;
  } else if (Name == "Encoding") {
    if (Value != "UTF8" && Value != "ANSI") StructureError(Format("Unknown encoding: %s.", Value));
    Section.FEncoding = Value == "UTF8" ? TKvEncoding::Utf8 : TKvEncoding::Ansi;
  } else {
    Section.FParameters.AddParam(Name, Value);
  }
}

void TEISource::CheckHeader(TEISection& Section, const std::string& TypeName) {
  if (Section.FName.empty()) StructureError("Section name not found");
  if (Section.FVersion == -1) StructureError("Version number not found or incorrect");
  if (TypeName.empty()) StructureError("Section type not found");
  Section.ObjectClass = EITypeList().Find(TypeName, Section.FVersion);
  if (!Section.ObjectClass) StructureError("Section type is not registered", Format("Type:'%s';", TypeName));
}

}  // namespace velkrund
