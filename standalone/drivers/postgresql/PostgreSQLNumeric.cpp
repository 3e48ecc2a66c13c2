// The format (the engine's numeric_send): number of digits, weight of the first digit, sign, display scale, then the
// digits, all of 16 bits. A digit counts to 9999; the weight is its power of 10000.

#include "standalone/drivers/postgresql/PostgreSQLNumeric.h"

#include <algorithm>
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

/// Digits: of which the first has the weight Weight; zeros at both ends are none.
void AppendDigits(std::string& Out, const std::uint16_t* First, const std::uint16_t* Last, int Weight, bool IsNegative,
                  int Scale) {
  for (; First != Last && *First == 0; ++First) --Weight;
  while (Last != First && Last[-1] == 0) --Last;
  const bool IsZero = First == Last;
  const auto Append = [&](std::uint16_t Word) {
    char Bytes[2];
    WriteBigEndian(Bytes, Word);
    Out.append(Bytes, sizeof Bytes);
  };
  Append(static_cast<std::uint16_t>(Last - First));
  Append(static_cast<std::uint16_t>(IsZero ? 0 : Weight));
  Append(IsNegative && !IsZero ? Negative : 0);
  Append(static_cast<std::uint16_t>(Scale));
  for (; First != Last; ++First) Append(*First);
}

/// Up to four digits from At on, as if zeros followed.
std::optional<std::uint16_t> DigitAt(std::string_view Places, std::size_t At, std::size_t Count) {
  unsigned Result = 0;
  for (std::size_t I = 0; I < Count; ++I) {
    const char Place = At + I < Places.size() ? Places[At + I] : '0';
    if (Place < '0' || Place > '9') return std::nullopt;
    Result = Result * 10 + static_cast<unsigned>(Place - '0');
  }
  return static_cast<std::uint16_t>(Result);
}

}  // namespace

bool AppendPostgreSQLDecimal(std::string& Out, std::string_view Decimal) {
  constexpr std::size_t MaxPlaces = 1000;
  if (Decimal == "NaN") {
    Out.append("\0\0\0\0\xC0\0\0\0", HeaderSize);
    return true;
  }
  const bool IsNegative = Decimal.starts_with('-');
  if (IsNegative) Decimal.remove_prefix(1);
  if (Decimal.size() > MaxPlaces) return false;
  const std::size_t Point = std::min(Decimal.find('.'), Decimal.size());
  const std::string_view Whole = Decimal.substr(0, Point);
  const std::string_view Decimals = Decimal.substr(std::min(Point + 1, Decimal.size()));
  if (Whole.empty()) return false;
  std::array<std::uint16_t, MaxPlaces / DigitPlaces + 2> Digits;
  std::size_t Count = 0;
  const auto Take = [&](std::string_view Places, std::size_t At, std::size_t Size) {
    const std::optional<std::uint16_t> Digit = DigitAt(Places, At, Size);
    Digits[Count++] = Digit.value_or(0);
    return Digit.has_value();
  };
  const std::size_t Head = Whole.size() % DigitPlaces;
  if (Head != 0 && !Take(Whole, 0, Head)) return false;
  for (std::size_t At = Head; At < Whole.size(); At += DigitPlaces)
    if (!Take(Whole, At, DigitPlaces)) return false;
  const int Weight = static_cast<int>(Count) - 1;
  for (std::size_t At = 0; At < Decimals.size(); At += DigitPlaces)
    if (!Take(Decimals, At, DigitPlaces)) return false;
  AppendDigits(Out, Digits.data(), Digits.data() + Count, Weight, IsNegative, static_cast<int>(Decimals.size()));
  return true;
}

void AppendPostgreSQLAmount(std::string& Out, TCurrency Amount) {
  constexpr int MaxDigits = 5;
  const auto Bits = static_cast<std::uint64_t>(Amount.TenThousandths);
  std::uint64_t Left = Amount.TenThousandths < 0 ? 0 - Bits : Bits;
  std::array<std::uint16_t, MaxDigits> Digits;
  // Four places behind the point are one digit, the last.
  for (std::size_t I = MaxDigits; I-- > 0; Left /= Base) Digits[I] = static_cast<std::uint16_t>(Left % Base);
  int Scale = 0;
  for (unsigned Rest = Digits.back(), Place = Base / 10; Rest != 0; Rest %= Place, Place /= 10) ++Scale;
  AppendDigits(Out, Digits.data(), Digits.data() + MaxDigits, MaxDigits - 2, Amount.TenThousandths < 0, Scale);
}

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
