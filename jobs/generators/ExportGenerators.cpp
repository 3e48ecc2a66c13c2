#include "jobs/generators/ExportGenerators.h"

#include <exception>
#include <set>

#include "standalone/databases/ReadTransaction.h"
#include "standalone/dictionary/Generators.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {

namespace {

using TThis = TJobExportGenerators;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Names>("GeneratorNames", "the generators to save; empty: all of the database"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportGenerators");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportGeneratorsInterface", {&ExportJobProperties, Properties});

std::vector<TItem> TJobExportGenerators::PlanItems() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  TGapBook Gaps;
  const auto Generators = GeneratorsOf(Manager().Databases().Connection(DatabaseName), Gaps);
  std::vector<std::string> Known;
  for (const TDicGeneratorDescription& Generator : Generators->List()) Known.push_back(Generator.FullName());
  if (Names.empty() && Known.empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NoGenerators"));
  std::vector<TItem> Result;
  std::set<std::string> Seen;
  for (const std::string& Name : Names.empty() ? Known : Names) {
    const auto Found = Generators->Find(Name);
    TItem Item = Planned(Found ? Found->FullName() : Name);
    if (!Seen.insert(Item.Generator->Name).second) continue;
    if (!Found)
      LeaveOut(Item, std::make_exception_ptr(
                         EDatabaseError(Format("There is no generator '%s' in the database %s%s", Name, DatabaseText(),
                                               Known.empty() ? "" : ContentHint(Name, Known, ": it has ")))));
    Result.push_back(std::move(Item));
  }
  return Result;
}

TItem TJobExportGenerators::Planned(const std::string& Name) const {
  TItem Result;
  Result.Section = SectionName.empty() ? Name : SectionName;
  Result.Generator = TGeneratorState{Name};
  return Result;
}

TExportUtilOperation& TJobExportGenerators::OperationFor(const TItem& Item) {
  FOperation.GeneratorName = Item.Generator->Name;
  return FOperation;
}

void TJobExportGenerators::AfterRun(TItem& Item) { Item.Generator->Value = FOperation.Value(); }

}  // namespace velkrund
