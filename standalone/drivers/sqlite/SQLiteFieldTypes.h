#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

struct TSQLiteFieldType {
  TDicFieldType Type = TDicFieldType::Any;
  std::optional<int> Size = {}, Scale = {};
};

/// What a declared type stands for: what the driver moves its values as decides.
TSQLiteFieldType FieldTypeOf(std::string_view DeclaredType);

/// The type that a column for such a field is declared with: its affinity keeps every value of the field as it is, and
/// the driver moves the values as the kind that the field's other engines move them as. Empty: none is declared. An
/// automatic key is declared otherwise.
std::string DeclaredTypeFor(const TDicField& Field);

/// Whether the engine keeps the numbers of such a column as texts, and compares them as such unless they are cast.
bool KeepsNumbersAsTexts(TDicFieldType Type, std::string_view DeclaredType);

}  // namespace velkrund
