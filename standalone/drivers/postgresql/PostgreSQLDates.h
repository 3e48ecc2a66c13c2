#pragma once

#include <cstdint>

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

// Days and microseconds as the engine counts them, from 2000-01-01. What our kinds do not cover (infinity, years before
// 1 or beyond 9999, the end of the day) becomes the text that the engine writes for it.

void SetPostgreSQLDate(std::int32_t Days, TKvVariant& Value);
void SetPostgreSQLTime(std::int64_t Microseconds, TKvVariant& Value);
/// Zoned: the moment is UTC, and its text says so.
void SetPostgreSQLTimestamp(std::int64_t Microseconds, bool Zoned, TKvVariant& Value);

}  // namespace velkrund
