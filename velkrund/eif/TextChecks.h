#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/eif/EIErrors.h"

namespace velkrund {

/// How writers end a line.
inline constexpr std::string_view LineEnd = "\r\n";

/// To be called when a line read or a text written lost characters to its encoding: raises EEIError naming the place
/// when the application is strict about text, else does nothing. Position: byte offset behind the line / before it.
void CheckTextRead(std::int64_t Position);
void CheckTextWritten(std::string_view Text, std::int64_t Position);

}  // namespace velkrund
