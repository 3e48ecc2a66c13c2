#pragma once

#include <string>

namespace velkrund::bench {

/// Registers what the engine alone needs, which no export or import can beat: "raw scan" reads every cell of the table,
/// "raw insert" puts its rows through one prepared insert in one transaction into the empty table of that name in
/// Target, and counts without the reading. Texts and bytes are touched as often as the engine touches them itself.
void RegisterRawEngine(const std::string& Source, const std::string& Table, const std::string& Target);

}  // namespace velkrund::bench
