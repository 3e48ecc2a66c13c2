#pragma once

#include <functional>
#include <string>

#include "velkrund/platform/dictionary/TableDescription.h"

namespace velkrund {

/// Under which rows wait while their table is made again.
inline constexpr const char* TemporaryTableName = "TEMPTABLEFORRECREATE";

/// A description of the table for rows that wait: it takes the same values, and has no name, counter or tie that the
/// table itself has at that time. Its keys and conditions stay, so that what the new table would refuse is refused
/// before the old one goes. HasSource: whether the rows bring a value for the field.
TDicTableDescription TemporaryTable(TDicTableDescription Table,
                                    const std::function<bool(const TDicField& Field)>& HasSource);

}  // namespace velkrund
