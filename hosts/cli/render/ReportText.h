#pragma once

#include <string>

#include "jobs/report/Outcome.h"

namespace velkrund {

/// The end report of a run over sections, for people: a line for each, what a person has to know of it, and the sums.
std::string ReportText(const TOutcome& Outcome);

/// "left out".
std::string StateForPeople(TItemState State);

}  // namespace velkrund
