#include "hosts/cli/Recreation.h"

#include "hosts/cli/RunJob.h"
#include "hosts/cli/render/ReportText.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

std::string DoneText(const TRecreation& Item) {
  std::string Result = LText(Item.IsThere ? "M_Velkrund_Cli_Recreated" : "M_Velkrund_Cli_Created",
                             OnOneLine(StructureText(Item.Structure)))
                           .Local();
  if (Item.Rows) Result += LText("M_Velkrund_Cli_Amount", RowsText(*Item.Rows)).Local();
  if (Item.RowsDropped) Result += LCounted("M_Velkrund_Cli_RowsDropped", *Item.RowsDropped, *Item.RowsDropped).Local();
  return Result;
}

std::string ItemText(const TRecreation& Item) {
  if (Item.State == TItemState::Done) return DoneText(Item);
  const std::string Result =
      LText("M_Velkrund_Cli_Item", StateForPeople(Item.State), OnOneLine(StructureText(Item.Structure))).Local();
  return Item.Note.Empty() ? Result : Result + LText("M_Velkrund_Cli_Why", Item.Note).Local();
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
  for (const TLText& Note : Job.Notes()) Result += OnLines(Note.Local());
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
