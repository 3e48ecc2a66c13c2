#pragma once

#include <string>
#include <string_view>

#include "velkrund/platform/database/SelectQuery.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

// Parameters of queries as texts. Types go by the words of KindWord, in any case. Bytes are "0x0AFF", all other values
// are as they are, texts without quotes. Errors are EDicUtilError.

/// Text: "TYPE:VALUE", or "TYPE" alone for NULL. What is behind the colon of a text type is the text, be it empty.
TQueryParameter ParameterOf(const std::string& Name, std::string_view Text);
/// Gives the parameters of a query, which is closed, their values: names, in any case, and texts as above.
void SetParameters(TSelectQuery& Query, const TStringPairs& Parameters);

/// "<Name|Type|Value>", NULL being an empty value. One that could not be read back is refused.
std::string ParameterLine(const TQueryParameter& Parameter);
/// What is wrong with such a line; empty: nothing.
std::string FaultOfParameterLine(std::string_view Line);

}  // namespace velkrund
