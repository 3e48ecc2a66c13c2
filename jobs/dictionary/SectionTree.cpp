#include "jobs/dictionary/SectionTree.h"

#include <utility>

#include "standalone/discard/DiscardManager.h"
#include "standalone/structures/MemoryStructures.h"
#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {

std::optional<TDSPNode> TreeOfSection(TStandaloneManager& Manager, TInputFile& Input, int Index) {
  TMemoryStructures Structures;
  try {
    TDiscardManager Discard(Manager);
    const TServiceGuard<TApplicationManager> ManagerGuard(&Discard);
    const TServiceGuard<TDSPContainer> StructuresGuard(&Structures);
    const std::unique_ptr<TEIObject> Object = Input.File().CreateEIObject(Index);
    Input.File().ImportObject(*Object);
    const auto& Section = dynamic_cast<const TEIDSPStructureCommon&>(*Object);
    const TDSPNode* const Tree = Structures.Find(Section.Item.ObjectName, Section.Item.ObjectType);
    if (!Tree || Tree->GetCount() == 0) return std::nullopt;
    std::optional<TDSPNode> Result(std::in_place);
    Result->Assign(*Tree);
    return Result;
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    // Nobody needs it to describe anything.
  }
  return std::nullopt;
}

}  // namespace velkrund
