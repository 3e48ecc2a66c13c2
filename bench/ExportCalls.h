#pragma once

#include <string>

namespace velkrund::bench {

/// Registers the same export of a table's rows, its text thrown away, twice: "export without calls" with nobody to
/// report to or to ask, "export with calls" with a progress that keeps an eye on the clock and a wish to stop that is
/// asked through the operation, for every row, as hosts wire them. The rest of an export being as cheap as it gets,
/// their difference is the most that the calls can cost.
void RegisterExportCalls(const std::string& Source, const std::string& Table);

}  // namespace velkrund::bench
