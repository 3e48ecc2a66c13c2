#pragma once

#include <string_view>
#include <vector>

#include "standalone/drivers/ScriptWriter.h"

namespace velkrund {

/// The description with all names in lower case, as people write them for engines that fold names so. What Engine says
/// of it in words of its own has the names as they were: such a part is taken out, and Gaps says which. Declared types
/// and the words of the table stay.
TDicTableDescription WithLoweredNames(TDicTableDescription Table, std::string_view Engine,
                                      std::vector<TScriptGap>& Gaps);

}  // namespace velkrund
