#pragma once

#include <exception>
#include <string>

#include "hosts/cli/Session.h"

namespace velkrund {

/// An error as the command tells it: its own words for what a job says by the names of properties. In English.
TErrorFacts FactsForPrograms(const TCommand& Command, const std::exception& Error);
/// The same in the language of the user, as far as the command itself says it.
TErrorFacts FactsForPeople(const TCommand& Command, const std::exception& Error);

/// Says an error on one line of standard error: where, what, and what can be done about it with this command; with
/// --verbose what stands behind it too.
void SayError(const TSession& Session, const TErrorFacts& Error);

/// What can be done about a file in which a line feed alone ends lines.
std::string LineFeedRemedy(const std::string& File);

}  // namespace velkrund
