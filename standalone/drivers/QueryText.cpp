#include "standalone/drivers/QueryText.h"

#include <algorithm>

#include "velkrund/platform/ormtools/ErrorInfo.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

bool IsBlank(char C) { return C == ' ' || (C >= '\t' && C <= '\r'); }
bool IsDigit(char C) { return C >= '0' && C <= '9'; }
bool IsLetter(char C) {
  return (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') || C == '_' || static_cast<unsigned char>(C) >= 0x80;
}
bool IsOfName(char C) { return IsLetter(C) || IsDigit(C); }
bool IsOfWord(char C) { return IsOfName(C) || C == '$'; }
bool IsOfNumber(char C) { return IsOfName(C) || C == '.'; }

}  // namespace

/// Goes through the text once, from token to token.
class TQueryScan {
 public:
  TQueryScan(TQueryText& Query, const TQuerySyntax& Syntax) : FQuery(Query), FText(Query.FText), FSyntax(Syntax) {}

  void Run() {
    if (FText.find('\0') != std::string_view::npos) return Fail("it holds a character U+0000");
    while (SkipBlanks()) {
      const std::size_t Start = FAt;
      if (FText[Start] == ';') {
        ++FAt;
        FEnded = FQuery.FEnd > 0;
        continue;
      }
      if (FEnded) return Fail("it is more than one statement");
      TakeToken();
      if (FQuery.FEnd == 0) {
        Fail("");
        FQuery.FFirstStart = Start;
        FQuery.FFirstSize = FAt - Start;
      }
      FQuery.FEnd = FAt;
      if (!FOtherMark.empty())
        return Fail(Format("%s is no parameter here: write :NAME, and give NAME a value", FOtherMark));
    }
  }

 private:
  void Fail(std::string Trouble) { FQuery.FTrouble = std::move(Trouble); }
  char Ahead(std::size_t Count = 0) const { return FAt + Count < FText.size() ? FText[FAt + Count] : '\0'; }
  bool Has(std::string_view Words) const { return FText.substr(FAt).starts_with(Words); }
  template <typename TTest>
  void SkipAll(TTest Test) {
    while (FAt < FText.size() && Test(FText[FAt])) ++FAt;
  }
  /// What has no end lasts to the end of the text; the engine says so then.
  void SkipBehind(std::string_view Words) {
    const std::size_t Found = FText.find(Words, FAt);
    FAt = Found == std::string_view::npos ? FText.size() : Found + Words.size();
  }

  /// Blanks and comments; false at the end of the text.
  bool SkipBlanks() {
    while (FAt < FText.size()) {
      if (IsBlank(FText[FAt]))
        ++FAt;
      else if (Has("--"))
        FAt = std::min(FText.find_first_of(FSyntax.LineEnds, FAt), FText.size());
      else if (Has("/*"))
        SkipComment();
      else
        return true;
    }
    return false;
  }

  void SkipComment() {
    FAt += 2;
    if (!FSyntax.NestedComments) return SkipBehind("*/");
    for (int Depth = 1; Depth > 0 && FAt < FText.size();) {
      const int Change = Has("*/") ? -1 : Has("/*") ? 1 : 0;
      Depth += Change;
      FAt += Change == 0 ? 1 : 2;
    }
  }

  void TakeToken() {
    const char First = FText[FAt];
    if (First == '\'' || First == '"' || (First == '`' && FSyntax.Backticks)) return SkipQuoted(First);
    if (First == '[' && FSyntax.Brackets) return SkipBehind("]");
    if (First == '$' && FSyntax.DollarQuotes && SkipDollarQuoted()) return;
    if (Has("::")) {
      FAt += 2;
    } else if (First == ':' && IsLetter(Ahead(1))) {
      TakeParameter();
    } else if (FSyntax.ParameterMarks.find(First) != std::string_view::npos && (First == '?' || IsOfName(Ahead(1)))) {
      const std::size_t Start = FAt++;
      SkipAll(IsOfName);
      FOtherMark = FText.substr(Start, FAt - Start);
    } else if (IsDigit(First)) {
      SkipAll(IsOfNumber);
    } else if (IsLetter(First)) {
      TakeWord();
    } else {
      ++FAt;
    }
  }

  /// Two quotes in a row are one of the text, which to this scan is another text.
  void SkipQuoted(char Quote) {
    ++FAt;
    SkipBehind({&Quote, 1});
  }

  void TakeWord() {
    const std::size_t Start = FAt;
    SkipAll(IsOfWord);
    if (FSyntax.Escapes && SameAsciiWord(FText.substr(Start, FAt - Start), "E") && Ahead() == '\'') SkipEscaped();
  }

  /// From its quote. Where a line ends between it and the next text, that goes on with it.
  void SkipEscaped() {
    do {
      for (++FAt; FAt < FText.size() && FText[FAt] != '\''; ++FAt)
        if (FText[FAt] == '\\') ++FAt;
      FAt = std::min(FAt + 1, FText.size());
      const std::size_t Behind = FAt;
      while (IsBlank(Ahead()) || Has("--"))
        FAt = IsBlank(Ahead()) ? FAt + 1 : std::min(FText.find_first_of(FSyntax.LineEnds, FAt), FText.size());
      const bool GoesOn =
          Ahead() == '\'' && (FAt == Behind || FText.substr(Behind, FAt - Behind).find_first_of(FSyntax.LineEnds) !=
                                                   std::string_view::npos);
      if (GoesOn) continue;
      FAt = Behind;
      return;
    } while (true);
  }

  bool SkipDollarQuoted() {
    std::size_t End = FAt + 1;
    if (End < FText.size() && !IsDigit(FText[End]))
      while (End < FText.size() && IsOfName(FText[End])) ++End;
    if (End >= FText.size() || FText[End] != '$') return false;
    const std::string_view Tag = FText.substr(FAt, End + 1 - FAt);
    FAt = End + 1;
    SkipBehind(Tag);
    return true;
  }

  void TakeParameter() {
    const std::size_t Start = FAt++;
    SkipAll(IsOfName);
    const std::string_view Name = FText.substr(Start + 1, FAt - Start - 1);
    auto& Known = FQuery.FParameters;
    const auto Found =
        std::find_if(Known.begin(), Known.end(), [&](const std::string& Other) { return SameText(Other, Name); });
    FQuery.FPlaces.push_back({Start, FAt - Start, static_cast<std::size_t>(Found - Known.begin())});
    if (Found == Known.end()) Known.emplace_back(Name);
  }

  TQueryText& FQuery;
  const std::string_view FText;
  const TQuerySyntax& FSyntax;
  std::size_t FAt = 0;
  bool FEnded = false;  // by a semicolon
  std::string_view FOtherMark;
};

TQueryText::TQueryText(std::string Text, const TQuerySyntax& Syntax) : FText(std::move(Text)) {
  TQueryScan(*this, Syntax).Run();
}

std::string TQueryText::Failed() const {
  std::string Shown;
  for (const char C : Trim(FText)) {
    const bool Blank = static_cast<unsigned char>(C) <= 0x20;
    if (!Blank || !Shown.ends_with(' ')) Shown += Blank ? ' ' : C;
  }
  return Shown.empty() ? "Cannot run a query" : Format("Cannot run the query '%s'", Shortened(Shown));
}

void TQueryText::Check() const {
  if (!FTrouble.empty()) throw EDatabaseError(Format("%s: %s", Failed(), FTrouble));
}

std::string TQueryText::With(const std::function<std::string(std::size_t Index)>& WordsFor) const {
  std::string Result;
  std::size_t At = FFirstStart;
  for (const TPlace& Place : FPlaces) {
    Result += FText.substr(At, Place.Start - At) + WordsFor(Place.Parameter);
    At = Place.Start + Place.Size;
  }
  return Result += FText.substr(At, FEnd - At);
}

}  // namespace velkrund
