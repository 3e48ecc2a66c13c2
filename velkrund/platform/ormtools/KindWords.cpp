#include "velkrund/platform/ormtools/KindWords.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr int LastKind = static_cast<int>(TKvKind::Bytes);

}  // namespace

std::vector<std::string> KindWords() {
  std::vector<std::string> Result;
  for (int Number = 0; Number <= LastKind; ++Number)
    if (const std::string_view Word = KindWord(static_cast<TKvKind>(Number)); !Word.empty()) Result.emplace_back(Word);
  return Result;
}

std::optional<TKvKind> FindKindWord(std::string_view Word) {
  for (int Number = 0; !Word.empty() && Number <= LastKind; ++Number)
    if (const auto Kind = static_cast<TKvKind>(Number); SameText(KindWord(Kind), Word)) return Kind;
  return std::nullopt;
}

}  // namespace velkrund
