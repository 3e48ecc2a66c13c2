#pragma once

#include <functional>
#include <string>
#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// What an engine that makes a table lacks of the one that the table comes from, or the other way round.
struct TElsewhere {
  /// Whether one of them calculates with that number in more digits than the other.
  std::function<bool(const TDicField&)> HasOtherDigits;
  /// Whether values of that field are compared otherwise.
  std::function<bool(const TDicField&)> HasOtherOrder;
};

/// Why a neutral expression over those fields has another value there than here; empty: it has the same. Computed: the
/// field that keeps the value; null: none does. Raises ENotNeutral.
std::string OtherValueOf(const std::string& Neutral, const std::vector<TDicField>& Fields, const TDicField* Computed,
                         const TElsewhere& Elsewhere);

}  // namespace velkrund
