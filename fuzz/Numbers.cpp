// Any text as a number, an amount, a date: what is read agrees with the C library and is written and read again as the
// same value; and any eight bytes as such values, written and read.

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "fuzz/FuzzPlatform.h"
#include "velkrund/platform/ormtools/Currency.h"
#include "velkrund/platform/ormtools/Dates.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

// By bits, but for the content of a NaN.
bool Same(double A, double B) {
  return std::bit_cast<std::uint64_t>(A) == std::bit_cast<std::uint64_t>(B) || (std::isnan(A) && std::isnan(B));
}

void CheckReal(double Value) {
  Require(Same(StrToReal(Str(Value)).value(), Value));
  if (const auto Amount = RealToCurrency(Value)) Require(Same(CurrencyToReal(*Amount), Value));
  if (const auto Moment = DayNumberToDateTime(Value))
    Require(DayNumberToDateTime(DateTimeToDayNumber(*Moment)) == Moment);
}

void CheckAmount(TCurrency Value) {
  Require(StrToCurrency(CurrencyToStr(Value)) == Value);
  Require(Same(CurrencyToReal(Value), std::strtod(CurrencyToStr(Value).c_str(), nullptr)));
}

void CheckMoment(TDateTime Value) {
  if (Value < MinDateTime || Value > MaxDateTime) return;
  Require(SysStrToDateTime(DateTimeToSysStr(Value)) == Value);
  // Where a double is coarser than a microsecond, the day stays and the time is off by one step of it at most.
  const double DayNumber = DateTimeToDayNumber(Value);
  const auto Back = DayNumberToDateTime(DayNumber);
  const double Step = (std::nextafter(std::abs(DayNumber), 1e9) - std::abs(DayNumber)) * MicrosecondsPerDay;
  Require(Back && std::abs(static_cast<double>(Back->Microseconds - Value.Microseconds)) <= Step + 0.5);
}

void CheckText(const std::string& Text) {
  errno = 0;
  const long long Signed = std::strtoll(Text.c_str(), nullptr, 10);
  if (const auto Value = StrToInt64(Text)) Require(*Value == Signed && errno == 0);
  if (const auto Value = StrToInt32(Text)) Require(*Value == Signed && errno == 0);
  errno = 0;
  const unsigned long long Unsigned = std::strtoull(Text.c_str(), nullptr, 10);
  if (const auto Value = StrToUInt64(Text)) Require(*Value == Unsigned && errno == 0);
  const double Real = std::strtod(Text.c_str(), nullptr);
  std::size_t ErrorPosition = 0;
  if (const auto Value = StrToReal(Text, ErrorPosition)) {
    Require(Same(*Value, Real) && ErrorPosition == 0);
    CheckReal(*Value);
  } else {
    Require(ErrorPosition >= 1 && ErrorPosition <= Text.size() + 1);
  }
  if (const auto Value = StrToCurrency(Text)) {
    Require(CurrencyToReal(*Value) == Real);
    CheckAmount(*Value);
  }
  if (const auto Value = HexToUnsigned(Text)) Require(*Value == std::strtoull(Text.c_str(), nullptr, 16));
  if (const auto Value = StrToSysDate(Text)) CheckMoment(*Value);
  if (const auto Value = SysStrToDateTime(Text)) CheckMoment(*Value);
  if (const auto Value = StrToSysTime(Text)) {
    std::string Written;
    AppendSysTime(Written, *Value);
    Require(StrToSysTime(Written) == Value);
  }
}

}  // namespace
}  // namespace velkrund

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace velkrund;
  const std::string Text(reinterpret_cast<const char*>(Data), Size);
  CheckText(Text);
  std::int64_t Number = 0;
  std::memcpy(&Number, Data, std::min(Size, sizeof Number));
  CheckReal(std::bit_cast<double>(Number));
  CheckAmount({Number});
  CheckMoment({Number});
  CheckMoment({Number % MaxDateTime.Microseconds});
  return 0;
}
