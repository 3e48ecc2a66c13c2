#include "hosts/cli/SectionCheck.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "hosts/cli/Interrupt.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TSectionChecker::TSectionChecker(const TSession& Session)
    : FSession(Session),
      FDiscard(Session.Manager()),
      FGuard(TPlatform{&FDiscard, nullptr, nullptr, &FStructures, nullptr}) {}

TSectionCheck TSectionChecker::Check(TEIFile& File, int Index) {
  TSectionCheck Result;
  if (TInterrupt::Requested()) return Result;
  const TTextLosses Before = File.Losses();
  const auto Start = std::chrono::steady_clock::now();
  FSession.Progress.Begin(File.Sections()[Index].Name(), "bytes", File.Sections()[Index].DataSize);
  try {
    Read(File, Index, Result);
  } catch (const EAbort&) {
    Result.State = TItemState::Cancelled;
  } catch (const std::exception& Error) {
    Result.State = TItemState::Failed;
    Result.Error = Error.what();
  }
  FSession.Progress.End();
  Result.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
  Result.Losses = {File.Losses().Unrepresentable - Before.Unrepresentable, File.Losses().Malformed - Before.Malformed};
  return Result;
}

void TSectionChecker::Read(TEIFile& File, int Index, TSectionCheck& Result) {
  const std::unique_ptr<TEIObject> Object = File.CreateEIObject(Index);
  Object->OnCancel = &TInterrupt::Requested;
  Object->OnProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view) {
    FSession.Progress.Show(Current, Total);
  };
  TTableDataReport Report;
  auto* const Table = dynamic_cast<TEICommonTableData*>(Object.get());
  if (Table) {
    Table->Report = &Report;
    Table->StrictValues = true;
    FDiscard.SetFieldNames(FieldsOf(File, Index).value_or(std::vector<std::string>()));
  }
  const auto CountRows = [&] {
    if (Table) Result.Rows = Report.RowCount;
  };
  try {
    File.ImportObject(*Object);
  } catch (...) {
    CountRows();
    throw;
  }
  CountRows();
  Result.State = Object->Stopped() ? TItemState::Cancelled : TItemState::Done;
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
