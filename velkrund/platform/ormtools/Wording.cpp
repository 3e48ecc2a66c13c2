#include "velkrund/platform/ormtools/Wording.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::size_t NamedInMessages = 20;

}  // namespace

std::string Counted(std::int64_t Count, std::string_view Noun) {
  return Format("%d %s%s", Count, Noun, Count == 1 ? "" : "s");
}

std::string Joined(const std::vector<std::string>& Items) {
  std::string Result;
  for (const std::string& Item : Items) Result += (Result.empty() ? "" : ", ") + Item;
  return Result;
}

std::string JoinedInShort(std::vector<std::string> Items) {
  const std::size_t More = Items.size() - std::min(Items.size(), NamedInMessages);
  Items.resize(Items.size() - More);
  return Joined(Items) + (More > 0 ? Format(" and %d more", More) : "");
}

}  // namespace velkrund
