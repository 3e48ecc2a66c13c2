#include "velkrund/platform/ormtools/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

#include "velkrund/platform/ormtools/HexDigits.h"

namespace velkrund {
namespace {

bool IsDigit(char Character) { return Character >= '0' && Character <= '9'; }

/// The numbers from 00 to 99, one behind the other.
constexpr auto DigitPairs = [] {
  std::array<char, 200> Pairs{};
  for (std::size_t Number = 0; Number < 100; ++Number) {
    Pairs[2 * Number] = static_cast<char>('0' + Number / 10);
    Pairs[2 * Number + 1] = static_cast<char>('0' + Number % 10);
  }
  return Pairs;
}();

void AppendWhole(std::string& Out, std::uint64_t Value, bool Negative) {
  char Buffer[24];
  char* const End = Buffer + sizeof Buffer;
  char* First = End;
  for (; Value >= 100; Value /= 100) std::memcpy(First -= 2, &DigitPairs[2 * (Value % 100)], 2);
  if (Value >= 10)
    std::memcpy(First -= 2, &DigitPairs[2 * Value], 2);
  else
    *--First = static_cast<char>('0' + Value);
  if (Negative) *--First = '-';
  Out.append(First, End);
}

template <typename TNumber>
std::optional<TNumber> ParseWhole(std::string_view Text, int Base) {
  TNumber Value{};
  const char* const End = Text.data() + Text.size();
  const auto [Stop, Error] = std::from_chars(Text.data(), End, Value, Base);
  if (Error != std::errc() || Stop != End) return std::nullopt;
  return Value;
}

template <typename TNumber>
std::optional<TNumber> ParseSigned(std::string_view Text) {
  if (Text.size() > 1 && Text[0] == '+' && IsDigit(Text[1])) Text.remove_prefix(1);
  return ParseWhole<TNumber>(Text, 10);
}

/// A walk over the text of a real, to say where it stops being one and to size what a double cannot hold.
class TRealScanner {
 public:
  explicit TRealScanner(std::string_view Text) : FText(Text) {}

  /// The number of bytes that can begin a real; Complete tells whether they are one. A text that is not complete fails
  /// at the byte behind them.
  std::size_t Scan() {
    SkipSign();
    if (AtWord('I')) return ScanWord("INF");
    if (AtWord('N')) return ScanWord("NAN");
    ScanMantissa();
    if (Complete && FAt < FText.size() && (FText[FAt] == 'e' || FText[FAt] == 'E')) ScanExponent();
    return FAt;
  }

  bool Complete = false;
  char Word = 0;  // 'I' or 'N' for INF and NAN
  bool Negative = false;
  bool Nonzero = false;  // some digit before the exponent is not 0
  /// Power of ten of the first digit that is not zero; saturated.
  std::int64_t Magnitude() const { return FLeading + FExponent; }

 private:
  bool AtWord(char Letter) const { return FAt < FText.size() && (FText[FAt] & ~0x20) == Letter; }

  void SkipSign() {
    if (FAt >= FText.size() || (FText[FAt] != '-' && FText[FAt] != '+')) return;
    Negative = FText[FAt] == '-';
    ++FAt;
  }

  std::size_t ScanWord(std::string_view Expected) {
    std::size_t Matched = 0;
    while (Matched < Expected.size() && AtWord(Expected[Matched])) ++Matched, ++FAt;
    Complete = Matched == Expected.size();
    Word = Expected[0];
    return FAt;
  }

  void ScanMantissa() {
    bool Point = false;
    for (; FAt < FText.size(); ++FAt) {
      if (FText[FAt] == '.' && !Point) {
        Point = true;
      } else if (IsDigit(FText[FAt])) {
        Complete = true;
        Nonzero |= FText[FAt] != '0';
        if (Nonzero && !Point) ++FLeading;
        if (!Nonzero && Point) --FLeading;
      } else {
        break;
      }
    }
  }

  void ScanExponent() {
    ++FAt;
    const bool Minus = FAt < FText.size() && FText[FAt] == '-';
    if (Minus || (FAt < FText.size() && FText[FAt] == '+')) ++FAt;
    Complete = false;
    for (; FAt < FText.size() && IsDigit(FText[FAt]); ++FAt) {
      Complete = true;
      FExponent =
          std::min<std::int64_t>(FExponent * 10 + (FText[FAt] - '0'), std::numeric_limits<std::int64_t>::max() / 16);
    }
    if (Minus) FExponent = -FExponent;
  }

  std::string_view FText;
  std::size_t FAt = 0;
  std::int64_t FLeading = 0;
  std::int64_t FExponent = 0;
};

/// For texts that from_chars does not take whole: words, mistakes, and what lies beyond the range of a double.
std::optional<double> ParseUnusualReal(std::string_view Text, std::size_t& ErrorPosition) {
  TRealScanner Scanner(Text);
  const std::size_t Accepted = Scanner.Scan();
  if (!Scanner.Complete || Accepted != Text.size()) {
    ErrorPosition = Accepted + 1;
    return std::nullopt;
  }
  // Its text has no sign, so that there is one of it.
  if (Scanner.Word == 'N') return std::numeric_limits<double>::quiet_NaN();
  double Value = 0;
  if (Scanner.Word == 'I' || (Scanner.Nonzero && Scanner.Magnitude() > 0))
    Value = std::numeric_limits<double>::infinity();
  return Scanner.Negative ? -Value : Value;
}

}  // namespace

void AppendInteger(std::string& Out, std::int64_t Value) {
  const auto Bits = static_cast<std::uint64_t>(Value);
  AppendWhole(Out, Value < 0 ? 0 - Bits : Bits, Value < 0);
}
void AppendUnsigned(std::string& Out, std::uint64_t Value) { AppendWhole(Out, Value, false); }

void AppendReal(std::string& Out, double Value) {
  if (!std::isfinite(Value)) {
    Out += std::isnan(Value) ? "NAN" : Value < 0 ? "-INF" : "INF";
    return;
  }
  char Buffer[40];
  char* End = std::to_chars(Buffer, Buffer + sizeof Buffer, Value).ptr;
  if (std::none_of(Buffer, End, [](char Character) { return Character == '.' || Character == 'e'; })) {
    *End++ = '.';
    *End++ = '0';
  }
  Out.append(Buffer, End);
}

std::string Str(double Value) {
  std::string Out;
  AppendReal(Out, Value);
  return Out;
}

std::optional<std::int64_t> StrToInt64(std::string_view Text) { return ParseSigned<std::int64_t>(Text); }
std::optional<std::int32_t> StrToInt32(std::string_view Text) { return ParseSigned<std::int32_t>(Text); }

std::optional<std::uint64_t> StrToUInt64(std::string_view Text) {
  if (Text.starts_with('-')) {
    // Minus zero is in range.
    const auto Value = StrToInt64(Text);
    if (Value != 0) return std::nullopt;
    return 0;
  }
  return ParseSigned<std::uint64_t>(Text);
}

std::optional<double> StrToReal(std::string_view Text, std::size_t& ErrorPosition) {
  ErrorPosition = 0;
  const char* First = Text.data();
  const char* const End = First + Text.size();
  if (First != End && *First == '+') ++First;
  const char* Digit = First != End && *First == '-' && First == Text.data() ? First + 1 : First;
  if (Digit != End && (IsDigit(*Digit) || *Digit == '.')) {
    double Value = 0;
    const auto [Stop, Error] = std::from_chars(First, End, Value);
    if (Error == std::errc() && Stop == End) return Value;
  }
  return ParseUnusualReal(Text, ErrorPosition);
}

std::optional<double> StrToReal(std::string_view Text) {
  std::size_t ErrorPosition = 0;
  return StrToReal(Text, ErrorPosition);
}

std::optional<std::uint64_t> HexToUnsigned(std::string_view Text) {
  if (Text.size() > 16) return std::nullopt;
  return ParseWhole<std::uint64_t>(Text, 16);
}

void AppendHex(std::string& Out, std::string_view Bytes) {
  const std::size_t Start = Out.size();
  Out.resize(Start + 2 * Bytes.size());
  EncodeHex(Bytes, Out.data() + Start);
}

}  // namespace velkrund
