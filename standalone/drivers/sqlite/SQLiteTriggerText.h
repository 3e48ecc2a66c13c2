#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkrund {

/// What a trigger is for, "INSERT", "DELETE" or "UPDATE", by the text that makes it; empty: the text is none of a
/// trigger.
std::string SQLiteTriggerEvent(std::string_view Text);

/// The fields of UPDATE OF, without quotes; none where the text names none.
std::vector<std::string> SQLiteTriggerFields(std::string_view Text);

}  // namespace velkrund
