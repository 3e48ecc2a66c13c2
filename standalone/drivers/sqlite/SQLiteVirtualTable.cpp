// Arguments stand between commas: names of columns with words behind them, and options "key=value". A value is a word
// or a text between quotes of any kind; inside, the quotes are doubled.

#include "standalone/drivers/sqlite/SQLiteVirtualTable.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// What ends a text that begins with the character; 0: it begins none.
char ClosingQuote(char Opening) {
  if (Opening == '[') return ']';
  return Opening == '\'' || Opening == '"' || Opening == '`' ? Opening : '\0';
}

/// The place behind the quoted text that begins at Start.
std::size_t BehindQuoted(std::string_view Text, std::size_t Start) {
  const char Quote = ClosingQuote(Text[Start]);
  for (std::size_t At = Start + 1; At < Text.size(); ++At) {
    if (Text[At] != Quote) continue;
    if (Quote == ']' || At + 1 == Text.size() || Text[At + 1] != Quote) return At + 1;
    ++At;
  }
  return Text.size();
}

std::string Unquoted(std::string_view Text) {
  if (Text.empty() || ClosingQuote(Text.front()) == '\0') return std::string(Text);
  const char Quote = ClosingQuote(Text.front());
  std::string Result;
  for (std::size_t At = 1; At + 1 < Text.size(); ++At) {
    Result += Text[At];
    if (Text[At] == Quote && Text[At + 1] == Quote) ++At;
  }
  return Result;
}

/// Takes a name or word off the front of Text, quoted or up to a blank or a bracket.
std::string TakeWord(std::string_view& Text) {
  Text.remove_prefix(std::min(Text.find_first_not_of(" \t\r\n\f"), Text.size()));
  std::size_t End = std::min(Text.find_first_of(" \t\r\n\f("), Text.size());
  if (!Text.empty() && ClosingQuote(Text.front()) != '\0') End = BehindQuoted(Text, 0);
  std::string Result = Unquoted(Text.substr(0, End));
  Text.remove_prefix(End);
  return Result;
}

std::vector<std::string_view> Arguments(std::string_view Text) {
  std::vector<std::string_view> Result;
  int Depth = 0;
  std::size_t Start = 0;
  for (std::size_t At = 0; At < Text.size();) {
    const char C = Text[At];
    if (ClosingQuote(C) != '\0') {
      At = BehindQuoted(Text, At);
      continue;
    }
    if (C == '(' && ++Depth == 1) Start = At + 1;
    if ((C == ',' && Depth == 1) || (C == ')' && --Depth == 0)) {
      Result.push_back(Text.substr(Start, At - Start));
      Start = At + 1;
    }
    ++At;
  }
  return Result;
}

/// The options among the arguments, by key in lower case.
std::map<std::string, std::string> Options(std::string_view Text) {
  std::map<std::string, std::string> Result;
  for (const std::string_view Argument : Arguments(Text)) {
    const std::size_t Equals = Argument.find('=');
    if (Equals == std::string_view::npos) continue;
    Result.emplace(LowerCase(Trim(Argument.substr(0, Equals))), Unquoted(Trim(Argument.substr(Equals + 1))));
  }
  return Result;
}

}  // namespace

TSQLiteVirtualTable ReadVirtualTable(std::string_view Declaration) {
  TSQLiteVirtualTable Result;
  for (int Word = 0; Word < 3; ++Word) TakeWord(Declaration);  // CREATE VIRTUAL TABLE
  TakeWord(Declaration);
  TakeWord(Declaration);  // USING
  const std::string Module = LowerCase(TakeWord(Declaration));
  const bool IsSpatial = Module == "rtree" || Module == "rtree_i32";
  if (!IsSpatial && Module != "fts3" && Module != "fts4" && Module != "fts5") return Result;
  Result.Kind = TTableKind::Extension;
  // The oldest of them takes what looks like an option for a column.
  if (IsSpatial) return Result;
  Result.HasRowNumbers = true;
  if (Module == "fts3") return Result;
  std::map<std::string, std::string> Known = Options(Declaration);
  Result.LanguageColumn = Module == "fts4" ? Known["languageid"] : std::string();
  if (const auto Content = Known.find("content"); Content != Known.end()) {
    Result.Source = Content->second;
    Result.Kind = Result.Source.empty() ? TTableKind::IndexAlone : TTableKind::IndexOfTable;
  }
  return Result;
}

}  // namespace velkrund
