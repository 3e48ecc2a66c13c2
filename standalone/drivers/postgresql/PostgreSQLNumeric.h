#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Reads a numeric in the engine's binary format: as an amount when AsCurrency and it is one, else as the text that the
/// engine writes for it, display scale and all. False when Bytes are no such value.
bool DecodePostgreSQLNumeric(std::string_view Bytes, bool AsCurrency, TKvVariant& Value);

/// Writes a numeric in that format, with the decimals that the text has, AppendCurrency's of an amount. False, and
/// nothing is written, for what is neither plain digits nor "NaN", and for a number of more than a thousand digits.
bool AppendPostgreSQLDecimal(std::string& Out, std::string_view Decimal);
void AppendPostgreSQLAmount(std::string& Out, TCurrency Amount);

}  // namespace velkrund
