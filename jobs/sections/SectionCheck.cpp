#include "jobs/sections/SectionCheck.h"

#include <map>
#include <utility>

#include "jobs/files/SectionChoice.h"
#include "jobs/resources/ResourceNames.h"
#include "jobs/run/ItemAccount.h"
#include "velkrund/dictionary/RecordData.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TSectionChecker::TSectionChecker(TApplicationManager& Real, const TCancelCallback& Canceled,
                                 TProgressCallback OnProgress)
    : FCanceled(Canceled),
      FOnProgress(std::move(OnProgress)),
      FDiscard(Real),
      FManagerGuard(&FDiscard),
      FStructuresGuard(&FStructures),
      FObjectsGuard(&FObjects),
      FLocalizationGuard(&FLocalization),
      FRelationsGuard(nullptr),
      FWindowsGuard(nullptr) {}

TSectionChecker::TChecked TSectionChecker::Check(TEIFile& File, int Index) {
  const TEISection& Section = File.Sections()[Index];
  TChecked Result;
  TItem& Item = Result.Item;
  Item.Section = Section.Name();
  if (FCanceled()) return Result;
  const TItemAccount Account(File);
  try {
    Read(File, Index, Result);
  } catch (const EAbort&) {
    Item.State = TItemState::Cancelled;
  } catch (const std::exception& Error) {
    Item.State = TItemState::Failed;
    Item.Error = FactsOf(Error);
    Item.Error->Info.Fill({.File = File.FileName(), .Section = Section.Name()});
  }
  Account.Close(Item);
  Item.Bytes = Section.DataSize;
  return Result;
}

void TSectionChecker::Read(TEIFile& File, int Index, TChecked& Result) {
  std::unique_ptr<TTable> Anywhere;
  const std::unique_ptr<TEIObject> Object = File.CreateEIObject(Index);
  Object->OnCancel = FCanceled;
  Object->OnProgress = FOnProgress;
  Object->StrictLines = true;
  if (auto* const Data = dynamic_cast<TEIRecordData*>(Object.get())) {
    Result.HasRows = true;
    Data->Report = &Result.Item.Counts;
    Data->StrictValues = true;
    FDiscard.SetFieldNames(FieldsOf(File, Index).value_or(std::vector<std::string>()));
    // Where a section names no table nobody is asked for one.
    Anywhere = FDiscard.GetUserTable(Data->TableName, {}, true);
    Data->Table = Anywhere.get();
  }
  File.ImportObject(*Object);
  if (!Object->Stopped() && !Object->LeftAlone()) RequireKeptNames(File, Index);
  Result.Item.State = Object->Stopped() ? TItemState::Cancelled : TItemState::Done;
}

std::vector<std::string> RepeatedNames(const TEISectionList& Sections) {
  std::vector<std::string> Result;
  std::map<std::pair<std::string, std::string>, int> First;
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    const TEISection& Section = Sections[Index];
    const auto [Earlier, IsNew] =
        First.try_emplace({std::string(Section.TypeName()), LowerCase(Section.Name())}, Index);
    if (!IsNew)
      Result.push_back(
          Format("%s has the type and the name of section %d", SectionText(Sections, Index), Earlier->second));
  }
  return Result;
}

}  // namespace velkrund
