#include "jobs/report/Outcome.h"

#include <algorithm>
#include <utility>

#include "jobs/report/ErrorReport.h"

namespace velkrund {

TSectionRole TItem::Role() const {
  if (Structure) return TSectionRole::Structure;
  if (Generator) return TSectionRole::GeneratorData;
  return IsQuery ? TSectionRole::QueryData : TSectionRole::TableData;
}

TDocument ItemDocument(const TItem& Item) {
  TDocument Result;
  if (Item.Source.empty())
    Result.Set("file", Item.File);
  else
    Result.Set("source", Item.Source);
  if (!Item.Section.empty()) Result.Set("name", Item.Section);
  if (!Item.Table.empty()) Result.Set("table", Item.Table);
  if (Item.Structure) Result.Set("structure", StructureDocument(*Item.Structure));
  if (Item.Generator) Result.Set("generator", Item.Generator->Name);
  if (Item.Generator && Item.Generator->Value) Result.Set("value", *Item.Generator->Value);
  Result.Set("state", StateText(Item.State));
  if (!Item.Note.empty()) Result.Set("reason", Item.Note);
  if (Item.Error) Result.Set("error", ErrorDocument(*Item.Error));
  if (Item.State != TItemState::Done) return Result;
  const std::optional<std::int64_t> Rows = Item.Rows();
  if (Rows) Result.Set("rows", *Rows);
  if (Item.Source.empty())
    Result.Set("size", Item.Bytes);
  else
    Result.Set("rowsUpdated", Item.RowsUpdated);
  Result.Set("seconds", Item.Seconds);
  if (Rows) Result.Set("rowsDeleted", Item.Counts.DeletedRows).Set("nullsMade", Item.Counts.NullsMade);
  if (Rows) Result.Set("valuesChanged", Item.Counts.ValuesChanged);
  if (Item.Source.empty())
    Result.Set("charactersLost", Item.Losses.Unrepresentable).Set("malformedCharacters", Item.Losses.Malformed);
  if (Item.Structure) Result.Set("textsAltered", Item.Losses.Altered);
  if (Rows) Result.Set("skippedFields", Item.Counts.SkippedFields);
  return Result;
}

std::string_view StateText(TItemState State) {
  switch (State) {
    case TItemState::Done:
      return "done";
    case TItemState::LeftOut:
      return "left-out";
    case TItemState::Failed:
      return "failed";
    case TItemState::Cancelled:
      return "cancelled";
    case TItemState::TakenBack:
      return "taken-back";
    case TItemState::NotReached:
      break;
  }
  return "not-reached";
}

void TOutcome::Fail(TItem& Item, const std::exception_ptr& Reason) {
  Item.State = TItemState::Failed;
  Item.Error = FactsOf(Reason);
  Item.Error->Info.Fill({.Database = Database});
  if (!FirstError) FirstError = Reason;
}

void TOutcome::Fail(const std::exception_ptr& Reason) {
  Error = FactsOf(Reason);
  if (!FirstError) FirstError = Reason;
}

void TOutcome::Cancel(std::string How) {
  Cancelled = std::move(How);
  if (Any(TItemState::Done)) Cancelled += "; what was finished before stays";
}

int TOutcome::Count(TItemState State) const {
  return static_cast<int>(
      std::count_if(Items.begin(), Items.end(), [State](const TItem& Item) { return Item.State == State; }));
}

TEnd TOutcome::End() const {
  if (Error) return TEnd::Failed;
  if (!Cancelled.empty() || Any(TItemState::Cancelled)) return TEnd::Cancelled;
  if (Any(TItemState::Failed)) return TEnd::Failed;
  return Any(TItemState::NotReached) || Any(TItemState::TakenBack) ? TEnd::Cancelled : TEnd::Done;
}

TTotals TOutcome::Totals() const {
  TTotals Result;
  for (const TItem& Item : Items) {
    if (Item.State != TItemState::Done) continue;
    ++Result.Sections;
    if (const auto Rows = Item.Rows()) Result.Rows = Result.Rows.value_or(0) + *Rows;
    Result.Bytes += Item.Bytes;
    Result.NullsMade += Item.Counts.NullsMade;
    Result.ValuesChanged += Item.Counts.ValuesChanged;
    Result.Losses += Item.Losses;
    Result.Seconds += Item.Seconds;
  }
  return Result;
}

void TOutcome::Describe(TDocument& Document) const {
  const TTotals All = Totals();
  TDocument Sections = TDocument::List();
  for (const TItem& Item : Items) Sections.Add(ItemDocument(Item));
  Document.Set("database", Database).Set("files", Files).Set("sections", std::move(Sections)).Set("notes", Notes);
  Document.Set("rows", All.Rows.value_or(0)).Set("size", All.Bytes).Set("seconds", All.Seconds);
  Document.Set("nullsMade", All.NullsMade).Set("valuesChanged", All.ValuesChanged);
  Document.Set("charactersLost", All.Losses.Unrepresentable).Set("malformedCharacters", All.Losses.Malformed);
  Document.Set("textsAltered", All.Losses.Altered);
}

}  // namespace velkrund
