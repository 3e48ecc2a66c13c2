#include "velkrund/platform/ormtools/Currency.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::uint64_t Scale = 10'000;
constexpr std::uint64_t Limit = std::uint64_t{1} << 63;  // magnitude of the lowest amount

bool IsDigit(char Character) { return Character >= '0' && Character <= '9'; }

/// Adds a digit to Value; false when it then exceeds the lowest amount's magnitude.
bool PushDigit(std::uint64_t& Value, char Digit) {
  const auto Added = static_cast<std::uint64_t>(Digit - '0');
  if (Value > (Limit - Added) / 10) return false;
  Value = Value * 10 + Added;
  return true;
}

/// Reads "digits" or "digits.digits" as ten-thousandths.
std::optional<std::uint64_t> ParseMagnitude(std::string_view Text) {
  std::uint64_t Value = 0;
  std::size_t At = 0;
  for (; At < Text.size() && IsDigit(Text[At]); ++At)
    if (!PushDigit(Value, Text[At])) return std::nullopt;
  if (At == 0) return std::nullopt;
  std::string_view Decimals;
  if (At < Text.size()) {
    if (Text[At] != '.' || At + 1 == Text.size()) return std::nullopt;
    Decimals = Text.substr(At + 1);
  }
  for (std::size_t Place = 0; Place < 4 || Place < Decimals.size(); ++Place) {
    const char Digit = Place < Decimals.size() ? Decimals[Place] : '0';
    if (!IsDigit(Digit)) return std::nullopt;
    if (Place < 4 ? !PushDigit(Value, Digit) : Digit != '0') return std::nullopt;
  }
  return Value;
}

}  // namespace

void AppendCurrency(std::string& Out, TCurrency Value) {
  const bool Negative = Value.TenThousandths < 0;
  const auto Bits = static_cast<std::uint64_t>(Value.TenThousandths);
  const std::uint64_t Magnitude = Negative ? 0 - Bits : Bits;
  if (Negative) Out += '-';
  AppendUnsigned(Out, Magnitude / Scale);
  std::uint64_t Rest = Magnitude % Scale;
  if (Rest == 0) return;
  Out += '.';
  for (std::uint64_t Place = Scale / 10; Rest != 0; Place /= 10) {
    Out += static_cast<char>('0' + Rest / Place);
    Rest %= Place;
  }
}

std::string CurrencyToStr(TCurrency Value) {
  std::string Out;
  AppendCurrency(Out, Value);
  return Out;
}

std::optional<TCurrency> StrToCurrency(std::string_view Text) {
  const bool Negative = Text.starts_with('-');
  if (Negative || Text.starts_with('+')) Text.remove_prefix(1);
  const std::optional<std::uint64_t> Magnitude = ParseMagnitude(Text);
  if (!Magnitude || (!Negative && *Magnitude == Limit)) return std::nullopt;
  return TCurrency{static_cast<std::int64_t>(Negative ? 0 - *Magnitude : *Magnitude)};
}

double CurrencyToReal(TCurrency Value) {
  // Both operands are exact, so the quotient is the nearest double.
  if (Value.TenThousandths >= -MaxExactInteger && Value.TenThousandths <= MaxExactInteger)
    return static_cast<double>(Value.TenThousandths) / static_cast<double>(Scale);
  const std::string Text = CurrencyToStr(Value);
  double Result = 0;
  std::from_chars(Text.data(), Text.data() + Text.size(), Result);
  return Result;
}

std::optional<TCurrency> RealToCurrency(double Value) {
  if (!(std::abs(Value) < 922337203685478.0)) return std::nullopt;
  // Whole part and fraction apart: each is exact, their product with the scale would not be.
  const double Whole = std::trunc(Value);
  const std::int64_t High = static_cast<std::int64_t>(Whole) * static_cast<std::int64_t>(Scale);
  const std::int64_t Low = std::llround((Value - Whole) * static_cast<double>(Scale));
  if (High > 0 ? Low > std::numeric_limits<std::int64_t>::max() - High
               : Low < std::numeric_limits<std::int64_t>::min() - High)
    return std::nullopt;
  const TCurrency Result{High + Low};
  // By bits: an amount has no negative zero.
  if (std::bit_cast<std::uint64_t>(CurrencyToReal(Result)) != std::bit_cast<std::uint64_t>(Value)) return std::nullopt;
  return Result;
}

}  // namespace velkrund
