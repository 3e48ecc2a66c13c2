#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

/// Parameters as the catalogue keeps them, a line each, ended by a line feed: mode, type, size and scale as numbers,
/// "-" where there is none, separated by blanks, and the name behind one more. A default follows in a line of its own
/// that begins with "=". Words of engines are not kept. Raises EDatabaseError for names and defaults with line feeds.
std::string LinesOfParameters(const std::vector<TDicParameter>& Parameters);

/// The way back. Raises EDatabaseError for other lines.
std::vector<TDicParameter> ParametersOf(std::string_view Lines);

}  // namespace velkrund
