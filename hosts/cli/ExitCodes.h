#pragma once

namespace velkrund {

// Part of the program's interface.
inline constexpr int ExitDone = 0;
inline constexpr int ExitFailed = 1;
inline constexpr int ExitUsage = 2;
inline constexpr int ExitCancelled = 3;

}  // namespace velkrund
