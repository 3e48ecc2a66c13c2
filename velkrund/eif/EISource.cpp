#include "velkrund/eif/EISource.h"

#include <algorithm>

#include "velkrund/eif/EIStream.h"
#include "velkrund/eif/TextChecks.h"
#include "velkrund/eif/TypeList.h"
#include "velkrund/eif/UnfinishedTail.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// A header is read back trimmed and line by line: what would not come back as it was must not be written.
void CheckHeaderValue(std::string_view Name, std::string_view Value) {
  if (Trim(Value) != Value || Value.find('\r') != std::string_view::npos)
    throw EEIError(
        Format("A section header cannot hold the %s '%s': it has blanks or control characters at an end, or a "
               "line end inside",
               Name, Value));
}

// Editors like to drop the end of the last line, or to write a line feed alone, which ends no line: what is appended
// would become a part of that line.
bool EndsWithLineEnd(TStream& Stream, std::int64_t Size) {
  char Last[2] = {'\r', '\r'};
  const auto Count = static_cast<std::size_t>(std::min<std::int64_t>(Size, sizeof Last));
  Stream.SetPosition(Size - static_cast<std::int64_t>(Count));
  Stream.Read(Last + sizeof Last - Count, Count);
  Stream.SetPosition(Size);
  return Last[1] == '\r' || (Last[0] == '\r' && Last[1] == '\n');
}

}  // namespace

TEISource::TEISource() : FStrictText(WorkSettings().StrictText), FCodec(*WorkSettings().AnsiCodePage) {}

TEISource::~TEISource() = default;

std::string_view TEISource::RightTrim(std::string_view Text) { return TrimRightBlanks(Text); }

std::string_view TEISource::ReadlnString(TKvEncoding Encoding) {
  const std::string_view Raw = ReadRawLine(Stream(), FSpill);
  if (FReadLnCnt >= 0) ++FReadLnCnt;
  return Decoded(Raw, Encoding);
}

std::string_view TEISource::Decoded(std::string_view Raw, TKvEncoding Encoding) {
  const std::int64_t Before = FLosses.Malformed;
  const std::string_view Line = FCodec.Decode(Raw, Encoding, FLosses);
  if (FStrictText && FLosses.Malformed != Before) RefuseTextRead(Stream().Position());
  return Line;
}

void TEISource::WritelnString(std::string_view Text, TKvEncoding Encoding) {
  const TTextLosses Before = FLosses;
  const std::string_view Bytes = FCodec.Encode(Text, Encoding, FLosses);
  if (FStrictText && FLosses != Before) RefuseTextWritten(Text, Stream().Position());
  if (!Bytes.empty()) Stream().Write(Bytes);
  Stream().Write(LineEnd);
}

void TEISource::Open() {
  try {
    InternalOpen();
    FReadLnCnt = 0;
    std::int64_t Behind = 0;  // the last section
    for (std::int64_t Start = 0; FindMarkerLine("[SECTION]", Start); Behind = Stream().Position()) {
      FUnreadPosition = Start;
      ReadSection();
      FUnreadPosition = -1;
      FUnreadName.clear();
    }
    FUnfinishedPosition = FindUnfinishedTail(Stream(), Behind);
  } catch (const std::exception& Error) {
    Decorate(Error, FReadLnCnt, {.Line = FReadLnCnt, .Section = FUnreadName});
  }
}

void TEISource::Decorate(const std::exception& Error, std::int64_t Line, TErrorInfo Place) const {
  std::string Message = Error.what();
  if (const auto FileName = ErrorFileName()) {
    Message += Format("; FileName: %s", *FileName);
    Place.File = *FileName;
  }
  Message += Format("; Line: %d OwnerException: ", Line);
  Message += LineEnd;
  Message += Kv_FullExceptionInfo(Error);
  std::throw_with_nested(EEIError(Message, std::move(Place)));
}

void TEISource::ExportObject(TEIObject& Object, const std::string& Name) {
  CutUnfinished();
  TStream& Target = Stream();
  const std::int64_t RollbackPoint = Target.Seek(0, TSeekOrigin::End);
  const int SectionsBefore = FSections.Count();
  try {
    if (RollbackPoint == 0 && FDefaultEncoding == TKvEncoding::Utf8) {
      Target.Write(ByteOrderMark);
      Target.Write(LineEnd);
    } else if (!EndsWithLineEnd(Target, RollbackPoint)) {
      Target.Write(LineEnd);
    }
    const std::int64_t Start = Target.Position();
    WritelnString(UnfinishedMarker, TKvEncoding::Utf8);
    WriteSection(Object, Name, FSections.AddSection());
    WritelnString("[END]", FDefaultEncoding);
    Target.Flush();
    if (FHoldsBack)
      FHeld.push_back(Start);
    else
      FinishSection(Start);
  } catch (...) {
    if (FSections.Count() > SectionsBefore) FSections.DeleteSection(SectionsBefore);
    try {
      Target.SetSize(RollbackPoint);
      Target.SetPosition(RollbackPoint);
    } catch (const std::exception& Error) {
      FUnfinishedPosition = RollbackPoint;
      // The first error is the one to tell; that the file could not be cut back is for the trace.
      BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error,
                           Format("Cannot cut an unfinished section off at %d: %s", RollbackPoint, Error.what()));
    }
    throw;
  }
}

void TEISource::CutUnfinished() {
  if (FUnfinishedPosition < 0) return;
  Stream().SetSize(FUnfinishedPosition);
  FUnfinishedPosition = -1;
}

/// All else of the section is in the store.
void TEISource::FinishSection(std::int64_t Start) {
  Stream().SetPosition(Start);
  Stream().Write("[");
  Stream().Flush();
  Stream().Seek(0, TSeekOrigin::End);
}

void TEISource::FinishHeld() {
  for (const std::int64_t Start : FHeld) FinishSection(Start);
  FHeld.clear();
}

void TEISource::DropHeld() {
  if (FHeld.empty()) return;
  Stream().SetSize(FHeld.front());
  for (std::size_t Count = FHeld.size(); Count > 0; --Count) FSections.DeleteSection(FSections.Count() - 1);
  FHeld.clear();
}

void TEISource::WriteSection(TEIObject& Object, const std::string& Name, TEISection& Section) {
  const TKvEncoding Encoding = FDefaultEncoding;
  Section.Position = Stream().Position();
  Section.FEncoding = Encoding;
  if (Encoding == TKvEncoding::Utf8)
    WritelnString("Encoding = UTF8", Encoding);
  else if (!WorkSettings().WorkAs17Version)
    WritelnString("Encoding = ANSI", Encoding);
  if (Name.empty()) throw EEIError("Cannot export a section without a name");
  WriteHeaderLine("Name", Name, Encoding);
  Section.FName = Name;
  WriteHeaderLine("Type", Object.TypeName(), Encoding);
  WriteHeaderLine("Version", Format("%d", Object.Version()), Encoding);
  Section.FVersion = Object.Version();
  Section.ObjectClass = EITypeList().Find(Object.TypeName(), Object.Version());
  Object.FillParameters(Section.FParameters);
  for (int Index = 0; Index < Section.ParamCount(); ++Index)
    WriteHeaderLine(Section.ParamName(Index), Section.FParameters.ParamValues(Index), Encoding);
  WritelnString("[DATA]", Encoding);
  Section.DataPosition = Stream().Position();
  TEIStream Body(Stream(), -1, &FLosses);
  Body.SetEncoding(Encoding);
  Body.SetStrictText(FStrictText);
  Object.ExportData(Body);
  Section.DataSize = Stream().Position() - Section.DataPosition;
}

void TEISource::WriteHeaderLine(std::string_view Name, std::string_view Value, TKvEncoding Encoding) {
  CheckHeaderValue(Name, Value);
  std::string Line(Name);
  Line += " = ";
  Line += Value;
  // Lost characters are told when it is written.
  TTextLosses Lost;
  if (Line.size() > MaxHeaderLine && FCodec.Encode(Line, Encoding, Lost).size() > MaxHeaderLine)
    throw EEIError(
        Format("A section header cannot hold the %s: it would make a line of more than %d bytes", Name, MaxHeaderLine));
  WritelnString(Line, Encoding);
}

void TEISource::ImportObject(TEIObject& Object) {
  const TEISection& Section = FSections.Sections(Object.SectionNumber);
  Stream().SetPosition(Section.DataPosition);
  TEIStream Body(Stream(), Section.DataSize, &FLosses);
  Body.SetReadLnCnt(0);
  Body.SetLinesBefore(Section.DataLinePosition);
  Body.SetEncoding(Section.FEncoding);
  Body.SetStrictText(FStrictText);
  try {
    Object.ImportData(Body);
  } catch (const EAbort&) {
    throw;
  } catch (const EQuestionUnanswered&) {
    throw;
  } catch (const std::exception& Error) {
    const std::int64_t Line = Body.ErrorLine() >= 0 ? Section.DataLinePosition + Body.ErrorLine() : 0;
    Decorate(Error, Section.DataLinePosition + Body.ReadLnCnt(), {.Line = Line, .Section = Section.Name()});
  }
}

std::unique_ptr<TEIObject> TEISource::CreateEIObject(int Index) {
  const TEISection& Section = FSections.Sections(Index);
  std::unique_ptr<TEIObject> Object = Section.ObjectClass.Create();
  Object->SectionNumber = Index;
  try {
    Object->Initialize(Section);
  } catch (Exception& Error) {
    // What a header lacks is missed where it ends.
    Error.Add({.File = ErrorFileName().value_or(""), .Line = Section.DataLinePosition, .Section = Section.Name()});
    throw;
  }
  return Object;
}

}  // namespace velkrund
