#include "hosts/cli/render/ReportText.h"

#include <algorithm>

#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

/// ShowsFile: there are several.
std::string ItemText(const TItem& Item, bool ShowsFile) {
  if (!Item.Source.empty()) {
    const std::string From = "table " + OnOneLine(Item.Source);
    return Item.Source == Item.Table ? From : From + " into " + OnOneLine(Item.Table);
  }
  if (Item.Section.empty()) return "file '" + Item.File + "'";
  std::string Result = Item.Table.empty() ? "" : "table " + OnOneLine(Item.Table) + ", ";
  if (Item.Structure) Result = "structure " + StructureText(*Item.Structure) + ", ";
  if (Item.IsQuery && Item.Table.empty()) Result = "query, ";
  if (Item.Generator) {
    Result = "generator " + OnOneLine(Item.Generator->Name);
    Result += Item.Generator->Value ? Format(" at %d, ", *Item.Generator->Value) : ", ";
  }
  Result += "section '" + OnOneLine(Item.Section) + "'";
  return ShowsFile ? Result + " of '" + Item.File + "'" : Result;
}

/// Bytes: nothing where no file holds them.
std::string AmountText(const std::optional<std::int64_t>& Rows, const std::optional<std::int64_t>& Bytes,
                       double Seconds) {
  return (Rows ? Counted(*Rows, "row") + ", " : "") + (Bytes ? ByteText(static_cast<double>(*Bytes)) + ", " : "") +
         DurationText(Seconds);
}

std::optional<std::int64_t> BytesOf(const TItem& Item) {
  return Item.Source.empty() ? std::optional<std::int64_t>(Item.Bytes) : std::nullopt;
}

/// What the items of a run are.
std::string ItemsText(const TOutcome& Outcome, std::int64_t Count) {
  return Counted(Count, Outcome.Copies() ? "table" : "section");
}

std::string StateForPeople(TItemState State) {
  std::string Result(StateText(State));
  std::replace(Result.begin(), Result.end(), '-', ' ');
  return Result;
}

/// What a person has to know about a section that is otherwise done.
std::vector<std::string> Warnings(const TItem& Item) {
  std::vector<std::string> Result;
  if (Item.Counts.NullsMade > 0)
    Result.push_back(Counted(Item.Counts.NullsMade, "value") + " could not be read and became NULL");
  if (Item.Counts.ValuesChanged > 0)
    Result.push_back(Counted(Item.Counts.ValuesChanged, "value") + " could not be kept and became another");
  if (Item.Losses.Unrepresentable > 0)
    Result.push_back(Counted(Item.Losses.Unrepresentable, "character") + " lost: the code page does not have them");
  if (Item.Losses.Malformed > 0)
    Result.push_back(Counted(Item.Losses.Malformed, "malformed character") + " replaced by U+FFFD");
  if (Item.Losses.Altered > 0)
    Result.push_back(Format("of its names and texts %d will be read as others than they are", Item.Losses.Altered));
  if (!Item.Counts.SkippedFields.empty())
    Result.push_back("the table lacks these fields, which were left out: " + Joined(Item.Counts.SkippedFields));
  return Result;
}

/// The last line, which nobody overlooks: a run that has failed does not end with what went well.
std::string SumText(const TOutcome& Outcome) {
  const TTotals All = Outcome.Totals();
  if (Outcome.End() == TEnd::Done && All.Sections > 1)
    return Format(
        "in all %s: %s\n", ItemsText(Outcome, All.Sections),
        AmountText(All.Rows, Outcome.Copies() ? std::nullopt : std::optional<std::int64_t>(All.Bytes), All.Seconds));
  if (Outcome.End() == TEnd::Done || Outcome.Items.size() < 2) return {};
  std::vector<std::string> Parts;
  for (const TItemState State : {TItemState::Done, TItemState::LeftOut, TItemState::TakenBack, TItemState::NotReached,
                                 TItemState::Cancelled, TItemState::Failed})
    if (const int Count = Outcome.Count(State))
      Parts.push_back(Format("%d %s", Count, State == TItemState::Done ? Outcome.Done : StateForPeople(State)));
  return Format("of %s %s\n", ItemsText(Outcome, static_cast<std::int64_t>(Outcome.Items.size())), Joined(Parts));
}

}  // namespace

std::string ReportText(const TOutcome& Outcome) {
  std::string Result;
  for (const TItem& Item : Outcome.Items) {
    const bool IsDone = Item.State == TItemState::Done;
    Result +=
        Format("%s %s", IsDone ? Outcome.Done : StateForPeople(Item.State), ItemText(Item, Outcome.Files.size() > 1));
    if (IsDone) Result += ": " + AmountText(Item.Rows(), BytesOf(Item), Item.Seconds);
    if (IsDone && Item.RowsUpdated > 0)
      Result += Format("; %s of them took the place of others", Counted(Item.RowsUpdated, "row"));
    if (IsDone && Item.Counts.DeletedRows > 0)
      Result += Format("; %s deleted that %s there", Counted(Item.Counts.DeletedRows, "row"),
                       Item.Counts.DeletedRows == 1 ? "was" : "were");
    if (Item.State == TItemState::LeftOut) Result += ": " + Item.Note;
    Result += "\n";
    if (IsDone)
      for (const std::string& Warning : Warnings(Item)) Result += "  warning: " + Warning + "\n";
  }
  if (!Outcome.Cancelled.empty()) Result += Outcome.Cancelled + "\n";
  for (const std::string& Note : Outcome.Notes) Result += Note + "\n";
  return Result + SumText(Outcome);
}

}  // namespace velkrund
