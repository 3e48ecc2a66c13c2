#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// The type of a node's value. The numbers are part of files and stores: they are fixed.
enum class TDSPValueType : std::uint8_t {
  None = 0,  // the node has no value
  String = 1,
  Integer = 2,  // signed 32 bits
  Boolean = 3,
  Double = 4,
  Variant = 5,  // a value of any kind
  Binary = 6,
  Deleted = 7,  // a marker: the node is to be removed where the tree is merged
  Byte = 8,
  SmallInt = 9,  // signed 16 bits
  Word = 10,     // unsigned 16 bits
  UInt32 = 11,
  Extended = 12,  // kept as a double
  Char = 13,      // one UTF-16 unit
  WordBool = 14,
  SysDate = 15,
  SysTime = 16,
  DateTime = 17,
  Int64 = 18,
  UInt64 = 19,
  Currency = 20,
  AnsiChar = 21,  // one byte of the ANSI code page
  AnsiString = 22,
};
inline constexpr int DSPValueTypeCount = 23;

/// The kind of the values of a type; Null for None and Deleted, which have none, and for Variant, which has them all.
constexpr TKvKind KindOfType(TDSPValueType Type) {
  constexpr std::array<TKvKind, DSPValueTypeCount> Kinds = {
      TKvKind::Null,     TKvKind::String, TKvKind::Integer,  TKvKind::Boolean,  TKvKind::Double,    TKvKind::Null,
      TKvKind::Bytes,    TKvKind::Null,   TKvKind::Byte,     TKvKind::SmallInt, TKvKind::Word,      TKvKind::LongWord,
      TKvKind::Extended, TKvKind::Char,   TKvKind::WordBool, TKvKind::SysDate,  TKvKind::SysTime,   TKvKind::DateTime,
      TKvKind::Int64,    TKvKind::UInt64, TKvKind::Currency, TKvKind::AnsiChar, TKvKind::AnsiString};
  return Kinds[static_cast<std::size_t>(Type)];
}

/// Whether a node of that type can hold Value: of the type's kind, a character being exactly one.
bool FitsType(TDSPValueType Type, const TKvVariant& Value);

}  // namespace velkrund
