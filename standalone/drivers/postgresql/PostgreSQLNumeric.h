#pragma once

#include <string_view>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Reads a numeric in the engine's binary format: as an amount when AsCurrency and it is one, else as the text that the
/// engine writes for it, display scale and all. False when Bytes are no such value.
bool DecodePostgreSQLNumeric(std::string_view Bytes, bool AsCurrency, TKvVariant& Value);

}  // namespace velkrund
