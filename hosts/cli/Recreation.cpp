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

/// Each line of the text on one.
std::string OnLines(std::string_view Text) {
  std::string Result;
  while (!Text.empty()) {
    const std::size_t End = Text.find_first_of("\r\n");
    if (End != 0) Result += OnOneLine(std::string(Text.substr(0, End))) + "\n";
    Text.remove_prefix(End == Text.npos ? Text.size() : End + 1);
  }
  return Result;
}

std::string ReportText(const TRecreationJob& Job) {
  std::string Result;
  for (const TRecreation& Item : Job.Items()) Result += ItemText(Item) + "\n";
  for (const std::string& Note : Job.Notes()) Result += OnLines(Note);
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
