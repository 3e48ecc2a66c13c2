#pragma once

#include <optional>

#include "jobs/files/InputFile.h"
#include "standalone/databases/StandaloneManager.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// The tree that a structure section brings, read beforehand and stored nowhere; nothing for one that cannot be read,
/// which its import will say, or has no nodes. EAbort passes.
std::optional<TDSPNode> TreeOfSection(TStandaloneManager& Manager, TInputFile& Input, int Index);

}  // namespace velkrund
