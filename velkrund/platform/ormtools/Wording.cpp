#include "velkrund/platform/ormtools/Wording.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t NamedInMessages = 20;
constexpr char FormMark = '|';

/// The form that comes first for 1, second for 2 to 4, third for the rest, as languages with three forms have it.
std::size_t FormOfThree(std::uint64_t Count) {
  const std::uint64_t Tens = Count % 100, Ones = Count % 10;
  if (Tens / 10 == 1 || Ones == 0 || Ones > 4) return 2;
  return Ones == 1 ? 0 : 1;
}

}  // namespace

std::string_view FormFor(std::int64_t Count, std::string_view Forms) {
  // Also of the least number, whose opposite is none.
  const std::uint64_t Size = Count < 0 ? 0 - static_cast<std::uint64_t>(Count) : static_cast<std::uint64_t>(Count);
  const bool HasThree = std::count(Forms.begin(), Forms.end(), FormMark) > 1;
  const std::size_t Form = HasThree ? FormOfThree(Size) : (Count == 1 ? 0 : 1);
  for (std::size_t I = 0; I < Form && Forms.find(FormMark) != Forms.npos; ++I)
    Forms.remove_prefix(Forms.find(FormMark) + 1);
  return Forms.substr(0, Forms.find(FormMark));
}

std::string Counted(std::int64_t Count, std::string_view Noun) {
  return Format("%d %s%s", Count, Noun, Count == 1 ? "" : "s");
}

std::string Joined(const std::vector<std::string>& Items) {
  std::string Result;
  for (const std::string& Item : Items) Result += (Result.empty() ? "" : ", ") + Item;
  return Result;
}

std::string JoinedInShort(std::vector<std::string> Items, std::string_view MoreText) {
  const std::size_t More = Items.size() - std::min(Items.size(), NamedInMessages);
  Items.resize(Items.size() - More);
  return Joined(Items) + (More > 0 ? Format(MoreText, More) : "");
}

}  // namespace velkrund
