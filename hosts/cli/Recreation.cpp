#include "hosts/cli/Recreation.h"

#include <algorithm>

#include "hosts/cli/RunJob.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

std::string DoneText(const TRecreation& Item) {
  std::string Result = Item.IsThere ? "recreated " : "created ";
  Result += OnOneLine(StructureText(Item.Structure));
  if (Item.Rows) Result += ": " + Counted(*Item.Rows, "row");
  if (Item.RowsDropped) Result += Format(": %s dropped", Counted(*Item.RowsDropped, "row"));
  return Result;
}

std::string ItemText(const TRecreation& Item) {
  if (Item.State == TItemState::Done) return DoneText(Item);
  std::string State(StateText(Item.State));
  std::replace(State.begin(), State.end(), '-', ' ');
  const std::string Result = State + " " + OnOneLine(StructureText(Item.Structure));
  return Item.Note.empty() ? Result : Result + ": " + Item.Note;
}

std::string ReportText(const TRecreationJob& Job) {
  std::string Result;
  for (const TRecreation& Item : Job.Items()) Result += ItemText(Item) + "\n";
  for (const std::string& Note : Job.Notes()) Result += OnOneLine(Note) + "\n";
  return Result;
}

}  // namespace

int RunRecreation(TSession& Session, TUtilOperationInterface& Interface) {
  RunJob(Session, Interface);
  const auto& Job = static_cast<const TRecreationJob&>(Interface.Operation());
  if (Job.End() != TEnd::Done || !SayDryRun(Session, Job, Job.Notes())) Session.Say(ReportText(Job));
  return static_cast<int>(Job.End());
}

}  // namespace velkrund
