#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/structures/DSPValueType.h"

namespace velkrund {

// What both versions have in common in the texts of values.

[[noreturn]] void InvalidNodeValue(std::string_view Text, TDSPValueType Type);

/// What stands between the quotes. Readers raise InvalidNodeValue where the text is not of the form.
std::string_view InsideQuotes(std::string_view Text, TDSPValueType Type);
bool ReadTruth(std::string_view Text, TDSPValueType Type);
double ReadReal(std::string_view Text, TDSPValueType Type);

/// Reads a decimal of an integer kind; false when it is none, or outside the kind's range.
bool ReadInteger(std::string_view Text, TKvKind Kind, TKvVariant& Value);
/// The same for a node: EConvertError for what is no integer of the type, one outside its range too.
void ReadNodeInteger(std::string_view Text, TDSPValueType Type, TKvVariant& Value);

/// Bytes as pairs of hexadecimal digits with one blank between: "0A FF 10".
void AppendHexBytes(std::string& Out, std::string_view Bytes);
/// Reads them; what stands between the pairs is not looked at. EDSPUtilError for a text of no such length,
/// EConvertError for digits that are none.
void ReadHexBytes(std::string_view Text, TKvVariant& Value);

}  // namespace velkrund
