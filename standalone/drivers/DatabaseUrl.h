#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velkrund {

/// A database's address: the scheme names the driver, the rest is the driver's own business.
struct TDatabaseUrl {
  std::string Scheme;  // lower case
  std::string Rest;    // what follows the colon, untouched: percent signs stay

  std::string Text() const { return Scheme + ":" + Rest; }
};

/// Cuts "scheme:rest". Nothing when Text has no scheme: two or more ASCII letters, digits, "+", "-" or ".", a letter
/// first.
std::optional<TDatabaseUrl> ParseDatabaseUrl(std::string_view Text);

/// Text as a part of an address: all but ASCII letters, digits and "-._~" as "%XX".
std::string PercentEncoded(std::string_view Text);

}  // namespace velkrund
