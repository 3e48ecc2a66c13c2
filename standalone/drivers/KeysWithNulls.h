#pragma once

#include <string_view>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// A primary key that has NULLs, as one engine lets it, is described as a unique key, which has them everywhere; words
/// of that engine say that it is the primary one there: "PRIMARY KEY", and behind it what else the engine says of it.
inline constexpr std::string_view PrimaryKeyWords = "PRIMARY KEY";

/// Whether the words of the unique key say so, for the engine.
bool IsPrimaryWithNulls(const TDicKey& Key, std::string_view Engine);
/// Such a key as the engine has it; any other as it is.
TDicKey KeyOfEngine(TDicKey Key, std::string_view Engine);
/// The reverse, of a primary key.
TDicKey KeyWithNulls(TDicKey Key, std::string_view Engine);

}  // namespace velkrund
