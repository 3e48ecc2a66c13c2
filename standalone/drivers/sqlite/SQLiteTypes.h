#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// How the engine converts what is stored into a column (https://www.sqlite.org/datatype3.html, section 3).
enum class TAffinity : std::uint8_t {
  None,  // stored as it comes
  Text,
  Integer,
  Numeric,
  Real,
};

/// Strict: the column's table is a STRICT one, where ANY means what it says.
TAffinity AffinityOf(std::string_view DeclaredType, bool Strict);

/// The kind that a declared type stands for. BOOLEAN, DATE, TIME, DATETIME, TIMESTAMP, DECIMAL, NUMERIC, MONEY and
/// CURRENCY, the last four with any length, lead to the kind of that meaning (those of amounts not in a column without
/// affinity, as MONEY BLOB); other names go by their affinity; Null where that says nothing.
TKvKind KindOf(std::string_view DeclaredType);

/// What a text would become in a column of numbers.
enum class TTextFate : std::uint8_t {
  StaysText,  // it is no number to the engine
  Integer,    // a number with the same text form: Value's integer
  Real,       // Value's double
  Changed,    // a number that would read back as another text
};

/// Affinity: Integer, Numeric or Real. Value is set for Integer and Real, to what has to be stored instead of the text.
TTextFate FateOfText(std::string_view Text, TAffinity Affinity, TKvVariant& Value);

/// Whether the engine's conversion reads Text as a number.
bool IsNumberText(std::string_view Text);

}  // namespace velkrund
