#include "velkrund/platform/structures/DSPValueType.h"

#include <array>
#include <cstddef>

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::array<TKvKind, DSPValueTypeCount> Kinds = {
    TKvKind::Null,     TKvKind::String, TKvKind::Integer,  TKvKind::Boolean,  TKvKind::Double,    TKvKind::Null,
    TKvKind::Bytes,    TKvKind::Null,   TKvKind::Byte,     TKvKind::SmallInt, TKvKind::Word,      TKvKind::LongWord,
    TKvKind::Extended, TKvKind::Char,   TKvKind::WordBool, TKvKind::SysDate,  TKvKind::SysTime,   TKvKind::DateTime,
    TKvKind::Int64,    TKvKind::UInt64, TKvKind::Currency, TKvKind::AnsiChar, TKvKind::AnsiString};

bool IsWholeCharacter(const TKvVariant& Value) {
  if (Value.Kind() == TKvKind::Char) return Utf16Length(Value.AsText()) == 1;
  return Value.Kind() != TKvKind::AnsiChar || Value.AsText().size() == 1;
}

}  // namespace

TKvKind KindOfType(TDSPValueType Type) { return Kinds[static_cast<std::size_t>(Type)]; }

bool FitsType(TDSPValueType Type, const TKvVariant& Value) {
  return (Type == TDSPValueType::Variant || Value.Kind() == KindOfType(Type)) && IsWholeCharacter(Value);
}

}  // namespace velkrund
