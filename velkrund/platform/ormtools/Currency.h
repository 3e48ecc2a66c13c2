#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velkrund {

/// A fixed-point amount with four decimals: an integer of ten-thousandths, -922337203685477.5808 ..
/// 922337203685477.5807. It never passes through a double unless asked to.
struct TCurrency {
  std::int64_t TenThousandths = 0;
  friend constexpr auto operator<=>(const TCurrency&, const TCurrency&) = default;
};

/// Appends the amount in decimal, "." as separator, no thousands separator, no trailing zeros and no point when the
/// amount is whole: "12.5", "-0.0001", "7".
void AppendCurrency(std::string& Out, TCurrency Value);
std::string CurrencyToStr(TCurrency Value);

/// Reads such a text, an optional sign and up to four decimals (more when they are zeros); nothing when the text is
/// no amount or does not fit exactly.
std::optional<TCurrency> StrToCurrency(std::string_view Text);

/// The double nearest to the amount, and the amount equal to a double: nothing unless converting back gives the same
/// double.
double CurrencyToReal(TCurrency Value);
std::optional<TCurrency> RealToCurrency(double Value);

}  // namespace velkrund
