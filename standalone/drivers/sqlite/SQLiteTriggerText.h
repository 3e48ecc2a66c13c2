#pragma once

#include <string>
#include <string_view>

namespace velkrund {

/// What a trigger is for, "INSERT", "DELETE" or "UPDATE", by the text that makes it; empty: the text is none of a
/// trigger.
std::string SQLiteTriggerEvent(std::string_view Text);

}  // namespace velkrund
