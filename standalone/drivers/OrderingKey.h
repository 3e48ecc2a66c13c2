#pragma once

#include <vector>

#include "standalone/drivers/SchemaReader.h"

namespace velkrund {

/// The columns of the primary key in its order, as indexes into the description's columns.
std::vector<int> PrimaryKey(const TTableDescription& Table);

/// The columns, as indexes into the description's columns, by which rows come in the same order whatever engine holds
/// them: those of the primary key, else of a unique key whose columns cannot be NULL; of several the one with the
/// fewest columns, then the first by their names. Empty: there is none.
std::vector<int> OrderingKey(TSchemaReader& Schema, const TTableDescription& Table);

}  // namespace velkrund
