// The format (the engine's numeric_send): number of digits, weight of the first digit, sign, display scale, then the
// digits, all of 16 bits. A digit counts to 9999; the weight is its power of 10000.

#include "standalone/drivers/postgresql/PostgreSQLNumeric.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>

#include "standalone/drivers/postgresql/BigEndian.h"

namespace velkrund {
namespace {

constexpr std::size_t HeaderSize = 8;
constexpr std::uint64_t Base = 10'000;
constexpr int DigitPlaces = 4;
constexpr std::uint16_t Negative = 0x4000;
constexpr std::uint16_t NotANumber = 0xC000;
constexpr std::uint16_t PlusInfinity = 0xD000;
constexpr std::uint16_t MinusInfinity = 0xF000;

struct TNumber {
  int DigitCount;
  int Weight;
  std::uint16_t Sign;
  int Scale;
  const char* Digits;

  /// The digit of that power of 10000.
  unsigned At(int Power) const {
    const int Index = Weight - Power;
    return Index < 0 || Index >= DigitCount ? 0 : ReadBigEndian<std::uint16_t>(Digits + 2 * Index);
  }
};

/// Nothing when the number is no amount: too large, or with more decimals.
std::optional<TCurrency> ToCurrency(const TNumber& Number) {
  if (Number.DigitCount > 0 && Number.Weight - Number.DigitCount + 1 < -1) return std::nullopt;
  constexpr std::uint64_t Limit = std::numeric_limits<std::int64_t>::max();
  std::uint64_t Magnitude = 0;
  for (int Power = Number.DigitCount > 0 ? Number.Weight : -1; Power >= -1; --Power) {
    const std::uint64_t Digit = Number.At(Power);
    if (Magnitude > (Limit - Digit) / Base) return std::nullopt;
    Magnitude = Magnitude * Base + Digit;
  }
  const auto Amount = static_cast<std::int64_t>(Magnitude);
  return TCurrency{Number.Sign == Negative ? -Amount : Amount};
}

std::array<char, DigitPlaces> Places(unsigned Digit) {
  std::array<char, DigitPlaces> Result{};
  for (int I = DigitPlaces - 1; I >= 0; --I, Digit /= 10)
    Result[static_cast<std::size_t>(I)] = static_cast<char>('0' + Digit % 10);
  return Result;
}

void AppendNumber(std::string& Out, const TNumber& Number) {
  if (Number.Sign == Negative) Out += '-';
  const std::size_t Start = Out.size();
  for (int Power = Number.Weight; Power >= 0; --Power) {
    for (const char Place : Places(Number.At(Power)))
      if (Place != '0' || Out.size() > Start) Out += Place;
  }
  if (Out.size() == Start) Out += '0';
  if (Number.Scale == 0) return;
  Out += '.';
  const std::size_t End = Out.size() + static_cast<std::size_t>(Number.Scale);
  for (int Power = -1; Out.size() < End; --Power) {
    const auto Digits = Places(Number.At(Power));
    Out.append(Digits.data(), Digits.size());
  }
  Out.resize(End);
}

}  // namespace

bool DecodePostgreSQLNumeric(std::string_view Bytes, bool AsCurrency, TKvVariant& Value) {
  if (Bytes.size() < HeaderSize) return false;
  const auto Word = [&](std::size_t Index) { return ReadBigEndian<std::uint16_t>(Bytes.data() + 2 * Index); };
  const TNumber Number{Word(0), static_cast<std::int16_t>(Word(1)), Word(2), Word(3), Bytes.data() + HeaderSize};
  if (Bytes.size() != HeaderSize + 2 * static_cast<std::size_t>(Number.DigitCount)) return false;
  switch (Number.Sign) {
    case NotANumber:
      return Value.BorrowText("NaN"), true;
    case PlusInfinity:
      return Value.BorrowText("Infinity"), true;
    case MinusInfinity:
      return Value.BorrowText("-Infinity"), true;
    default:
      break;
  }
  if (AsCurrency) {
    if (const std::optional<TCurrency> Amount = ToCurrency(Number)) return Value.SetCurrency(*Amount), true;
  }
  AppendNumber(Value.StartText(), Number);
  Value.FinishText();
  return true;
}

}  // namespace velkrund
