#pragma once

#include <string>
#include <utility>
#include <vector>

#include "standalone/drivers/ProcedureRun.h"

namespace velkrund {

/// What a person says of the parameters of a procedure, in any case of their names; those that have none go by their
/// places, from "1".
struct TArgumentTexts {
  std::vector<std::pair<std::string, std::string>> Values;
  std::vector<std::string> Nulls;  // those that are to be NULL
};

/// The texts as values of the parameters' types: numbers, true and false, dates and times as their system texts, bytes
/// as hexadecimal digits; of all other types as they are, for the engine to read. Raises EDatabaseError that names the
/// parameter for texts that are no such value, and those that there are where one is missing, unknown or there twice.
TProcedureArguments ArgumentsOf(const TDicProcedureDescription& Procedure, const TArgumentTexts& Texts);

}  // namespace velkrund
