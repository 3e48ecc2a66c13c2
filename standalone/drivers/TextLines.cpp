#include "standalone/drivers/TextLines.h"

#include <cstddef>

namespace velkrund {

std::vector<std::string> SplitLines(std::string_view Text) {
  std::vector<std::string> Result;
  for (std::size_t Start = 0;;) {
    const std::size_t End = Text.find('\n', Start);
    Result.emplace_back(Text.substr(Start, End - Start));
    if (End == std::string_view::npos) return Result;
    Start = End + 1;
  }
}

std::string JoinedLines(const std::vector<std::string>& Lines) {
  std::string Result;
  for (std::size_t I = 0; I < Lines.size(); ++I) Result += (I == 0 ? "" : "\n") + Lines[I];
  return Result;
}

}  // namespace velkrund
