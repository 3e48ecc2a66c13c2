#include "jobs/application/DefaultTexts.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "velkrund/eif/RecordPieces.h"
#include "velkrund/eif/TextEscapes.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

// Made from texts/velkrund.eif by cmake/EmbedFile.cmake.
extern const unsigned char EmbeddedTexts[];
extern const unsigned long EmbeddedTextsSize;

namespace {

constexpr std::string_view English = "English";
constexpr std::string_view Russian = "Russian";

}  // namespace

class TDefaultTexts::TReader {
 public:
  TReader(std::string_view File, TDefaultTexts& Target) : FFile(File), FTarget(Target) {}

  void Read() {
    while (NextLine())
      if (IsMark("[SECTION]")) ReadSection();
    if (FTarget.FTexts.empty()) Refuse("there are no texts; do lines end with carriage return and line feed?");
  }

 private:
  [[noreturn]] void Refuse(std::string_view What) const {
    throw ETextsError(Format("The file of texts cannot be used. Line %d: %s", FNumber, What));
  }

  bool NextLine() {
    if (FAt >= FFile.size()) return false;
    const std::size_t End = std::min(FFile.find('\r', FAt), FFile.size());
    FLine = FFile.substr(FAt, End - FAt);
    FAt = End + (FFile.substr(End).starts_with("\r\n") ? 2 : 1);
    ++FNumber;
    if (FindMalformedUtf8(FLine) != std::string_view::npos) Refuse("malformed UTF-8");
    return true;
  }

  void NextLineOfSection() {
    if (!NextLine()) Refuse("the file ends within a section");
  }

  bool IsMark(std::string_view Mark) const { return TrimRightBlanks(FLine) == Mark; }

  /// The text of a body line, which is indented.
  std::string_view Indented() const {
    if (!FLine.starts_with(Indentation)) Refuse("two blanks have to stand at its beginning");
    return Trim(FLine);
  }

  void ReadSection() {
    ReadHeader();
    NextLineOfSection();
    if (!IsMark(" [LANGUAGES]")) Refuse("[LANGUAGES] is missing");
    FLanguages.clear();
    for (NextLineOfSection(); !IsMark(" [STRINGS]"); NextLineOfSection()) FLanguages.emplace_back(Indented());
    FKey.clear();
    for (NextLineOfSection(); !IsMark("[END]"); NextLineOfSection()) ReadString();
  }

  void ReadHeader() {
    std::map<std::string, std::string, std::less<>> Header;
    for (NextLineOfSection(); !IsMark("[DATA]"); NextLineOfSection()) {
      const std::string_view Line = Trim(FLine);
      if (Line.empty() || Line.starts_with(';')) continue;
      const std::size_t Equals = std::min(Line.find('='), Line.size());
      Header[std::string(Trim(Line.substr(0, Equals)))] = Trim(Line.substr(std::min(Equals + 1, Line.size())));
    }
    const auto Require = [&](std::string_view Name, std::string_view Value) {
      if (Header[std::string(Name)] != Value) Refuse(Format("the section's %s has to be %s", Name, Value));
    };
    Require("Encoding", "UTF8");
    Require("Type", "LocalizedResource");
    Require("Version", "200");
    FSectionID = Header["SectionID"];
    if (FSectionID.empty()) Refuse("the section's SectionID is missing");
  }

  void ReadString() {
    if (FLine.ends_with(ContinuationMark) || FLine.starts_with(ContinuationMark))
      Refuse("lines continued with '@' are not supported here");
    const std::string_view Line = Indented();
    if (FLine.substr(2).starts_with(' ')) return ReadText(Line);
    if (!Line.ends_with(':')) Refuse("the name of a text has to end with ':'");
    FKey = LowerCase(Format("%s_%s", FSectionID, Line.substr(0, Line.size() - 1)));
  }

  void ReadText(std::string_view Line) {
    if (FKey.empty()) Refuse("a text without a name");
    const std::size_t Equals = Line.find('=');
    if (Equals == std::string_view::npos) Refuse("'=' is missing");
    const std::string_view Language = Trim(Line.substr(0, Equals));
    const auto IsIt = [&](const std::string& Listed) { return SameText(Listed, Language); };
    if (std::none_of(FLanguages.begin(), FLanguages.end(), IsIt))
      Refuse(Format("the language '%s' is not listed", Language));
    const std::string_view Value = Trim(Line.substr(Equals + 1));
    if (Value.size() < 2 || !Value.starts_with('\'') || !Value.ends_with('\'')) Refuse("the text has to stand in ''");
    const bool IsNew =
        FTarget.FTexts.try_emplace({FKey, LowerCase(Language)}, Unescaped(Value.substr(1, Value.size() - 2))).second;
    if (!IsNew) Refuse(Format("a second text in the language '%s' for the same key", Language));
  }

  std::string Unescaped(std::string_view Text) const {
    constexpr std::size_t Digits = 4;
    std::string Result(Text);
    std::string BadDigits;
    // An escape that is too short would end the text in silence.
    const std::size_t End = Text.size() - std::min(Text.size(), Digits);
    const bool IsShort = Text.find('#', End) != std::string_view::npos;
    Result.resize(UnescapeInPlace(Result, BadDigits, TLoneUnit::Character));
    if (IsShort || !BadDigits.empty()) Refuse("'#' has to be followed by four hexadecimal digits");
    return Result;
  }

  std::string_view FFile, FLine;
  std::size_t FAt = 0;
  int FNumber = 0;
  std::string FSectionID, FKey;
  std::vector<std::string> FLanguages;
  TDefaultTexts& FTarget;
};

TDefaultTexts::TDefaultTexts(std::string_view File) { TReader(File, *this).Read(); }

const TDefaultTexts& TDefaultTexts::Own() {
  static const TDefaultTexts Texts(std::string_view(reinterpret_cast<const char*>(EmbeddedTexts), EmbeddedTextsSize));
  return Texts;
}

std::optional<std::string> TDefaultTexts::Find(std::string_view Key, std::string_view Language) const {
  const std::string LowerKey = LowerCase(Key);
  for (const std::string_view Candidate : {Language, English})
    if (const auto Found = FTexts.find({LowerKey, LowerCase(Candidate)}); Found != FTexts.end()) return Found->second;
  return std::nullopt;
}

std::string TextLanguage(const std::string& Setting) {
  std::string Wanted = Setting;
  for (const char* const Variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (!Wanted.empty()) break;
    if (const char* const Value = std::getenv(Variable)) Wanted = Value;
  }
  return std::string(LowerCase(Wanted).starts_with("ru") ? Russian : English);
}

}  // namespace velkrund
