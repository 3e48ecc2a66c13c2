#include "standalone/values/StoredValues.h"

#include <bit>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr unsigned DigitBits = 7;
constexpr unsigned MoreDigits = 0x80;
constexpr unsigned NumberBits = 64;

/// Small numbers of either sign become small ones without.
std::uint64_t Unsigned(std::int64_t Number) {
  return (static_cast<std::uint64_t>(Number) << 1U) ^ static_cast<std::uint64_t>(Number >> 63);
}
std::int64_t Signed(std::uint64_t Number) { return static_cast<std::int64_t>((Number >> 1U) ^ (0 - (Number & 1U))); }

bool ReadBoolean(TStoredBytes& Bytes) {
  const unsigned Byte = Bytes.Byte();
  if (Byte > 1) throw EStoredValue("a truth value in it is neither 0 nor 1");
  return Byte == 1;
}

bool SetNumber(TKvKind Kind, std::int64_t Number, TKvVariant& Value) {
  switch (Kind) {
    case TKvKind::UInt64:
      Value.SetUnsigned(static_cast<std::uint64_t>(Number));
      return true;
    case TKvKind::Currency:
      Value.SetCurrency({Number});
      return true;
    case TKvKind::DateTime:
      Value.SetDateTime({Number});
      return true;
    case TKvKind::SysDate:
      Value.SetSysDate({Number});
      return true;
    case TKvKind::SysTime:
      Value.SetSysTime(Number);
      return true;
    default:
      Value.SetInteger(Number, Kind);
      return IsIntegerKind(Kind);
  }
}

}  // namespace

bool IsStorable(const TKvVariant& Value) {
  const TKvKind Kind = Value.Kind();
  const std::int64_t Number = Value.AsInteger();
  if (IsIntegerKind(Kind)) return HoldsInteger(Kind, Number);
  if (IsMomentKind(Kind)) return Number >= MinDateTime.Microseconds && Number <= MaxDateTime.Microseconds;
  return Kind != TKvKind::SysTime || (Number >= 0 && Number < MicrosecondsPerDay);
}

void AppendStoredNumber(std::string& Out, std::uint64_t Number) {
  for (; Number >= MoreDigits; Number >>= DigitBits) Out += static_cast<char>((Number & (MoreDigits - 1)) | MoreDigits);
  Out += static_cast<char>(Number);
}

void AppendStoredText(std::string& Out, std::string_view Text) {
  AppendStoredNumber(Out, Text.size());
  Out += Text;
}

void AppendStoredFixed(std::string& Out, std::uint64_t Number, std::size_t Size) {
  for (; Size > 0; --Size, Number >>= 8U) Out += static_cast<char>(Number & 0xFFU);
}

void AppendStoredValue(std::string& Out, const TKvVariant& Value) {
  const TKvKind Kind = Value.Kind();
  if (HasBytes(Kind))
    AppendStoredText(Out, Value.AsText());
  else if (IsBooleanKind(Kind))
    Out += Value.AsBoolean() ? '\1' : '\0';
  else if (IsRealKind(Kind))
    AppendStoredFixed(Out, std::bit_cast<std::uint64_t>(Value.AsReal()), sizeof(double));
  else if (Kind != TKvKind::Null)
    AppendStoredNumber(Out, Unsigned(Value.AsInteger()));
}

std::string_view TStoredBytes::Take(std::uint64_t Size) {
  if (Size > Left()) throw EStoredValue("it is cut off");
  const std::string_view Result = FBytes.substr(FPosition, static_cast<std::size_t>(Size));
  FPosition += Result.size();
  return Result;
}

std::uint64_t TStoredBytes::Number() {
  std::uint64_t Result = 0;
  for (unsigned Shift = 0;; Shift += DigitBits) {
    const std::uint64_t Digit = Byte();
    const std::uint64_t Bits = Digit & (MoreDigits - 1);
    if (Shift >= NumberBits || (Bits << Shift) >> Shift != Bits) throw EStoredValue("a number in it is too large");
    if (Digit == 0 && Shift > 0) throw EStoredValue("a number in it is longer than it needs to be");
    Result |= Bits << Shift;
    if (Digit == Bits) return Result;
  }
}

std::string_view TStoredBytes::Text() { return Take(Number()); }

std::uint64_t TStoredBytes::Fixed(std::size_t Size) {
  std::uint64_t Result = 0;
  unsigned Shift = 0;
  for (const char Byte : Take(Size)) {
    Result |= static_cast<std::uint64_t>(static_cast<unsigned char>(Byte)) << Shift;
    Shift += 8;
  }
  return Result;
}

void ReadStoredValue(TStoredBytes& Bytes, TKvKind Kind, TKvVariant& Value) {
  if (HasBytes(Kind)) return Value.BorrowText(Bytes.Text(), Kind);
  if (Kind == TKvKind::Null) return Value.SetNull();
  if (IsBooleanKind(Kind)) return Value.SetBoolean(ReadBoolean(Bytes), Kind);
  if (IsRealKind(Kind)) return Value.SetReal(std::bit_cast<double>(Bytes.Fixed(sizeof(double))), Kind);
  const std::int64_t Number = Signed(Bytes.Number());
  if (!SetNumber(Kind, Number, Value)) throw EStoredValue(Format("unknown value kind %d", static_cast<int>(Kind)));
  if (!IsStorable(Value)) throw EStoredValue(Format("a value of kind %d is out of range", static_cast<int>(Kind)));
}

}  // namespace velkrund
