#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "velkrund/platform/ormtools/Currency.h"
#include "velkrund/platform/ormtools/Dates.h"

namespace velkrund {

/// What a TKvVariant holds. The numbers appear in error messages and in stored structures: they are fixed.
enum class TKvKind : std::uint8_t {
  Null = 0,
  Byte = 2,      // 0 .. 255
  SmallInt = 3,  // signed 16 bits
  Word = 4,      // unsigned 16 bits
  Integer = 5,   // signed 32 bits
  LongWord = 6,  // unsigned 32 bits
  Double = 7,
  Extended = 8,  // kept as a double
  Char = 9,      // one UTF-16 unit, as UTF-8 text
  String = 10,   // UTF-8
  Boolean = 11,
  WordBool = 12,
  SysDate = 14,  // date-time at midnight
  SysTime = 15,  // microseconds since midnight
  DateTime = 16,
  Int64 = 18,
  UInt64 = 19,
  Currency = 20,
  AnsiChar = 21,    // one byte of the ANSI code page
  AnsiString = 22,  // bytes of the ANSI code page
  Bytes = 23,
};

/// What a kind is, for code that treats families of kinds alike.
constexpr bool IsAnsiKind(TKvKind Kind) { return Kind == TKvKind::AnsiChar || Kind == TKvKind::AnsiString; }
constexpr bool IsTextKind(TKvKind Kind) { return Kind == TKvKind::Char || Kind == TKvKind::String || IsAnsiKind(Kind); }
constexpr bool HasBytes(TKvKind Kind) { return IsTextKind(Kind) || Kind == TKvKind::Bytes; }
constexpr bool IsIntegerKind(TKvKind Kind) {
  return (Kind >= TKvKind::Byte && Kind <= TKvKind::LongWord) || Kind == TKvKind::Int64;
}
constexpr bool IsRealKind(TKvKind Kind) { return Kind == TKvKind::Double || Kind == TKvKind::Extended; }
constexpr bool IsBooleanKind(TKvKind Kind) { return Kind == TKvKind::Boolean || Kind == TKvKind::WordBool; }
/// Points in time: what AsDateTime reads.
constexpr bool IsMomentKind(TKvKind Kind) { return Kind == TKvKind::SysDate || Kind == TKvKind::DateTime; }

/// Whether Kind is an integer kind whose range holds Value.
constexpr bool HoldsInteger(TKvKind Kind, std::int64_t Value) {
  switch (Kind) {
    case TKvKind::Byte:
      return std::in_range<std::uint8_t>(Value);
    case TKvKind::SmallInt:
      return std::in_range<std::int16_t>(Value);
    case TKvKind::Word:
      return std::in_range<std::uint16_t>(Value);
    case TKvKind::Integer:
      return std::in_range<std::int32_t>(Value);
    case TKvKind::LongWord:
      return std::in_range<std::uint32_t>(Value);
    default:
      return Kind == TKvKind::Int64;
  }
}

/// A tagged value: what a field, a parameter or a structure's node holds. Assigning into a value reuses its buffer, so
/// that a loop over rows does not allocate. Copies own their bytes; a value filled by one of the Borrow operations
/// refers to bytes that belong to somebody else, for as long as that one says; moving it keeps it so. A value that was
/// moved from is null. Used by one thread at a time.
class TKvVariant {
 public:
  TKvVariant() = default;
  TKvVariant(const TKvVariant& Other) { Assign(Other); }
  TKvVariant(TKvVariant&& Other) noexcept { MoveFrom(Other); }
  TKvVariant& operator=(const TKvVariant& Other) {
    if (this != &Other) Assign(Other);
    return *this;
  }
  TKvVariant& operator=(TKvVariant&& Other) noexcept {
    if (this != &Other) MoveFrom(Other);
    return *this;
  }

  TKvKind Kind() const { return FKind; }
  bool IsNull() const { return FKind == TKvKind::Null; }

  void SetNull() { FKind = TKvKind::Null; }
  /// Kind: one of the integer kinds whose range holds Value.
  void SetInteger(std::int64_t Value, TKvKind Kind = TKvKind::Int64) { FKind = Kind, FNumber = Value; }
  void SetUnsigned(std::uint64_t Value) { FKind = TKvKind::UInt64, FNumber = static_cast<std::int64_t>(Value); }
  void SetReal(double Value, TKvKind Kind = TKvKind::Double) {
    FKind = Kind, FNumber = std::bit_cast<std::int64_t>(Value);
  }
  /// True is 1 as Boolean and -1 as WordBool.
  void SetBoolean(bool Value, TKvKind Kind = TKvKind::Boolean) {
    FKind = Kind, FNumber = !Value ? 0 : Kind == TKvKind::WordBool ? -1 : 1;
  }
  void SetCurrency(TCurrency Value) { FKind = TKvKind::Currency, FNumber = Value.TenThousandths; }
  void SetDateTime(TDateTime Value) { FKind = TKvKind::DateTime, FNumber = Value.Microseconds; }
  /// Value at midnight.
  void SetSysDate(TDateTime Value) { FKind = TKvKind::SysDate, FNumber = Value.Microseconds; }
  /// Microseconds since midnight.
  void SetSysTime(std::int64_t TimeOfDay) { FKind = TKvKind::SysTime, FNumber = TimeOfDay; }
  /// Kind: Char, String, AnsiChar, AnsiString or Bytes. Copies the bytes.
  void SetText(std::string_view Text, TKvKind Kind = TKvKind::String);
  void SetBytes(std::string_view Bytes) { SetText(Bytes, TKvKind::Bytes); }
  /// As SetText, but refers to the bytes instead of copying them.
  void BorrowText(std::string_view Text, TKvKind Kind = TKvKind::String) { FKind = Kind, FBytes = Text; }
  /// Starts a text in the value's own buffer, emptied, for the caller to append to; null until FinishText ends it.
  std::string& StartText() { return FKind = TKvKind::Null, FOwned.clear(), FOwned; }
  void FinishText(TKvKind Kind = TKvKind::String) { FKind = Kind, FBytes = FOwned; }

  // Readers of the kinds that they name; on another kind the result is meaningless, never undefined.
  std::int64_t AsInteger() const { return FNumber; }
  std::uint64_t AsUnsigned() const { return static_cast<std::uint64_t>(FNumber); }
  double AsReal() const { return std::bit_cast<double>(FNumber); }
  bool AsBoolean() const { return FNumber != 0; }
  TCurrency AsCurrency() const { return {FNumber}; }
  TDateTime AsDateTime() const { return {FNumber}; }
  std::int64_t AsTimeOfDay() const { return FNumber; }
  /// The bytes of a text or byte-array kind.
  std::string_view AsText() const { return HasBytes(FKind) ? FBytes : std::string_view(); }

  /// Appends the text form of any kind: numbers, amounts and dates as their system texts, booleans as TRUE or FALSE,
  /// texts and bytes as their bytes, null as nothing.
  void AppendAsText(std::string& Out) const;

  /// Same kind and same value: numbers bit for bit (so that NaN equals itself and -0.0 differs from 0.0), texts byte
  /// for byte.
  friend bool operator==(const TKvVariant& A, const TKvVariant& B);

 private:
  void Assign(const TKvVariant& Other);
  void MoveFrom(TKvVariant& Other) noexcept;

  TKvKind FKind = TKvKind::Null;
  std::int64_t FNumber = 0;  // the number; of a floating kind its bits
  std::string_view FBytes;   // FOwned or somebody else's bytes
  std::string FOwned;
};

}  // namespace velkrund
