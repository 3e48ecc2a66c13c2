#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/EngineWords.h"

namespace velkrund {

/// The engine whose text stands in for that of Engine, which has none of its own; empty where it has, and where no
/// engine has one.
std::string_view ForeignEngine(const TDicEngineWords& Words, std::string_view Engine);

/// The engine's own text, else the one that stands in for it. Empty: there is none.
std::string TextOf(const TDicEngineWords& Words, std::string_view Engine);

/// As people write its name: "PostgreSQL".
std::string_view EngineTitle(std::string_view Engine);

}  // namespace velkrund
