#include "jobs/run/ImportSteps.h"

#include <algorithm>
#include <iterator>

#include "jobs/policies/Policies.h"
#include "velkrund/eif/EIFile.h"
#include "velkrund/operations/TablePlan.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void Append(std::vector<TPlanStep>& Plan, std::vector<TPlanStep> More) {
  std::move(More.begin(), More.end(), std::back_inserter(Plan));
}

}  // namespace

void TImportSteps::Add(TInputFile& Input, int Index, TImportPart* Part) {
  const TEISection& Section = Input.File().Sections()[Index];
  const TSectionRole Role = Section.ObjectClass.Role();
  const TImportStep Step{Part, Section.DataSize, Role == TSectionRole::TableData || Role == TSectionRole::QueryData,
                         FOutcome.Items.size()};
  TItem Item;
  Item.Section = Section.Name();
  Item.File = Input.Name();
  if (Part) Part->Add(Input, Index, Item, Step.Number);
  FOutcome.Items.push_back(std::move(Item));
  const auto [Place, IsNew] = FSteps.emplace(TPosition(Input.Name(), Section.Position), Step);
  if (!IsNew)
    throw ESettingsError(Format("two inputs go by the name '%s': give one of the files another name", Input.Name()));
  if (Step.IsTable) FOfTables.emplace(LowerCase(FOutcome.Items.back().Table), &Place->second);
}

const TImportStep& TImportSteps::StepOf(const TEIFile& File, const TEISection& Section) const {
  return FSteps.at({File.FileName(), Section.Position});
}

bool TImportSteps::Takes(const TEIFile& File, const TEISection& Section) const {
  const auto Step = FSteps.find({File.FileName(), Section.Position});
  return Step != FSteps.end() && IsTaken(Step->second);
}

bool TImportSteps::HaveStructures() const {
  return std::any_of(FSteps.begin(), FSteps.end(), [](const auto& Step) { return !Step.second.IsTable; });
}

std::int64_t TImportSteps::Bytes() const {
  std::int64_t Result = 0;
  for (const auto& [Place, Step] : FSteps)
    if (IsTaken(Step)) Result += Step.Bytes;
  return Result;
}

std::vector<TLoadTarget> TImportSteps::Targets() const {
  std::vector<TLoadTarget> Result;
  for (const auto& [Place, Step] : FSteps) {
    if (!IsTaken(Step) || !Step.Part || Step.Part->IsMade(Step.Number)) continue;
    std::optional<TLoadTarget> Target = Step.Part->TargetOf(Step.Number);
    if (!Target) continue;
    Target->Many = HoldsManyRows(Step.Bytes);
    Result.push_back(std::move(*Target));
  }
  return Result;
}

bool TImportSteps::HaveLostRows(const std::string& Table) const {
  bool Result = false;
  const auto [First, Last] = FOfTables.equal_range(LowerCase(Table));
  for (auto Each = First; Each != Last; ++Each) {
    if (!IsTaken(*Each->second)) continue;
    if (ItemOf(*Each->second).State == TItemState::Done) return false;
    Result = true;
  }
  return Result;
}

std::vector<TPlanStep> TImportSteps::PlanOfStructures() const {
  std::vector<TPlanStep> Result;
  for (const auto& [Place, Step] : FSteps)
    if (IsTaken(Step) && Step.Part && !Step.IsTable) Append(Result, Step.Part->Steps(ItemOf(Step), Step.Number));
  return Result;
}

std::vector<TPlanStep> TImportSteps::PlanOfRows(const TTableLoading* Loading) const {
  std::vector<const TImportStep*> Tables;
  for (const auto& [Place, Step] : FSteps)
    if (IsTaken(Step) && Step.Part && Step.IsTable) Tables.push_back(&Step);
  const auto Rank = [&](const TImportStep* Step) { return Loading ? Loading->Rank(ItemOf(*Step).Table) : 0; };
  std::stable_sort(Tables.begin(), Tables.end(),
                   [&](const TImportStep* A, const TImportStep* B) { return Rank(A) < Rank(B); });
  std::vector<TPlanStep> Result;
  for (auto Step = Tables.rbegin(); Step != Tables.rend(); ++Step)
    if (std::optional<TPlanStep> Emptying = (*Step)->Part->Emptying((*Step)->Number))
      Result.push_back(std::move(*Emptying));
  for (const TImportStep* Step : Tables) Append(Result, Step->Part->Steps(ItemOf(*Step), Step->Number));
  return Result;
}

}  // namespace velkrund
