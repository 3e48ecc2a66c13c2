#pragma once

#include <string>

#include "jobs/report/Outcome.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// An error for people, on one line: "FILE:LINE: ", the message unchanged, then in brackets what is known of the place
/// and does not stand in the message. No names of classes.
TLText LErrorLine(const TErrorFacts& Facts);
/// In English, for logs.
std::string ErrorLine(const TErrorFacts& Facts);

/// The rest, for who looks for the cause: class, code, the engine's code, the statement unless the message has it, and
/// the messages around the cause; a line each, indented.
std::string ErrorDetails(const TErrorFacts& Facts);

/// The same for programs; docs/json.md describes it.
TDocument ErrorDocument(const TErrorFacts& Facts);
/// A whole document about a run, or a command line, that an error has ended before it came to a result.
TDocument ErrorDocument(const TErrorFacts& Facts, const std::string& Command, TEnd End);

}  // namespace velkrund
