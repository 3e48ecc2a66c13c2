// How TEISource finds its sections: the reading side of the layout that EISource.h draws.

#include "velkrund/eif/EISource.h"
#include "velkrund/eif/TypeList.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view InvalidStructure = "Invalid Export/Import source structure. ";

}  // namespace

void TEISource::StructureError(std::string_view What, std::string_view Detail) {
  std::string Message(InvalidStructure);
  Message += What;
  Message += Format(" (%sPosition:%d).", Detail, Stream().Position());
  throw EEIError(Message);
}

// Marker lines are ASCII in every encoding, so they are looked for without decoding what lies between them.
bool TEISource::FindSectionStart() {
  TStream& Source = Stream();
  while (!Source.Peek().empty()) {
    const std::int64_t LineStart = Source.Position();
    if (RightTrim(ReadRaw()) != "[SECTION]") continue;
    FUnreadPosition = LineStart;
    return true;
  }
  return false;
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
    if (!SkipBody(Section)) StructureError("Section end not found");
    FUnreadPosition = -1;
  } catch (...) {
    FSections.DeleteSection(FSections.Count() - 1);
    throw;
  }
}

void TEISource::ReadHeader(TEISection& Section, std::string& TypeName) {
  while (!Stream().Peek().empty()) {
    const std::string_view Line = ReadlnString(Section.FEncoding);
    if (RightTrim(Line) == "[DATA]") return;
    const std::string_view Text = Trim(Line);
    if (!Text.empty() && Text.front() != ';') ReadHeaderLine(Section, TypeName, Text);
  }
  StructureError("Data begin not found");
}

void TEISource::ReadHeaderLine(TEISection& Section, std::string& TypeName, std::string_view Line) {
  const std::size_t Equals = Line.find('=');
  const std::string_view Name = Trim(Line.substr(0, Equals));
  const std::string_view Value = Equals == std::string_view::npos ? std::string_view() : Trim(Line.substr(Equals + 1));
  if (Name == "Name") {
    Section.FName = Value;
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

bool TEISource::SkipBody(TEISection& Section) {
  TStream& Source = Stream();
  std::int64_t LineStart = Section.DataPosition;
  while (!Source.Peek().empty()) {
    Section.DataSize = LineStart - Section.DataPosition;
    const std::string_view Line = ReadRaw();
    if (Line.starts_with("[END]") && RightTrim(Line) == "[END]") return true;
    LineStart = Source.Position();
  }
  return false;
}

}  // namespace velkrund
