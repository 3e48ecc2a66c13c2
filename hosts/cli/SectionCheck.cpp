#include "hosts/cli/SectionCheck.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "hosts/cli/Interrupt.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/Texts.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr int ExcerptColumns = 40;
constexpr std::size_t ExcerptBytes = 200;

void NoteRepeatedNames(const TEISectionList& Sections, std::vector<std::string>& Notes) {
  std::map<std::pair<std::string, std::string>, int> First;
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    const TEISection& Section = Sections[Index];
    const auto [Earlier, IsNew] =
        First.try_emplace({std::string(Section.TypeName()), LowerCase(Section.Name())}, Index);
    if (!IsNew)
      Notes.push_back(
          Format("%s has the type and the name of section %d", SectionText(Sections, Index), Earlier->second));
  }
}

/// Looks at the lines from the stream's position to the next section, or to the end.
void NoteMarkerLine(TStream& Stream, std::vector<std::string>& Notes) {
  std::string Spill;
  bool Noted = false;
  while (!Stream.Peek().empty()) {
    const std::int64_t Position = Stream.Position();
    const std::string_view Line = ReadRawLine(Stream, Spill);
    if (TEISource::RightTrim(Line) == "[SECTION]") return;
    std::string_view Text = Trim(Line);
    const bool HasMark = Text.starts_with(ByteOrderMark);
    if (HasMark) Text.remove_prefix(ByteOrderMark.size());
    if (Noted || !Text.starts_with('[')) continue;
    Notes.push_back(
        Format("a line outside of every section begins as a marker does (Position:%d): %s%s. If a section begins "
               "there, it is passed over",
               Position, HasMark ? "a byte-order mark, " : "",
               CutToWidth(Printable(Text.substr(0, std::min(Text.find('\n'), ExcerptBytes))), ExcerptColumns)));
    Noted = true;
  }
}

}  // namespace

TSectionChecker::TSectionChecker(const TSession& Session)
    : FSession(Session),
      FDiscard(Session.Manager()),
      FGuard(TPlatform{&FDiscard, nullptr, nullptr, &FStructures, nullptr}) {}

TSectionCheck TSectionChecker::Check(TEIFile& File, int Index) {
  TSectionCheck Result;
  if (TInterrupt::Requested()) return Result;
  const TTextLosses Before = File.Losses();
  const auto Start = std::chrono::steady_clock::now();
  FSession.Progress.Begin(File.Sections()[Index].Name(), "bytes", File.Sections()[Index].DataSize);
  try {
    Read(File, Index, Result);
  } catch (const EAbort&) {
    Result.State = TItemState::Cancelled;
  } catch (const std::exception& Error) {
    Result.State = TItemState::Failed;
    Result.Error = Error.what();
  }
  FSession.Progress.End();
  Result.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
  Result.Losses = {File.Losses().Unrepresentable - Before.Unrepresentable, File.Losses().Malformed - Before.Malformed};
  return Result;
}

void TSectionChecker::Read(TEIFile& File, int Index, TSectionCheck& Result) {
  const std::unique_ptr<TEIObject> Object = File.CreateEIObject(Index);
  Object->OnCancel = &TInterrupt::Requested;
  Object->OnProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view) {
    FSession.Progress.Show(Current, Total);
  };
  TTableDataReport Report;
  auto* const Table = dynamic_cast<TEICommonTableData*>(Object.get());
  if (Table) {
    Table->Report = &Report;
    Table->StrictValues = true;
    FDiscard.SetFieldNames(FieldsOf(File, Index).value_or(std::vector<std::string>()));
  }
  const auto CountRows = [&] {
    if (Table) Result.Rows = Report.RowCount;
  };
  try {
    File.ImportObject(*Object);
  } catch (...) {
    CountRows();
    throw;
  }
  CountRows();
  Result.State = Object->Stopped() ? TItemState::Cancelled : TItemState::Done;
}

std::vector<std::string> CheckNotes(TEIFile& File) {
  std::vector<std::string> Notes;
  const TEISectionList& Sections = File.Sections();
  NoteRepeatedNames(Sections, Notes);
  TStream& Stream = File.Stream();
  Stream.SetPosition(0);
  NoteMarkerLine(Stream, Notes);
  std::string Spill;
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    Stream.SetPosition(Sections[Index].DataPosition + Sections[Index].DataSize);
    ReadRawLine(Stream, Spill);  // the "[END]"
    NoteMarkerLine(Stream, Notes);
  }
  return Notes;
}

}  // namespace velkrund
