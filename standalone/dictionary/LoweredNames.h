#pragma once

#include <string_view>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// The description with all names in lower case, as people write them for engines that fold names so. What Engine says
/// of it in words of its own goes, except for declared types and the words of the table: names stand in it as they
/// were.
TDicTableDescription WithLoweredNames(TDicTableDescription Table, std::string_view Engine);

}  // namespace velkrund
