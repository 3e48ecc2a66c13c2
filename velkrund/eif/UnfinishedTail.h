#pragma once

#include <cstdint>
#include <string_view>

#include "velkrund/platform/ormtools/Streams.h"

namespace velkrund {

/// The first line of a section that is not whole yet. It differs from that of a whole one in its first byte alone.
inline constexpr std::string_view UnfinishedMarker = ";SECTION]";

/// Where unfinished sections begin with which the stream ends, -1: it does not end so. They follow each other without
/// anything in between, the first line behind the marker is one that a writer begins a header with, or was not written
/// any more, and nothing but the beginning of another one stands behind the last. From: the begin of a line behind
/// which there is no section. The stream is at its end afterwards.
std::int64_t FindUnfinishedTail(TStream& Stream, std::int64_t From);

}  // namespace velkrund
