#pragma once

#include <string>
#include <vector>

#include "hosts/cli/line/Command.h"

namespace velkrund {

/// The manual page velkrund(1) of the program with these commands, for man's macros of troff. ASCII.
std::string ManualPage(const std::vector<TDeclaredCommand>& Commands);

}  // namespace velkrund
