#include "standalone/dictionary/ForeignText.h"
#include "velkrund/platform/dictionary/TextLines.h"

namespace velkrund {

std::vector<std::string> LinesOf(std::string_view Text) {
  return Text.empty() ? std::vector<std::string>() : SplitLines(Text);
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
  return Said ? JoinedLines(Said->Lines) : std::string();
}

std::string_view EngineTitle(std::string_view Engine) {
  if (Engine == "sqlite") return "SQLite";
  if (Engine == "postgresql") return "PostgreSQL";
  return Engine == "odbc" ? "ODBC" : Engine;
}

}  // namespace velkrund
