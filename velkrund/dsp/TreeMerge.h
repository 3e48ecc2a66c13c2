#pragma once

#include <string>

#include "velkrund/platform/structures/DSPFormManager.h"
#include "velkrund/platform/structures/DSPImportOverwriteOptions.h"

namespace velkrund {

/// How an imported tree meets the stored one.
struct TDSPMergeOptions {
  TDSPImportOverwriteOptions Overwrite = TDSPImportOverwriteOptions::ioReplace;
  std::string RootNode;   // full name of the node that Tree stands for; empty: the root
  bool ClearRoot = true;  // what is stored there goes first
};

/// Merges Tree into the manager's. A node that is missing is copied. Where both have one: a stored value gives way
/// (ioReplace, ioDifference) or stays (ioSkip); a node without a value takes an imported one, unless ioSkip; two
/// without values are merged child by child. ioDifference removes nodes marked Deleted from what it copies, and a
/// stored node without a value that the import marks so.
void MergeTree(TDSPFormManager& Manager, const TDSPNode& Tree, const TDSPMergeOptions& Options);

}  // namespace velkrund
