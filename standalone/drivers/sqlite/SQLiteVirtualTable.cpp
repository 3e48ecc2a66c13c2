// Arguments stand between commas: names of columns with words behind them, and options "key=value". A value is a word
// or a text between quotes of any kind; inside, the quotes are doubled.

#include "standalone/drivers/sqlite/SQLiteVirtualTable.h"

#include <map>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteTokens.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

/// What stands between the commas of the first pair of brackets.
std::vector<std::string_view> Arguments(std::string_view Text) {
  std::vector<std::string_view> Result;
  int Depth = 0;
  std::size_t Start = 0;
  for (const TSQLiteToken& Token : SQLiteTokens(Text)) {
    if (Token.IsSymbol('(') && ++Depth == 1) Start = Token.Behind();
    if ((Token.IsSymbol(',') && Depth == 1) || (Token.IsSymbol(')') && --Depth == 0)) {
      Result.push_back(Text.substr(Start, Token.Start - Start));
      Start = Token.Behind();
    }
  }
  return Result;
}

std::string Unquoted(std::string_view Text) {
  const TSQLiteToken First = SQLiteTokens(Text).front();
  return First.Behind() == Text.size() ? First.Name() : std::string(Text);
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
  constexpr std::size_t PlaceOfModule = 5;  // CREATE VIRTUAL TABLE name USING module
  const std::vector<TSQLiteToken> Tokens = SQLiteTokens(Declaration);
  if (Tokens.size() <= PlaceOfModule) return Result;
  Result.Using = Declaration.substr(Tokens[PlaceOfModule - 1].Start);
  const std::string Module = LowerCase(Tokens[PlaceOfModule].Name());
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
