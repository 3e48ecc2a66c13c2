#pragma once

#include "velkrund/platform/dictionary/ObjectDescriptions.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// Descriptions as the trees of structures, and back; docs/dictionary.md says how they are laid out. The same
/// description gives the same tree. Trees are read whatever the order of different names in them. Reading raises
/// EDSPError naming the node: one that is missing or of another type, a list of another length, a word that is not
/// known, a layout that is newer than this program. Writing replaces what Root holds.

void WriteTree(const TDicTableDescription& Table, TDSPNode& Root);
void WriteTree(const TDicViewDescription& View, TDSPNode& Root);
void WriteTree(const TDicProcedureDescription& Procedure, TDSPNode& Root);
void WriteTree(const TDicGeneratorDescription& Generator, TDSPNode& Root);

TDicTableDescription ReadTable(const TDSPNode& Root);
TDicViewDescription ReadView(const TDSPNode& Root);
/// Selects: it is of the type of those that return rows.
TDicProcedureDescription ReadProcedure(const TDSPNode& Root, bool Selects);
TDicGeneratorDescription ReadGenerator(const TDSPNode& Root);

}  // namespace velkrund
