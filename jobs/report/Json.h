#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace velkrund {

/// Members stay in the order in which they were added.
using TJson = nlohmann::ordered_json;

/// The document as it is printed; bytes that are no UTF-8 are replaced.
inline std::string JsonText(const TJson& Document) {
  return Document.dump(2, ' ', false, TJson::error_handler_t::replace) + "\n";
}

}  // namespace velkrund
