#pragma once

#include <string>
#include <vector>

#include "jobs/run/ExportJob.h"
#include "jobs/structures/StructureSearch.h"
#include "velkrund/dsp/DSPStructureOperations.h"

namespace velkrund {

/// Saves stored structures as sections of a file, named after type and name: "CLIENTS (12)", of a part "CLIENTS (12)
/// Columns", so that it does not take the place of the whole.
class TJobExportStructures final : public TExportJob {
 public:
  TJobExportStructures() : TExportJob("structure") {}

  std::vector<std::string> Names;     // none: all structures, or all of the type
  std::int32_t ObjectType = AnyType;  // a name that structures of several types have is an error then
  std::string RootNode;               // of one structure: only this node with all below it

  void CheckSettings() const override;

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  bool Several() const override { return Names.size() != 1; }
  std::vector<TItem> PlanItems() override;
  TExportUtilOperation& OperationFor(const TItem& Item) override;

 private:
  std::string NameOfSection(const TStructureId& Structure) const;

  TUOExportDSPStructure FOperation;
};

using TJobExportStructuresInterface = TJobInterface<TJobExportStructures>;

}  // namespace velkrund
