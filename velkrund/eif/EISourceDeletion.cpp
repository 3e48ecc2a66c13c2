// How TEISource cuts sections out of its stream: every cut is found first, then what lies between the cuts moves down.

#include <memory>
#include <set>
#include <vector>

#include "velkrund/eif/BodySkipper.h"
#include "velkrund/eif/EISource.h"
#include "velkrund/eif/TypeList.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

constexpr std::size_t MoveBlock = 256 * 1024;

}  // namespace

void TEISource::DeleteSection(int Index) {
  FReadLnCnt = -1;
  FSections.Sections(Index);  // refuses an index outside the list
  std::vector<bool> Marks(static_cast<std::size_t>(FSections.Count()));
  Marks[static_cast<std::size_t>(Index)] = true;
  DeleteMarked(Marks);
}

void TEISource::DeleteSections(TStringList List) {
  FReadLnCnt = -1;
  List.CustomSort(CompareIntStringList);
  std::vector<bool> Marks(static_cast<std::size_t>(FSections.Count()));
  for (int At = 0; At < List.Count(); ++At) {
    CompareIntStringList(List, At, At);  // a list of one entry was not compared yet
    const int Index = *StrToInt32(List[At]);
    FSections.Sections(Index);
    Marks[static_cast<std::size_t>(Index)] = true;
  }
  if (List.Count() > 0) DeleteMarked(Marks);
}

// The position behind the section's "[END]" line.
std::int64_t TEISource::EndOfSection(const TEISection& Section) {
  Stream().SetPosition(Section.DataPosition + Section.DataSize);
  while (!Stream().Peek().empty())
    if (TBodySkipper(Stream()).PassLine("[END]")) break;
  return Stream().Position();
}

// A lone CR ends a line, a LF alone does not: brought together by a cut they would be one line end, and the line that
// began with the LF would be read as another.
bool TEISource::WouldJoinLineEnd(std::int64_t LastKept, std::int64_t NextKept) {
  const auto Byte = [this](std::int64_t Position) {
    Stream().SetPosition(Position);
    return Stream().Peek().empty() ? '\0' : Stream().Peek().front();
  };
  return LastKept >= 0 && Byte(LastKept) == '\r' && Byte(NextKept) == '\n';
}

/// ToTheEnd: with the last section goes all that follows it.
TEISource::TCut TEISource::CutOf(int Index, bool ToTheEnd) {
  Stream().SetPosition(Index == 0 ? 0 : EndOfSection(FSections[Index - 1]));
  std::int64_t Start = Stream().Position();
  while (!TBodySkipper(Stream()).PassLine("[SECTION]")) {
    Start = Stream().Position();
    if (Stream().Peek().empty())
      throw EReadError(
          Format("Cannot remove section %d: its beginning is no longer there (Position:%d). The file was "
                 "changed meanwhile; open it again",
                 Index, Start));
  }
  const bool IsLast = Index == FSections.Count() - 1;
  return {Start, IsLast && ToTheEnd ? Stream().Size() : EndOfSection(FSections[Index])};
}

std::vector<TEISource::TCut> TEISource::CutsOf(const std::vector<int>& Indexes) {
  FReadLnCnt = -1;
  std::vector<TCut> Result;
  std::int64_t LastKept = -1;
  for (const int Index : std::set<int>(Indexes.begin(), Indexes.end())) {
    FSections.Sections(Index);  // refuses an index outside the list
    TCut Cut = CutOf(Index, false);
    const bool Touches = !Result.empty() && Result.back().End >= Cut.Start;
    if (!Touches) LastKept = Cut.Start - 1;
    if (WouldJoinLineEnd(LastKept, Cut.End)) --Cut.End;  // the section's own LF stays
    if (Touches)
      Result.back().End = Cut.End;
    else
      Result.push_back(Cut);
  }
  return Result;
}

void TEISource::DeleteMarked(const std::vector<bool>& Marks) {
  std::vector<TCut> Cuts;
  std::vector<std::int64_t> Shifts(Marks.size());
  std::int64_t Shift = 0, LastKept = -1;
  const std::int64_t OldSize = Stream().Size();
  for (int Index = 0; Index < FSections.Count(); ++Index) {
    Shifts[static_cast<std::size_t>(Index)] = Shift;
    if (!Marks[static_cast<std::size_t>(Index)]) continue;
    TCut Cut = CutOf(Index, true);
    if (Cuts.empty() || Cuts.back().End < Cut.Start) LastKept = Cut.Start - 1;
    if (WouldJoinLineEnd(LastKept, Cut.End)) --Cut.End;  // the section's own LF stays
    Cuts.push_back(Cut);
    Shift += Cut.End - Cut.Start;
  }
  std::int64_t WriteAt = Cuts.front().Start;
  for (std::size_t Index = 0; Index < Cuts.size(); ++Index)
    MoveDown(WriteAt, Cuts[Index].End, Index + 1 < Cuts.size() ? Cuts[Index + 1].Start : OldSize);
  Stream().SetSize(WriteAt);
  Stream().SetPosition(WriteAt);
  Stream().Flush();
  if (Marks.back())
    FUnfinishedPosition = -1;  // gone with the last section
  else if (FUnfinishedPosition >= 0)
    FUnfinishedPosition -= Shift;
  for (int Index = 0; Index < FSections.Count(); ++Index) {
    FSections[Index].Position -= Shifts[static_cast<std::size_t>(Index)];
    FSections[Index].DataPosition -= Shifts[static_cast<std::size_t>(Index)];
  }
  FSections.DeleteMarked(Marks);
}

// Moves the bytes From .. To down to WriteAt, and WriteAt behind them.
void TEISource::MoveDown(std::int64_t& WriteAt, std::int64_t From, std::int64_t To) {
  const auto Block = std::make_unique<char[]>(MoveBlock);
  while (From < To) {
    Stream().SetPosition(From);
    const auto Wanted = static_cast<std::size_t>(std::min<std::int64_t>(To - From, MoveBlock));
    const std::size_t Count = Stream().Read(Block.get(), Wanted);
    if (Count == 0) return;
    From += static_cast<std::int64_t>(Count);
    Stream().SetPosition(WriteAt);
    Stream().Write({Block.get(), Count});
    WriteAt += static_cast<std::int64_t>(Count);
  }
}

}  // namespace velkrund
