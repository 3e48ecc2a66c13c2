#pragma once

#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

/// How a message about a copy within a database begins.
std::string CopyFailed(const TTableInfo& Source, const TTableInfo& Target);

/// Raises EDatabaseError when rows cannot be copied into these columns of Target.
void CheckTakesCopies(const TTableInfo& Source, const TTableDescription& Target, std::span<const TColumnPair> Pairs,
                      bool ReadOnly);

/// Raises EDatabaseError when there are some. Actions: the names of triggers, and of rules, that a copied row would set
/// off.
void CheckNothingActs(const TTableInfo& Source, const TTableInfo& Target, const std::vector<std::string>& Actions);

}  // namespace velkrund
