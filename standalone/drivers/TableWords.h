#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

// Words of CREATE TABLE that engines share.

/// The pattern with {table}, {items} and {words} filled in. Raises EDatabaseError for others, and where the first two
/// are missing. Table: quoted.
std::string FilledPattern(const std::string& Pattern, const std::string& Table, const std::string& Items,
                          const std::string& Words);

/// " DEFERRABLE INITIALLY DEFERRED"; empty: it is checked at once.
std::string DeferrableWords(TDicDeferrable Deferrable);

/// " ON DELETE CASCADE" of the event "DELETE"; empty: no action.
std::string ActionWords(std::string_view Event, TDicKeyAction Action);

}  // namespace velkrund
