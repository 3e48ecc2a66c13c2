#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

std::string TScriptWriter::ShellText(const TScriptStatement& Statement) const {
  // A comment in the last line would take the semicolon with it.
  const std::size_t LastLine = Statement.Text.rfind('\n') + 1;
  const bool MayEndWithComment = Statement.Text.find("--", LastLine) != std::string::npos;
  return Statement.Text + (MayEndWithComment ? "\n;\n" : ";\n");
}

}  // namespace velkrund
