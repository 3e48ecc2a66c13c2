#include "standalone/dictionary/ForeignText.h"

namespace velkrund {

std::vector<std::string> LinesOf(std::string_view Text) {
  std::vector<std::string> Result;
  if (Text.empty()) return Result;
  for (std::size_t End = Text.find('\n'); End != std::string_view::npos; End = Text.find('\n')) {
    Result.emplace_back(Text.substr(0, End));
    Text.remove_prefix(End + 1);
  }
  Result.emplace_back(Text);
  return Result;
}

std::string_view ForeignEngine(const TDicEngineWords& Words, std::string_view Engine) {
  if (const TDicWords* const Own = WordsOf(Words, Engine); Own && !Own->Lines.empty()) return {};
  for (const auto& [Other, Said] : Words)
    if (!Said.Lines.empty()) return Other;
  return {};
}

std::string TextOf(const TDicEngineWords& Words, std::string_view Engine) {
  const std::string_view Foreign = ForeignEngine(Words, Engine);
  const TDicWords* const Said = WordsOf(Words, Foreign.empty() ? Engine : Foreign);
  std::string Result;
  if (!Said) return Result;
  for (const std::string& Line : Said->Lines) Result += Line + '\n';
  if (!Result.empty()) Result.pop_back();
  return Result;
}

std::string_view EngineTitle(std::string_view Engine) {
  if (Engine == "sqlite") return "SQLite";
  if (Engine == "postgresql") return "PostgreSQL";
  return Engine == "odbc" ? "ODBC" : Engine;
}

}  // namespace velkrund
