#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "velkrund/platform/ormtools/LineReader.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

// The values of nodes of type Variant: "NULL", or a word for the kind and the value in parentheses, "INTEGER(5)".

/// Raises EDSPError: the version has no form for values of that kind.
[[noreturn]] void InvalidVariantKind(TKvKind Kind);

/// Reads a form's value, given its word in upper case; false when the text is no such value. EConvertError means the
/// same.
using TFormReader = std::function<bool(std::string_view Word, std::string_view Text, TKvVariant& Value)>;

/// Takes a form apart and hands word and value on. EDSPUtilError for what has not the form. A word that Reader does not
/// know it reports with UnknownVariantWord.
void ReadVariantForm(std::string_view Text, const TFormReader& Reader, TKvVariant& Value);
[[noreturn]] void UnknownVariantWord();

/// Version 200.
void AppendVariantForm(std::string& Out, const TKvVariant& Value, TTextLosses& Losses);
void ReadVariantForm(std::string_view Text, TKvVariant& Value);

}  // namespace velkrund
