#pragma once

#include <vector>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// Gives the fields of foreign keys and those that they refer to one type each, the narrowest that holds what both
/// hold: types that were found by looking at the cells of each table may differ, and engines refuse such keys. Names
/// the columns of keys that are found to have NULLs, and so are no primary ones elsewhere.
void AlignScannedKeys(const std::vector<TDicTableDescription*>& Tables);

}  // namespace velkrund
