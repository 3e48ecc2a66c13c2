#include "hosts/cli/render/ReportText.h"

#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

/// Of localized strings and languages.
TLText TextsItemText(const TItem& Item) {
  if (Item.Language) return LText("M_Velkrund_Cli_Language", OnOneLine(*Item.Language));
  const std::string Section = OnOneLine(Item.Resource->SectionID);
  if (Item.Resource->Language.empty()) return LText("M_Velkrund_Cli_Resource", Section);
  return LText("M_Velkrund_Cli_ResourceIn", Section, OnOneLine(Item.Resource->Language));
}

/// Of what is copied or deleted without a file.
TLText SourceText(const TItem& Item) {
  const std::string Source = OnOneLine(Item.Source);
  if (Item.Language) return LText("M_Velkrund_Cli_Language", Source);
  if (Item.Resource && Item.Resource->IsOneString) return LText("M_Velkrund_Cli_String", Source);
  if (Item.Resource)
    return Item.Source == Item.Section ? LText("M_Velkrund_Cli_Resource", Source)
                                       : LText("M_Velkrund_Cli_ResourceInto", Source, OnOneLine(Item.Section));
  return Item.Source == Item.Table ? LText("M_Velkrund_Cli_Table", Source)
                                   : LText("M_Velkrund_Cli_TableInto", Source, OnOneLine(Item.Table));
}

/// ShowsFile: there are several.
std::string ItemText(const TItem& Item, bool ShowsFile) {
  if (!Item.Source.empty()) return SourceText(Item).Local();
  if (Item.Section.empty()) return LText("M_Velkrund_Cli_File", Item.File).Local();
  TLText Result;
  if (!Item.Table.empty()) Result = LText("M_Velkrund_Cli_Table", OnOneLine(Item.Table));
  if (Item.Structure) Result = LText("M_Velkrund_Cli_Structure", StructureText(*Item.Structure));
  if (Item.IsQuery && Item.Table.empty()) Result = LText("M_Velkrund_Cli_Query");
  if (Item.Generator) {
    const std::string Name = OnOneLine(Item.Generator->Name);
    Result = Item.Generator->Value ? LText("M_Velkrund_Cli_GeneratorAt", Name, *Item.Generator->Value)
                                   : LText("M_Velkrund_Cli_Generator", Name);
  }
  if (Item.Language || Item.Resource) Result = TextsItemText(Item);
  if (!Result.Empty()) Result += ", ";
  const std::string Section = OnOneLine(Item.Section);
  Result += ShowsFile ? LText("M_Velkrund_Cli_SectionOf", Section, Item.File)
                      : LText("M_Velkrund_Jobs_AtSection", "'" + Section + "'");
  return Result.Local();
}

/// Bytes: nothing where no file holds them.
std::string AmountText(const std::optional<std::int64_t>& Rows, const std::optional<std::int64_t>& Bytes,
                       double Seconds) {
  return (Rows ? RowsText(*Rows) + ", " : "") + (Bytes ? ByteText(static_cast<double>(*Bytes)) + ", " : "") +
         DurationText(Seconds);
}

/// How many texts it holds.
std::string AmountOfTexts(const TItem& Item) {
  if (!Item.Resource || Item.Resource->IsOneString) return {};
  const TTextCounts& Texts = *Item.Resource;
  return StringsText(Texts.Strings) + ", " + TextsText(Texts.Texts) + ", ";
}

std::optional<std::int64_t> BytesOf(const TItem& Item) {
  return Item.Source.empty() ? std::optional<std::int64_t>(Item.Bytes) : std::nullopt;
}

/// What a person has to know about a section that is otherwise done.
std::vector<TLText> Warnings(const TItem& Item) {
  std::vector<TLText> Result;
  const auto Add = [&](const char* Key, std::int64_t Count) {
    if (Count > 0) Result.push_back(LCounted(Key, Count, Count));
  };
  Add("M_Velkrund_Cli_NullsMade", Item.Counts.NullsMade);
  Add("M_Velkrund_Cli_ValuesChanged", Item.Counts.ValuesChanged);
  Add("M_Velkrund_Cli_CharactersLost", Item.Losses.Unrepresentable);
  Add("M_Velkrund_Cli_CharactersReplaced", Item.Losses.Malformed);
  Add("M_Velkrund_Cli_TextsAltered", Item.Losses.Altered);
  Add("M_Velkrund_Cli_OtherLanguages", Item.Resource ? Item.Resource->OtherLanguages : 0);
  Add("M_Velkrund_Cli_TextsKept", Item.Resource ? Item.Resource->LeftAlone : 0);
  if (!Item.Counts.SkippedFields.empty())
    Result.push_back(LText("M_Velkrund_Cli_FieldsSkipped", Joined(Item.Counts.SkippedFields)));
  return Result;
}

std::string StateOf(const TOutcome& Outcome, TItemState State) {
  return State == TItemState::Done ? Outcome.Done.Local() : StateForPeople(State);
}

/// What the items of a run are, as keys say it.
const char* KeyOf(const TOutcome& Outcome, const char* Sections, const char* Tables, const char* Others) {
  if (!Outcome.Copies()) return Sections;
  const TItem& First = Outcome.Items.front();
  return First.Resource || First.Language ? Others : Tables;
}

/// The last line, which nobody overlooks: a run that has failed does not end with what went well.
std::string SumText(const TOutcome& Outcome) {
  const TTotals All = Outcome.Totals();
  if (Outcome.End() == TEnd::Done && All.Sections > 1)
    return LCounted(
               KeyOf(Outcome, "M_Velkrund_Cli_InAllSections", "M_Velkrund_Cli_InAllTables", "M_Velkrund_Cli_InAll"),
               All.Sections, All.Sections,
               AmountText(All.Rows, Outcome.Copies() ? std::nullopt : std::optional<std::int64_t>(All.Bytes),
                          All.Seconds))
               .Local() +
           "\n";
  const auto Items = static_cast<std::int64_t>(Outcome.Items.size());
  if (Outcome.End() == TEnd::Done || Items < 2) return {};
  std::vector<std::string> Parts;
  for (const TItemState State : {TItemState::Done, TItemState::LeftOut, TItemState::TakenBack, TItemState::NotReached,
                                 TItemState::Cancelled, TItemState::Failed})
    if (const int Count = Outcome.Count(State)) Parts.push_back(Format("%d %s", Count, StateOf(Outcome, State)));
  const char* const Key = KeyOf(Outcome, "M_Velkrund_Cli_OfSections", "M_Velkrund_Cli_OfTables", "M_Velkrund_Cli_Of");
  return LCounted(Key, Items, Items, Joined(Parts)).Local() + "\n";
}

std::string LineOf(const TOutcome& Outcome, const TItem& Item) {
  std::string Result =
      LText("M_Velkrund_Cli_Item", StateOf(Outcome, Item.State), ItemText(Item, Outcome.Files.size() > 1)).Local();
  if (Item.State == TItemState::LeftOut) Result += LText("M_Velkrund_Cli_Why", Item.Note).Local();
  if (Item.State != TItemState::Done) return Result + "\n";
  Result += LText("M_Velkrund_Cli_Amount", AmountOfTexts(Item) + AmountText(Item.Rows(), BytesOf(Item), Item.Seconds))
                .Local();
  const auto Add = [&](const char* Key, std::int64_t Count) {
    if (Count > 0) Result += "; " + LCounted(Key, Count, Count).Local();
  };
  Add("M_Velkrund_Cli_RowsReplaced", Item.RowsUpdated);
  Add("M_Velkrund_Cli_RowsDeleted", Item.Counts.DeletedRows);
  Result += "\n";
  for (const TLText& Warning : Warnings(Item))
    Result += "  " + LText("M_Velkrund_Jobs_Warning", Warning).Local() + "\n";
  return Result;
}

}  // namespace

std::string StateForPeople(TItemState State) {
  switch (State) {
    case TItemState::Done:
      return LText("M_Velkrund_Cli_Done").Local();
    case TItemState::LeftOut:
      return LText("M_Velkrund_Cli_LeftOut").Local();
    case TItemState::Failed:
      return LText("M_Velkrund_Cli_Failed").Local();
    case TItemState::Cancelled:
      return LText("M_Velkrund_Jobs_Cancelled").Local();
    case TItemState::TakenBack:
      return LText("M_Velkrund_Cli_TakenBack").Local();
    case TItemState::NotReached:
      break;
  }
  return LText("M_Velkrund_Cli_NotReached").Local();
}

std::string ReportText(const TOutcome& Outcome) {
  std::string Result;
  for (const TItem& Item : Outcome.Items) Result += LineOf(Outcome, Item);
  if (!Outcome.Cancelled.Empty()) Result += Outcome.Cancelled.Local() + "\n";
  for (const TLText& Note : Outcome.Notes) Result += Note.Local() + "\n";
  return Result + SumText(Outcome);
}

}  // namespace velkrund
