#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/eif/EIErrors.h"

namespace velkrund {

/// How writers end a line.
inline constexpr std::string_view LineEnd = "\r\n";

/// The error, where a run is strict about text, of a line read or a text written that lost characters to its encoding:
/// EEIError naming the place. Position: byte offset behind the line / before it.
[[noreturn]] void RefuseTextRead(std::int64_t Position);
[[noreturn]] void RefuseTextWritten(std::string_view Text, std::int64_t Position);

}  // namespace velkrund
