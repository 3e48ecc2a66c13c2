#include "velkrund/platform/structures/DSPValueType.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

bool IsWholeCharacter(const TKvVariant& Value) {
  if (Value.Kind() == TKvKind::Char) return Utf16Length(Value.AsText()) == 1;
  return Value.Kind() != TKvKind::AnsiChar || Value.AsText().size() == 1;
}

}  // namespace

bool FitsType(TDSPValueType Type, const TKvVariant& Value) {
  return (Type == TDSPValueType::Variant || Value.Kind() == KindOfType(Type)) && IsWholeCharacter(Value);
}

}  // namespace velkrund
