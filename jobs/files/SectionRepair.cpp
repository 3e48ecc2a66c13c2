#include "jobs/files/SectionRepair.h"

#include <algorithm>
#include <array>
#include <memory>

#include "jobs/files/FileKind.h"
#include "jobs/files/FileOpening.h"
#include "jobs/files/LineFeeds.h"
#include "jobs/files/StrayMarkers.h"
#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 256 * 1024;
constexpr std::string_view SectionMarker = "[SECTION]", EndMarker = "[END]";

/// Watches the bytes of lines go by for lines that are markers. Keeps no line: one may be as long as the file.
class TMarkerWatch {
 public:
  void Take(std::string_view Bytes) {
    for (const char Byte : Bytes) Take(Byte);
  }
  /// The end of the bytes ends the last line.
  void Finish() { EndLine(); }
  int Sections() const { return FSections; }
  int Ends() const { return FEnds; }

 private:
  void Take(char Byte) {
    if (Byte == '\r') return EndLine();
    if (Byte == '\n' && FBehindReturn) {
      FBehindReturn = false;
      return;
    }
    FBehindReturn = false;
    if (Byte == ' ' && FLength > 0)
      FBlanks = true;
    else if (FBlanks || FLength == FLine.size())
      FTooMuch = true;
    else
      FLine[FLength++] = Byte;
  }
  void EndLine() {
    const std::string_view Line(FLine.data(), FLength);
    if (!FTooMuch && Line == SectionMarker) ++FSections;
    if (!FTooMuch && Line == EndMarker) ++FEnds;
    FLength = 0;
    FBlanks = FTooMuch = false;
    FBehindReturn = true;
  }

  std::array<char, SectionMarker.size()> FLine;
  std::size_t FLength = 0;
  bool FBlanks = false;   // stand behind what is kept
  bool FTooMuch = false;  // for any marker
  bool FBehindReturn = false;
  int FSections = 0, FEnds = 0;
};

/// Hands everything from Position on to Use, block by block. Canceled: raises EAbort.
template <typename TUse>
void ForEachBlock(TStream& Stream, std::int64_t Position, const std::function<bool()>& Canceled, TUse Use) {
  const auto Block = std::make_unique<char[]>(BlockSize);
  Stream.SetPosition(Position);
  for (;;) {
    if (Canceled && Canceled()) throw EAbort("Cancelled while a file was repaired");
    const std::size_t Got = Stream.Read(Block.get(), BlockSize);
    if (Got == 0) return;
    Use(std::string_view(Block.get(), Got));
  }
}

/// Whether it is the file's structure that is at fault, and not the disk under it.
bool IsStructureFault(const std::exception& Decorated) {
  try {
    std::rethrow_if_nested(Decorated);
  } catch (const EEIError&) {
    return true;
  } catch (const std::exception&) {
    return false;
  }
  return false;
}

bool WasNeverFinished(TEIFile& File, const std::function<bool()>& Canceled) {
  TMarkerWatch Watch;
  ForEachBlock(File.Stream(), File.UnreadPosition(), Canceled, [&](std::string_view Block) { Watch.Take(Block); });
  Watch.Finish();
  return Watch.Sections() == 1 && Watch.Ends() == 0;
}

/// Where a last line begins that is a piece of what stands in front of a section's header; -1: there is none.
std::int64_t UnfinishedMarker(TStream& Stream) {
  const std::int64_t Size = Stream.Size();
  std::array<char, SectionMarker.size() - 1 + 2> Tail;
  const auto Count = static_cast<std::size_t>(std::min<std::int64_t>(Size, Tail.size()));
  Stream.SetPosition(Size - static_cast<std::int64_t>(Count));
  const std::string_view Text(Tail.data(), Stream.Read(Tail.data(), Count));
  if (Text.empty()) return -1;
  if (Text.size() == static_cast<std::size_t>(Size) && ByteOrderMark.starts_with(Text) && Text != ByteOrderMark)
    return 0;
  const std::size_t At = Text.rfind('[');
  if (At == std::string_view::npos || !SectionMarker.starts_with(Text.substr(At)) || Text.substr(At) == SectionMarker)
    return -1;
  const std::string_view Before = Text.substr(0, At);
  const std::int64_t Position = Size - static_cast<std::int64_t>(Text.size() - At);
  return Position == 0 || Before.ends_with('\r') || Before.ends_with("\r\n") ? Position : -1;
}

/// The file, open for writing, as far as its headers can be read. Fault: why not further.
std::unique_ptr<TEIFile> OpenedAsFarAsItGoes(TFileSystem& Files, const std::string& Path,
                                             std::optional<TErrorFacts>& Fault) {
  auto File = std::make_unique<TEIFile>(Files);
  File->SetStrictText(false);  // texts are not touched
  File->SetFileName(Path);
  Fault.reset();
  try {
    OpenPlainly(*File);
  } catch (const EEIError& Error) {
    if (File->UnreadPosition() < 0 || !IsStructureFault(Error)) throw;
    Fault = FactsOf(Error);
  }
  return File;
}

/// Where the file has to be cut; -1: nowhere.
std::int64_t FindCut(TEIFile& File, const std::function<bool()>& Canceled, const TSectionRepair& Repair) {
  if (!Repair.Fault)
    return File.UnfinishedPosition() >= 0 ? File.UnfinishedPosition() : UnfinishedMarker(File.Stream());
  if (!WasNeverFinished(File, Canceled))
    throw EEIError(
        Format("This is not an unfinished section at the end of the file, so that cutting cannot mend it; "
               "%s. %s",
               Repair.LineFeeds > 0 ? "only line ends were mended" : "nothing was changed", Repair.Fault->Message),
        Repair.Fault->Info);
  return File.UnreadPosition();
}

/// Whether a file holds exactly the bytes of the other from Position on.
bool HoldsTail(TFileSystem& Files, const std::string& Name, TEIFile& File, std::int64_t Position,
               const std::function<bool()>& Canceled) {
  if (IsPipe(Name)) return false;
  std::unique_ptr<TFile> Held;
  try {
    Held = Files.Open(Name, TFileMode::Read);
  } catch (const EFOpenError&) {
    return false;  // not ours then
  }
  if (Held->Size() != File.Stream().Size() - Position) return false;
  std::string Same(BlockSize, '\0');
  std::int64_t At = 0;
  bool Result = true;
  ForEachBlock(File.Stream(), Position, Canceled, [&](std::string_view Block) {
    Result = Result && std::string_view(Same.data(), Held->ReadAt(At, Same.data(), Block.size())) == Block;
    At += static_cast<std::int64_t>(Block.size());
  });
  return Result;
}

void RemoveQuietly(TFileSystem& Files, const std::string& Name) {
  try {
    Files.Remove(Name);
  } catch (const std::exception& Error) {
    // The error on its way out is the one to tell.
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Error.what());
  }
}

/// A name beside the file, cut short itself where no file system would take it.
std::string NameOfCut(const std::string& File, const std::string& Ending) {
  constexpr std::size_t LongestName = 255;  // bytes
  const std::size_t Start = File.rfind('/') + 1;
  std::string_view Name = std::string_view(File).substr(Start);
  if (Name.size() + Ending.size() > LongestName) {
    std::size_t Length = LongestName - Ending.size();
    while (Length > 0 && (static_cast<unsigned char>(Name[Length]) & 0xC0) == 0x80) --Length;  // within a character
    Name = Name.substr(0, Length);
  }
  return File.substr(0, Start).append(Name).append(Ending);
}

/// FILE.cut, FILE.cut-2 ...: the first that is free, or that holds the bytes from Position on already: a repair that
/// was killed before it shortened the file has left them there.
std::string CutName(TFileSystem& Files, TEIFile& File, std::int64_t Position, const std::function<bool()>& Canceled) {
  std::string Name = NameOfCut(File.FileName(), ".cut");
  for (int Number = 2; Files.Exists(Name) && !HoldsTail(Files, Name, File, Position, Canceled); ++Number)
    Name = NameOfCut(File.FileName(), Format(".cut-%d", Number));
  return Name;
}

/// Puts the bytes from Position on into a file of that name, safely on the disk.
void SaveTail(TFileSystem& Files, const std::string& Name, TEIFile& File, std::int64_t Position,
              const std::function<bool()>& Canceled) {
  const std::unique_ptr<TFileInMaking> Tail = Files.MakeNew(Name, File.FileName());
  std::int64_t Written = 0;
  ForEachBlock(File.Stream(), Position, Canceled, [&](std::string_view Block) {
    Tail->File().WriteAt(Written, Block);
    Written += static_cast<std::int64_t>(Block.size());
  });
  Tail->Put();
}

}  // namespace

TSectionRepair RepairFile(TFileSystem& Files, const std::string& Path, const std::function<bool()>& Canceled) {
  TSectionRepair Result;
  std::unique_ptr<TEIFile> Opened = OpenedAsFarAsItGoes(Files, Path, Result.Fault);
  if (const std::vector<TFileRange> Parts = LineFeedParts(*Opened); !Parts.empty()) {
    Result.LineFeeds = MendLineFeeds(Files, *Opened, Parts, Canceled);
    Opened.reset();
    Opened = OpenedAsFarAsItGoes(Files, Path, Result.Fault);
  }
  TEIFile& File = *Opened;
  Result.Position = FindCut(File, Canceled, Result);
  Result.SectionsLeft = File.Sections().Count();
  Files.RemoveLeft(Path);
  if (Result.Position < 0) {
    RefuseForeignFile(File, Path);
    RefuseHiddenSections(File, Path);
    return Result;
  }
  Result.Bytes = File.Stream().Size() - Result.Position;
  const std::string CutFile = CutName(Files, File, Result.Position, Canceled);
  const bool IsThere = Files.Exists(CutFile);
  if (!IsThere) SaveTail(Files, CutFile, File, Result.Position, Canceled);
  try {
    File.Stream().SetSize(Result.Position);
  } catch (...) {
    if (!IsThere) RemoveQuietly(Files, CutFile);
    throw;
  }
  try {
    File.Sync();
  } catch (const EStreamError& Error) {
    throw EWriteError(Format("%s; what was cut off is in '%s'", Error.what(), CutFile));
  }
  Result.CutFile = CutFile;
  return Result;
}

}  // namespace velkrund
