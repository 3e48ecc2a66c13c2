#include "standalone/drivers/TextLines.h"

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
  for (const std::string& Line : Lines) Result += (&Line == &Lines.front() ? "" : "\n") + Line;
  return Result;
}

}  // namespace velkrund
