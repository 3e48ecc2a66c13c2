#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// What a field holds, in terms of every engine.
struct TNeutralType {
  TDicFieldType Type = TDicFieldType::Other;
  std::optional<int> Size = {}, Scale = {};

  bool operator==(const TNeutralType&) const = default;
};

/// Oid, Modifier: of a type that is no domain. IsText: an enumeration, or a type that an extension says is text.
TNeutralType NeutralTypeOf(std::int64_t Oid, std::int64_t Modifier, bool IsText);

/// How the engine declares what is neutral.
struct TPostgreSQLDeclaration {
  std::string Type;
  std::string Loss = {};  // why it does not hold, or does not limit, all that the neutral type says; empty: it does
  bool Harmless = true;   // of the loss: every value has a place, and comes back as it was
};

TPostgreSQLDeclaration DeclarationOf(const TNeutralType& Type);

}  // namespace velkrund
