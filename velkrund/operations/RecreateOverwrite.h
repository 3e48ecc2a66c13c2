#pragma once

#include <string_view>

namespace velkrund {

/// What is decided beforehand about objects that are there already.
enum class TRecreateOverwrite : int { Ask = 0, Yes = 1, No = 2 };
inline constexpr std::string_view RecreateOverwriteNames[] = {"ask", "yes", "no"};

/// A question as one setting. TAsk: one with an FYes.
template <typename TAsk>
TRecreateOverwrite OverwriteOf(const TAsk& Ask) {
  if (Ask.FAlwaysAsk) return TRecreateOverwrite::Ask;
  return Ask.FYes ? TRecreateOverwrite::Yes : TRecreateOverwrite::No;
}

template <typename TAsk>
void SetOverwriteOf(TAsk& Ask, TRecreateOverwrite Overwrite) {
  Ask.FAlwaysAsk = Overwrite == TRecreateOverwrite::Ask;
  Ask.FYes = Overwrite == TRecreateOverwrite::Yes;
}

}  // namespace velkrund
