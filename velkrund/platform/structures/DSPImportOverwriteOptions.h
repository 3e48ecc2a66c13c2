#pragma once

namespace velkrund {

/// What becomes of a structure that exists already. The numbers are kept in settings: they stay.
enum class TDSPImportOverwriteOptions : int { ioSkip = 0, ioReplace = 1, ioDifference = 2 };

}  // namespace velkrund
