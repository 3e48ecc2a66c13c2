#include "hosts/cli/Report.h"

#include <algorithm>

#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const char* StateText(TItemState State) {
  switch (State) {
    case TItemState::Done:
      return "done";
    case TItemState::LeftOut:
      return "left out";
    case TItemState::Failed:
      return "failed";
    case TItemState::Cancelled:
      return "cancelled";
    case TItemState::TakenBack:
      return "taken back";
    case TItemState::NotReached:
      break;
  }
  return "not reached";
}

std::string ItemText(const TReportItem& Item) {
  if (Item.Section.empty()) return "file '" + Item.File + "'";
  std::string Result = Item.Table.empty() ? "" : "table " + Item.Table + ", ";
  if (Item.Structure) Result = "structure " + StructureText(*Item.Structure) + ", ";
  Result += "section '" + Item.Section + "'";
  return Item.File.empty() ? Result : Result + " of '" + Item.File + "'";
}

std::string AmountText(const std::optional<std::int64_t>& Rows, std::int64_t Bytes, double Seconds) {
  return Format("%s%s, %s", Rows ? Counted(*Rows, "row") + ", " : "", ByteText(static_cast<double>(Bytes)),
                DurationText(Seconds));
}

std::optional<std::int64_t> RowsOf(const TReportItem& Item) {
  return Item.Table.empty() ? std::nullopt : std::optional(Item.Counts.RowCount);
}

/// What a person has to know about a section that is otherwise done.
std::vector<std::string> Warnings(const TReportItem& Item) {
  std::vector<std::string> Result;
  if (Item.Counts.NullsMade > 0)
    Result.push_back(Counted(Item.Counts.NullsMade, "value") + " could not be read and became NULL");
  if (Item.Losses.Unrepresentable > 0)
    Result.push_back(Counted(Item.Losses.Unrepresentable, "character") + " lost: the code page does not have them");
  if (Item.Losses.Malformed > 0)
    Result.push_back(Counted(Item.Losses.Malformed, "malformed character") + " replaced by U+FFFD");
  if (!Item.Counts.SkippedFields.empty())
    Result.push_back("the table lacks these fields, which were left out: " + Joined(Item.Counts.SkippedFields));
  return Result;
}

TJson ItemJson(const TReportItem& Item) {
  TJson Result;
  if (!Item.File.empty()) Result["file"] = Item.File;
  Result["section"] = Item.Section;
  if (!Item.Table.empty()) Result["table"] = Item.Table;
  if (Item.Structure) {
    Result["structure"] = Item.Structure->Name;
    Result["objectType"] = Item.Structure->Type;
  }
  Result["state"] = StateText(Item.State);
  if (!Item.Note.empty()) Result[Item.State == TItemState::Failed ? "error" : "note"] = Item.Note;
  if (Item.State != TItemState::Done) return Result;
  const std::optional<std::int64_t> Rows = RowsOf(Item);
  if (Rows) Result["rows"] = *Rows;
  Result["bytes"] = Item.Bytes;
  Result["seconds"] = Item.Seconds;
  if (Rows) Result["nullsMade"] = Item.Counts.NullsMade;
  Result["charactersLost"] = Item.Losses.Unrepresentable;
  Result["malformedCharacters"] = Item.Losses.Malformed;
  if (Rows) Result["skippedFields"] = Item.Counts.SkippedFields;
  return Result;
}

struct TTotals {
  std::int64_t Sections = 0, Bytes = 0;
  std::optional<std::int64_t> Rows;  // nothing without a table
  double Seconds = 0;
};

TTotals Totals(const std::vector<TReportItem>& Items) {
  TTotals Result;
  for (const TReportItem& Item : Items) {
    if (Item.State != TItemState::Done) continue;
    ++Result.Sections;
    if (const auto Rows = RowsOf(Item)) Result.Rows = Result.Rows.value_or(0) + *Rows;
    Result.Bytes += Item.Bytes;
    Result.Seconds += Item.Seconds;
  }
  return Result;
}

}  // namespace

int TReport::ExitCode() const {
  const auto Any = [this](TItemState State) {
    return std::any_of(Items.begin(), Items.end(), [=](const TReportItem& Item) { return Item.State == State; });
  };
  if (!Error.empty()) return ExitFailed;
  if (!Cancelled.empty() || Any(TItemState::Cancelled)) return ExitCancelled;
  return Any(TItemState::Failed) ? ExitFailed : ExitDone;
}

std::string TReport::Text() const {
  std::string Result;
  for (const TReportItem& Item : Items) {
    const bool IsDone = Item.State == TItemState::Done;
    Result += Format("%s %s", IsDone ? Done : StateText(Item.State), ItemText(Item));
    if (IsDone) Result += ": " + AmountText(RowsOf(Item), Item.Bytes, Item.Seconds);
    if (Item.State == TItemState::LeftOut) Result += ": " + Item.Note;
    Result += "\n";
    if (IsDone)
      for (const std::string& Warning : Warnings(Item)) Result += "  warning: " + Warning + "\n";
  }
  if (!Cancelled.empty()) Result += Cancelled + "\n";
  for (const std::string& Note : Notes) Result += Note + "\n";
  const TTotals All = Totals(Items);
  if (All.Sections > 1)
    Result += Format("in all %s: %s\n", Counted(All.Sections, "section"), AmountText(All.Rows, All.Bytes, All.Seconds));
  return Result;
}

TJson TReport::Json() const {
  const TTotals All = Totals(Items);
  TJson Result;
  Result["command"] = Command;
  Result["database"] = Database;
  Result["file"] = File;
  Result["exitCode"] = ExitCode();
  Result["sections"] = TJson::array();
  for (const TReportItem& Item : Items) Result["sections"].push_back(ItemJson(Item));
  Result["notes"] = Notes;
  if (!Error.empty()) Result["error"] = Error;
  Result["rows"] = All.Rows.value_or(0);
  Result["bytes"] = All.Bytes;
  Result["seconds"] = All.Seconds;
  return Result;
}

}  // namespace velkrund
