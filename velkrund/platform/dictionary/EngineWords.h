#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velkrund {

/// What one engine says of an item in its own words, where the neutral part does not say all.
struct TDicWords {
  std::optional<std::string> Text = {};  // a declared type, a whole statement, words of a table ...
  std::map<std::string, std::string, std::less<>> Parts = {};  // by name: "Default", "Collate", "Options" ...
  std::vector<std::string> Lines = {};                         // of a longer text, or the values of an enumeration

  bool operator==(const TDicWords&) const = default;

  /// Null when there is no part of that name.
  const std::string* Part(std::string_view Name) const {
    const auto Found = Parts.find(Name);
    return Found == Parts.end() ? nullptr : &Found->second;
  }
};

/// By engine: "sqlite", "postgresql", "odbc".
using TDicEngineWords = std::map<std::string, TDicWords, std::less<>>;

/// Null when the engine has none.
inline const TDicWords* WordsOf(const TDicEngineWords& Words, std::string_view Engine) {
  const auto Found = Words.find(Engine);
  return Found == Words.end() ? nullptr : &Found->second;
}

}  // namespace velkrund
