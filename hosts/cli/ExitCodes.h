#pragma once

#include "jobs/report/Outcome.h"

namespace velkrund {

// Part of the program's interface.
inline constexpr int ExitDone = static_cast<int>(TEnd::Done);
inline constexpr int ExitFailed = static_cast<int>(TEnd::Failed);
inline constexpr int ExitUsage = static_cast<int>(TEnd::WrongSettings);
inline constexpr int ExitCancelled = static_cast<int>(TEnd::Cancelled);

}  // namespace velkrund
