#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hosts/cli/line/Command.h"

namespace velkrund {

/// What is meant by an option that is not one of these: "; did you mean '--table'?"; empty when none is near.
std::string OptionHint(const std::string& Unknown, const std::vector<TOption>& Known);

/// Parses the arguments behind the words of a command into its options, and checks them, each and together. Raises
/// EUsage.
void ParseOptions(const TDeclaredCommand& Declared, TCommand& Command, const std::vector<std::string>& Arguments);

}  // namespace velkrund
