#include "standalone/dictionary/ForeignText.h"

#include "standalone/drivers/TextLines.h"

namespace velkrund {

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
