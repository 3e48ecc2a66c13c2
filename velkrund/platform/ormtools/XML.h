#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velkrund {

// Texts for XML 1.0 documents.

enum class TXMLPlace { Text, Attribute };

/// Appends Text as the content of an element, or as the value of an attribute, so that a reader of XML gives it back:
/// the five special characters as their names; a carriage return, in attributes also a line feed and a tab, which
/// readers would change, as numbers. Characters that XML cannot carry, and malformed UTF-8, become U+FFFD; returns how
/// many there were.
std::int64_t StrToXML(std::string& Out, std::string_view Text, TXMLPlace Place = TXMLPlace::Text);

}  // namespace velkrund
