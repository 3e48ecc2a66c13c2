#include "standalone/drivers/sqlite/SQLiteTokens.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

using TKind = TSQLiteToken::TKind;

bool IsBlank(char C) { return C == ' ' || (C >= '\t' && C <= '\r'); }
bool IsDigit(char C) { return C >= '0' && C <= '9'; }
bool IsOfWord(char C) {
  return IsDigit(C) || (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') || C == '_' || C == '$' ||
         static_cast<unsigned char>(C) >= 0x80;
}

std::size_t BehindBlanks(std::string_view Text, std::size_t At) {
  while (At < Text.size()) {
    if (IsBlank(Text[At])) {
      ++At;
    } else if (Text.substr(At).starts_with("--")) {
      At = std::min(Text.find('\n', At), Text.size());
    } else if (Text.substr(At).starts_with("/*")) {
      const std::size_t End = Text.find("*/", At + 2);
      At = End == std::string_view::npos ? Text.size() : End + 2;
    } else {
      break;
    }
  }
  return At;
}

/// The place behind the quoted text that begins at Start; npos when it has no end.
std::size_t BehindQuoted(std::string_view Text, std::size_t Start) {
  const char Quote = Text[Start] == '[' ? ']' : Text[Start];
  for (std::size_t At = Start + 1; At < Text.size(); ++At) {
    if (Text[At] != Quote) continue;
    // Two quotes in a row are one of the text, and it goes on.
    if (Quote == ']' || At + 1 == Text.size() || Text[At + 1] != Quote) return At + 1;
    ++At;
  }
  return std::string_view::npos;
}

std::size_t BehindNumber(std::string_view Text, std::size_t At) {
  for (; At < Text.size(); ++At) {
    const bool IsSign = (Text[At] == '+' || Text[At] == '-') && (Text[At - 1] == 'e' || Text[At - 1] == 'E');
    if (!IsOfWord(Text[At]) && Text[At] != '.' && !IsSign) break;
  }
  return At;
}

TSQLiteToken Quoted(TKind Kind, std::string_view Text, std::size_t Start, std::size_t Quote) {
  const std::size_t End = BehindQuoted(Text, Quote);
  if (End == std::string_view::npos) return {TKind::Open, Text.substr(Start), Start};
  return {Kind, Text.substr(Start, End - Start), Start};
}

TSQLiteToken TokenAt(std::string_view Text, std::size_t Start) {
  const char First = Text[Start];
  const char Second = Start + 1 < Text.size() ? Text[Start + 1] : '\0';
  if (First == '\'') return Quoted(TKind::Text, Text, Start, Start);
  if (First == '"' || First == '`' || First == '[') return Quoted(TKind::Quoted, Text, Start, Start);
  if ((First == 'x' || First == 'X') && Second == '\'') return Quoted(TKind::Bytes, Text, Start, Start + 1);
  if (IsDigit(First) || (First == '.' && IsDigit(Second)))
    return {TKind::Number, Text.substr(Start, BehindNumber(Text, Start + 1) - Start), Start};
  std::size_t End = Start;
  while (End < Text.size() && IsOfWord(Text[End])) ++End;
  if (End > Start) return {TKind::Word, Text.substr(Start, End - Start), Start};
  return {TKind::Symbol, Text.substr(Start, 1), Start};
}

}  // namespace

bool TSQLiteToken::Is(std::string_view Keyword) const { return Kind == TKind::Word && SameAsciiWord(Text, Keyword); }

std::string TSQLiteToken::Name() const {
  if (Kind != TKind::Quoted && Kind != TKind::Text) return std::string(Text);
  const char Quote = Text.back();
  std::string Result;
  for (std::size_t At = 1; At + 1 < Text.size(); ++At) {
    Result += Text[At];
    if (Text[At] == Quote && Quote != ']') ++At;
  }
  return Result;
}

std::vector<TSQLiteToken> SQLiteTokens(std::string_view Statement) {
  std::vector<TSQLiteToken> Result;
  for (std::size_t At = BehindBlanks(Statement, 0); At < Statement.size(); At = BehindBlanks(Statement, At)) {
    Result.push_back(TokenAt(Statement, At));
    At = Result.back().Behind();
  }
  Result.push_back({TKind::End, {}, Statement.size()});
  return Result;
}

}  // namespace velkrund
