#include "jobs/report/Outcome.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "jobs/report/ErrorReport.h"

namespace velkrund {

TSectionRole TItem::Role() const {
  if (Structure) return TSectionRole::Structure;
  if (Generator) return TSectionRole::GeneratorData;
  if (Language) return TSectionRole::Language;
  if (Resource) return Resource->Language.empty() ? TSectionRole::Resource : TSectionRole::SingleResource;
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
  if (Item.Resource) Result.Set("resource", Item.Resource->SectionID);
  if (Item.Language || (Item.Resource && !Item.Resource->Language.empty()))
    Result.Set("language", Item.Language ? *Item.Language : Item.Resource->Language);
  Result.Set("state", StateText(Item.State));
  if (!Item.Note.Empty()) Result.Set("reason", Item.Note.English());
  if (Item.Error) Result.Set("error", ErrorDocument(*Item.Error));
  if (Item.State != TItemState::Done) return Result;
  const std::optional<std::int64_t> Rows = Item.Rows();
  if (Rows) Result.Set("rows", *Rows);
  if (Item.Source.empty())
    Result.Set("size", Item.Bytes);
  else if (Rows)
    Result.Set("rowsUpdated", Item.RowsUpdated);
  if (Item.Resource) {
    Result.Set("strings", Item.Resource->Strings).Set("texts", Item.Resource->Texts);
    Result.Set("textsLeftAlone", Item.Resource->LeftAlone).Set("textsOfOtherLanguages", Item.Resource->OtherLanguages);
  }
  Result.Set("seconds", Item.Seconds);
  if (Rows) Result.Set("rowsDeleted", Item.Counts.DeletedRows).Set("nullsMade", Item.Counts.NullsMade);
  if (Rows) Result.Set("valuesChanged", Item.Counts.ValuesChanged);
  if (Item.Source.empty())
    Result.Set("charactersLost", Item.Losses.Unrepresentable).Set("malformedCharacters", Item.Losses.Malformed);
  if (Item.Structure || Item.Resource) Result.Set("textsAltered", Item.Losses.Altered);
  if (Rows) Result.Set("skippedFields", Item.Counts.SkippedFields);
  return Result;
}

namespace {

/// The errors that end a run that somebody has cancelled say so in English.
constexpr struct {
  std::string_view Message;
  const char* Key;
} CancelTexts[] = {
    {"cancelled", "M_Velkrund_Jobs_Cancelled"},
    {"Cancelled at a question", "M_Velkrund_Jobs_CancelledAtQuestion"},
    {"Cancelled while a file was repaired", "M_Velkrund_Jobs_CancelledRepair"},
    {"Cancelled while sections were removed", "M_Velkrund_Jobs_CancelledRemoval"},
    {"Cancelled while waiting for a pipe", "M_Velkrund_Jobs_CancelledPipe"},
    {"cancelled before the new file took its place", "M_Velkrund_Jobs_CancelledNewFile"},
    {"cancelled before the file was finished", "M_Velkrund_Jobs_CancelledFile"},
};

}  // namespace

TLText CancelText(std::string_view Message) {
  const auto Known = std::find_if(std::begin(CancelTexts), std::end(CancelTexts),
                                  [=](const auto& Text) { return Text.Message == Message; });
  return Known == std::end(CancelTexts) ? TLText(std::string(Message)) : LText(Known->Key);
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

void TOutcome::Cancel(TLText How) {
  Cancelled = std::move(How);
  if (Any(TItemState::Done)) Cancelled += LText("M_Velkrund_Jobs_FinishedStays");
}

int TOutcome::Count(TItemState State) const {
  return static_cast<int>(
      std::count_if(Items.begin(), Items.end(), [State](const TItem& Item) { return Item.State == State; }));
}

TEnd TOutcome::End() const {
  if (Error) return TEnd::Failed;
  if (!Cancelled.Empty() || Any(TItemState::Cancelled)) return TEnd::Cancelled;
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
  Document.Set("database", Database)
      .Set("files", Files)
      .Set("sections", TElements{Items.size(), [this](std::size_t Index) { return ItemDocument(Items[Index]); }})
      .Set("notes", EnglishOf(Notes));
  Document.Set("rows", All.Rows.value_or(0)).Set("size", All.Bytes).Set("seconds", All.Seconds);
  Document.Set("nullsMade", All.NullsMade).Set("valuesChanged", All.ValuesChanged);
  Document.Set("charactersLost", All.Losses.Unrepresentable).Set("malformedCharacters", All.Losses.Malformed);
  Document.Set("textsAltered", All.Losses.Altered);
}

}  // namespace velkrund
