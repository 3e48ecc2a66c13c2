#include "jobs/resources/LanguageImport.h"

#include "jobs/resources/LanguageQuestions.h"
#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/Language.h"

namespace velkrund {

/// What a section says; nothing where it says nothing, or is faulty: the import tells it then.
std::optional<TOneLanguage> TLanguageImport::RecordOf(TInputFile& Input, int Index) {
  const auto Object = Input.File().CreateEIObject(Index);
  auto& Section = dynamic_cast<TEILanguage&>(*Object);
  TOneLanguage Record;
  Section.Record = &Record;
  try {
    Input.File().ImportObject(Section);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    return std::nullopt;
  }
  return Section.LeftAlone() ? std::nullopt : std::optional(std::move(Record));
}

void TLanguageImport::Announce(TInputFile& Input, int Index) {
  const auto Name = Input.File().Sections()[Index].FindParam(LanguageParameter);
  if (Name && RecordOf(Input, Index)) FComing->insert(UpperCase(*Name));
}

void TLanguageImport::Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) {
  Item.Language = Input.File().Sections()[Index].ParamValue(LanguageParameter);
  std::optional<TOneLanguage> Record = RecordOf(Input, Index);
  if (!Record) return;
  RequireKept(TResourceName::Language, *Item.Language);
  FRecords.emplace(Number, std::move(*Record));
}

void TLanguageImport::Begin(std::size_t, TEIObject& Object) { Object.StrictLines = true; }

void TLanguageImport::End(TItem& Item, const TEIObject* Object) {
  if (Item.State != TItemState::Done || !Object || !Object->LeftAlone()) return;
  Item.State = TItemState::LeftOut;
  Item.Note = LText("M_Velkrund_Jobs_EmptySection");
}

bool TLanguageImport::IsOther(const TItem& Item, const TOneLanguage& New) const {
  TOneLanguage There;
  return LContainer().GetLanguagesTable(FDatabaseName).GetLanguage(*Item.Language, There) && There != New;
}

void TLanguageImport::Settle(TOutcome& Outcome) {
  std::vector<std::size_t> Met;
  for (const auto& [Number, Record] : FRecords)
    if (IsOther(Outcome.Items[Number], Record)) Met.push_back(Number);
  SettleLanguages(Outcome, Met, FExisting);
}

std::vector<TPlanStep> TLanguageImport::Steps(const TItem& Item, std::size_t Number) const {
  const auto Record = FRecords.find(Number);
  if (Record == FRecords.end()) return {};
  if (!LContainer().GetLanguagesTable(FDatabaseName).LanguageExist(*Item.Language))
    return {{Format("add the language '%s'", *Item.Language)}};
  if (!IsOther(Item, Record->second)) return {};
  return {{Format("replace what the language '%s' is called", *Item.Language)}};
}

}  // namespace velkrund
