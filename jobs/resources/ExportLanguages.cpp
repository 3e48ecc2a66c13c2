#include "jobs/resources/ExportLanguages.h"

#include "jobs/resources/ResourceNames.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/resources/Language.h"

namespace velkrund {

namespace {

using TThis = TJobExportLanguages;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::Languages>("Languages", "the languages to save; empty: all of the database"),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportLanguages");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportLanguagesInterface", {&ExportJobProperties, Properties});

std::vector<TItem> TJobExportLanguages::PlanItems() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  TLanguagesTable& Table = LContainer().GetLanguagesTable(DatabaseName);
  std::vector<TItem> Result;
  TStringList Seen;
  const std::vector<std::string> Named =
      Languages.empty() ? LanguagesOf(DatabaseName, DatabaseText(), {}).Items() : Languages;
  for (const std::string& Wanted : Named) {
    if (HasLanguage(Seen, Wanted)) continue;
    Seen.Add(Wanted);
    TItem& Item = Result.emplace_back();
    try {
      Item.Language = LanguagesOf(DatabaseName, DatabaseText(), {Wanted})[0];
      TOneLanguage Record;
      static_cast<void>(Table.GetLanguage(*Item.Language, Record));
      RequireKept(*Item.Language, Record);
    } catch (const ELanguageMissing&) {
      Item.Language = Wanted;
      LeaveOut(Item, std::current_exception());
    }
    Item.Section = SectionName.empty() ? *Item.Language : SectionName;
  }
  if (Result.empty()) FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_NoLanguages"));
  return Result;
}

TExportUtilOperation& TJobExportLanguages::OperationFor(const TItem& Item) {
  FOperation.Language = *Item.Language;
  return FOperation;
}

std::unique_ptr<TEIObject> TJobExportLanguages::TExport::CreateEIObject() {
  auto Section = std::make_unique<TEILanguage>();
  Section->DatabaseName = DatabaseName;
  Section->LanguageID = Language;
  return Section;
}

}  // namespace velkrund
