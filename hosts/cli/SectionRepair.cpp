#include "hosts/cli/SectionRepair.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <memory>

#include "hosts/cli/InputFile.h"
#include "velkrund/eif/EIFile.h"
#include "velkrund/platform/database/Platform.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t BlockSize = 256 * 1024;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF", SectionMarker = "[SECTION]", EndMarker = "[END]";

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

/// Opens the file for writing and finds where it has to be cut; -1: nowhere.
std::int64_t OpenAndFindCut(TEIFile& File, const std::function<bool()>& Canceled, std::string& Fault) {
  try {
    OpenPlainly(File);
  } catch (const EEIError& Error) {
    if (File.UnreadPosition() < 0 || !IsStructureFault(Error)) throw;
    if (!WasNeverFinished(File, Canceled))
      throw EEIError(
          Format("This is no unfinished section at the end of the file, so that cutting can not mend it; "
                 "nothing was changed. %s",
                 Error.what()));
    Fault = Error.what();
    return File.UnreadPosition();
  }
  return UnfinishedMarker(File.Stream());
}

/// New files get the rights of another one for this object's lifetime.
class TRightsOf {
 public:
  explicit TRightsOf(const std::string& Path) {
    struct stat Status;
    const mode_t Rights = stat(Path.c_str(), &Status) == 0 ? Status.st_mode : 0600;
    FBefore = umask(~Rights & 0777);
  }
  TRightsOf(const TRightsOf&) = delete;
  TRightsOf& operator=(const TRightsOf&) = delete;
  ~TRightsOf() { umask(FBefore); }

 private:
  mode_t FBefore;
};

/// The new file for what is cut off; removed again unless it was kept.
class TCutFile {
 public:
  TCutFile(TFileSystem& Files, const std::string& Original) : FFiles(Files) {
    const TRightsOf Rights(Original);
    for (int Number = 1; !FFile; ++Number) {
      FPath = Original + ".cut" + (Number > 1 ? "-" + std::to_string(Number) : "");
      if (!FFiles.Exists(FPath)) TryToCreate();
    }
  }
  TCutFile(const TCutFile&) = delete;
  TCutFile& operator=(const TCutFile&) = delete;
  ~TCutFile() {
    FFile.reset();
    if (FKept) return;
    try {
      FFiles.Remove(FPath);
    } catch (const std::exception& Error) {
      // The error on its way out is the one to tell.
      BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Error.what());
    }
  }

  const std::string& Path() const { return FPath; }
  TFile& File() { return *FFile; }
  void Keep() { FKept = true; }

 private:
  void TryToCreate() {
    try {
      FFile = FFiles.Open(FPath, TFileMode::CreateNew);
    } catch (const EFCreateError&) {
      if (!FFiles.Exists(FPath)) throw;  // otherwise somebody else was quicker
    }
  }

  TFileSystem& FFiles;
  std::string FPath;
  std::unique_ptr<TFile> FFile;
  bool FKept = false;
};

}  // namespace

TSectionRepair RepairFile(TFileSystem& Files, const std::string& Path, const std::function<bool()>& Canceled) {
  TEIFile File(Files);
  File.SetFileName(Path);
  TSectionRepair Result;
  Result.Position = OpenAndFindCut(File, Canceled, Result.Fault);
  Result.SectionsLeft = File.Sections().Count();
  if (Result.Position < 0) return Result;
  TCutFile Cut(Files, Path);
  ForEachBlock(File.Stream(), Result.Position, Canceled, [&](std::string_view Block) {
    Cut.File().WriteAt(Result.Bytes, Block);
    Result.Bytes += static_cast<std::int64_t>(Block.size());
  });
  Cut.File().Sync();
  File.Stream().SetSize(Result.Position);
  Cut.Keep();
  try {
    File.Sync();
  } catch (const EStreamError& Error) {
    throw EWriteError(Format("%s; what was cut off is in '%s'", Error.what(), Cut.Path()));
  }
  Result.CutFile = Cut.Path();
  return Result;
}

}  // namespace velkrund
