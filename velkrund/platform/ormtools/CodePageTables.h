#pragma once

#include <array>
#include <span>

namespace velkrund {

/// The upper half of a Windows code page, as TCodePage's constructor takes it.
struct TCodePageTable {
  int Number;
  std::array<char16_t, 128> Upper;
};

/// windows-1250 .. windows-1258, in this order.
std::span<const TCodePageTable> CodePageTables();

}  // namespace velkrund
