// The headers that opening finds in any bytes are those of a plain walk over all lines, and what one refuses the other
// refuses too, after as many lines. The first byte is the size of the first read, so that lines cross blocks anywhere.

#include <algorithm>
#include <vector>

#include "fuzz/FuzzPlatform.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/eif/TypeList.h"
#include "velkrund/platform/ormtools/BufferedStream.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// One file, to be read only.
class TInputFiles final : public TFileSystem {
 public:
  explicit TInputFiles(std::string_view Bytes) : FBytes(Bytes) {}
  std::unique_ptr<TFile> Open(const std::string&, TFileMode) override { return std::make_unique<TInput>(FBytes); }
  bool Exists(const std::string&) override { return true; }
  void Remove(const std::string&) override { std::abort(); }

 private:
  class TInput final : public TFile {
   public:
    explicit TInput(std::string_view Bytes) : FBytes(Bytes) {}
    std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override {
      return FBytes.substr(std::min(static_cast<std::size_t>(Position), FBytes.size())).copy(Buffer, Count);
    }
    void WriteAt(std::int64_t, std::string_view) override { std::abort(); }
    std::int64_t Size() override { return static_cast<std::int64_t>(FBytes.size()); }
    void SetSize(std::int64_t) override { std::abort(); }
    void Sync() override {}

   private:
    std::string_view FBytes;
  };
  std::string_view FBytes;
};

class TInputSource final : public TEISource {
 public:
  TInputSource(TInputFiles& Files, std::size_t FirstRead) : FStream(Files, FirstRead) {}
  void CreateFile() override { std::abort(); }
  TStream& Stream() override { return FStream; }

 protected:
  void InternalOpen() override { FStream.Open(TFileMode::Read); }

 private:
  TBufferedStream FStream;
};

/// The walk: all lines in memory, one after the other.
class TModel {
 public:
  explicit TModel(std::string_view Bytes) {
    for (std::size_t Start = 0; Start < Bytes.size();) {
      const std::size_t End = std::min(Bytes.find('\r', Start), Bytes.size());
      const std::size_t Next = std::min(Bytes.size(), End + (Bytes.substr(End).starts_with("\r\n") ? 2 : 1));
      FLines.push_back(
          {Bytes.substr(Start, End - Start), static_cast<std::int64_t>(Start), static_cast<std::int64_t>(Next)});
      Start = Next;
    }
    while (Whole && FindLine("[SECTION]")) {
      Unread = FLines[LinesRead - 1].Start;
      TEISection& Section = *Sections.emplace_back(std::make_unique<TEISection>());
      if (ReadSection(Section)) {
        Unread = -1;
      } else {
        Sections.pop_back();
        Whole = false;
      }
    }
  }

  std::vector<std::unique_ptr<TEISection>> Sections;
  std::size_t LinesRead = 0;
  std::int64_t Unread = -1;
  bool Whole = true;

 private:
  struct TLine {
    std::string_view Text;
    std::int64_t Start, Next;
  };

  bool FindLine(std::string_view Marker) {
    while (LinesRead < FLines.size())
      if (TrimRightBlanks(FLines[LinesRead++].Text) == Marker) return true;
    return false;
  }

  bool ReadSection(TEISection& Section) {
    Section.Position = FLines[LinesRead - 1].Next;
    Section.FVersion = -1;
    std::string Type, Text;
    for (bool InHeader = true; InHeader;) {
      if (LinesRead == FLines.size()) return false;
      const std::string_view Raw = FLines[LinesRead++].Text;
      Text.clear();
      if (Section.FEncoding == TKvEncoding::Ansi)
        TCodePage::Default().Decode(Raw, Text);
      else
        RepairUtf8(Text = Raw);
      InHeader = TrimRightBlanks(Text) != "[DATA]";
      if (InHeader && !ReadHeaderLine(Section, Trim(Text), Type)) return false;
    }
    Section.DataPosition = FLines[LinesRead - 1].Next;
    Section.DataLinePosition = static_cast<std::int64_t>(LinesRead);
    if (Section.FName.empty() || Section.FVersion == -1 || Type.empty()) return false;
    Section.ObjectClass = EITypeList().Find(Type, Section.FVersion);
    if (!Section.ObjectClass || !FindLine("[END]")) return false;
    Section.DataSize = FLines[LinesRead - 1].Start - Section.DataPosition;
    return true;
  }

  static bool ReadHeaderLine(TEISection& Section, std::string_view Text, std::string& Type) {
    if (Text.empty() || Text.front() == ';') return true;
    const std::size_t Equals = std::min(Text.find('='), Text.size());
    const std::string_view Name = Trim(Text.substr(0, Equals));
    const std::string Value(Trim(Text.substr(std::min(Equals + 1, Text.size()))));
    if (Name == "Name") return Section.FName = Value, true;
    if (Name == "Type") return Type = Value, true;
    if (Name == "Version") return Section.FVersion = StrToInt32(Value).value_or(-1), StrToInt32(Value).has_value();
    if (Name == "Encoding") {
      Section.FEncoding = Value == "UTF8" ? TKvEncoding::Utf8 : TKvEncoding::Ansi;
      return Value == "UTF8" || Value == "ANSI";
    }
    if (Section.FParameters.IndexOf(Name) >= 0) return false;
    return Section.FParameters.AddParam(Name, Value), true;
  }

  std::vector<TLine> FLines;
};

void CheckSame(const TEISection& Read, const TEISection& Expected) {
  Require(Read.Name() == Expected.Name() && Read.Version() == Expected.Version());
  Require(Read.Encoding() == Expected.Encoding() && Read.ObjectClass == Expected.ObjectClass);
  Require(Read.Position == Expected.Position && Read.DataPosition == Expected.DataPosition);
  Require(Read.DataLinePosition == Expected.DataLinePosition && Read.DataSize == Expected.DataSize);
  Require(Read.ParamCount() == Expected.ParamCount());
  for (int Index = 0; Index < Read.ParamCount(); ++Index) {
    Require(Read.ParamName(Index) == Expected.ParamName(Index));
    Require(Read.FParameters.ParamValues(Index) == Expected.FParameters.ParamValues(Index));
  }
}

}  // namespace
}  // namespace velkrund

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  static TFuzzPlatform Platform;
  if (Size == 0) return 0;
  const std::string_view Bytes(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  TInputFiles Files(Bytes);
  TInputSource Source(Files, std::size_t{1} + Data[0]);
  bool Whole = true;
  try {
    Source.Open();
  } catch (const EEIError& Error) {
    RequireOwn(Error);
    Whole = false;
  }
  const TModel Model(Bytes);
  Require(Whole == Model.Whole && Source.UnreadPosition() == Model.Unread);
  Require(Source.ReadLnCnt() == static_cast<std::int64_t>(Model.LinesRead));
  Require(Source.Sections().Count() == static_cast<int>(Model.Sections.size()));
  for (int Index = 0; Index < Source.Sections().Count(); ++Index)
    CheckSame(Source.Sections()[Index], *Model.Sections[static_cast<std::size_t>(Index)]);
  return 0;
}
