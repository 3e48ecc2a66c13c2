#pragma once

#include <string>

#include "velkrund/platform/structures/DSPFormManager.h"
#include "velkrund/platform/structures/DSPImportOverwriteOptions.h"

namespace velkrund {

/// How an imported tree meets the stored one.
struct TDSPMergeOptions {
  TDSPImportOverwriteOptions Overwrite = TDSPImportOverwriteOptions::ioReplace;
  std::string RootNode;        // full name of the node that Tree stands for; empty: the root
  bool ClearRoot = true;       // what is stored there goes first
  bool KeepNamesakes = false;  // below the top: the first node of a name meets the first, the second the second
};

/// Merges Tree into the manager's, which takes its nodes. A node that is missing is added. Where both have one: a
/// stored value gives way (ioReplace, ioDifference) or stays (ioSkip); a node without a value takes an imported one,
/// unless ioSkip; two without values are merged child by child. ioDifference removes nodes marked Deleted from what it
/// takes, and a stored node without a value that the import marks so. Nodes of one name all
/// meet the first of that name, unless they are to be kept apart.
void MergeTree(TDSPFormManager& Manager, TDSPNode Tree, const TDSPMergeOptions& Options);

}  // namespace velkrund
