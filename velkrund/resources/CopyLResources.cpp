#include "velkrund/resources/CopyLResources.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "velkrund/operations/ListProgress.h"
#include "velkrund/operations/ListQuestion.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/LanguageLock.h"

namespace velkrund {

namespace {

using TSections = TUOCopyLSections;
using TStrings = TUOCopyLResources;

constexpr TProperty SectionsProperties[] = {
    PropertyOf<&TSections::SectionIDs>("SectionIDs", "sections of strings to copy"),
    PropertyOf<&TSections::OverwritesAll, &TSections::SetOverwritesAll>(
        "Overwrite", "replace texts that are there; otherwise a person is asked"),
    ReadOnlyOf<&TSections::Texts>("Texts", "texts written by the last run"),
    ReadOnlyOf<&TSections::TextsLeftAlone>("TextsLeftAlone", "texts that were there, and stay because of an answer"),
    ReadOnlyOf<&TSections::Failed>("Failed", "sections that could not be copied"),
};

constexpr TProperty StringsProperties[] = {
    PropertyOf<&TStrings::SourceSectionID>("SourceSectionID", "section whose strings are copied"),
    PropertyOf<&TStrings::TargetSectionID>("TargetSectionID", "section of the same database that they go into"),
    PropertyOf<&TStrings::OverwritesAll, &TStrings::SetOverwritesAll>(
        "OverWrite", "replace strings that are there; otherwise a person is asked"),
    ReadOnlyOf<&TStrings::Texts>("Texts", "texts written by the last run"),
    ReadOnlyOf<&TStrings::TextsLeftAlone>("TextsLeftAlone", "texts that were there, and stay because of an answer"),
    ReadOnlyOf<&TStrings::Failed>("Failed", "strings that could not be copied"),
};

struct TPlace {
  std::string DatabaseName, SectionID;
};

/// The copy of the texts of a section into a section, language by language.
class TSectionCopy {
 public:
  using TReportOf = std::function<TLResourceReport&(const std::string& Name)>;

  /// ReportOf: gives the report that a string counts in; valid until the next call.
  TSectionCopy(TUtilOperation& Operation, TYesNoCancelAsk& Ask, TPlace From, TPlace To, TReportOf ReportOf)
      : FOperation(Operation),
        FAsk(Ask),
        FFrom(std::move(From)),
        FTo(std::move(To)),
        FReportOf(std::move(ReportOf)),
        FSource(LContainer().GetLocalizatorTable(FFrom.DatabaseName)),
        FTarget(LContainer().GetLocalizatorTable(FTo.DatabaseName)) {}

  /// False: cancelled, or ended by an answer; then, and after an error, all is to be taken back.
  bool Run() {
    FDone = FTotal = 0;
    for (const std::string& Language : LanguagesWithTexts())
      if (!CopyLanguage(Language)) return false;
    return true;
  }

  /// Whose text was being written when Run failed; empty: none's.
  const std::string& NameInHand() const { return FName; }
  /// The next run copies no string of that name.
  void LeaveOut(const std::string& Name) { FLeftOut.insert(LowerCase(Name)); }

  TProgressCallback OnProgress;

 private:
  TStringList LanguagesWithTexts() {
    TLanguagesTable& Target = LContainer().GetLanguagesTable(FTo.DatabaseName);
    TStringList All, Result;
    LContainer().GetLanguagesTable(FFrom.DatabaseName).FillLanguageNames(All);
    for (const std::string& Language : All) {
      const std::int64_t Texts = FSource.ReadSection(FFrom.SectionID, {Language})->Count();
      if (Texts == 0) continue;
      if (!Target.LanguageExist(Language))
        throw ELUtilError(
            Format("Can not copy resources. Language '%s' of section '%s' not found in database '%s'. "
                   "Copy the languages first",
                   Language, FFrom.SectionID, FTo.DatabaseName));
      Result.Add(Language);
      FTotal += Texts;
    }
    return Result;
  }

  bool CopyLanguage(const std::string& Language) {
    TLanguageLock Lock(FTarget, FTo.SectionID, Language);
    const std::unique_ptr<TSectionTexts> Texts = FSource.ReadSection(FFrom.SectionID, {Language});
    while (Texts->Next()) {
      if (IsLeftOut(Texts->Name())) continue;
      ReportProgress(OnProgress, FDone++, FTotal, Texts->Name());
      if (FOperation.IsCanceled()) return false;
      FName = Texts->Name();
      const std::optional<std::string_view> Text = Texts->Text(0);
      if (Text && !Write(Language, *Text)) return false;
      FName.clear();
    }
    Lock.End();
    return true;
  }

  bool IsLeftOut(const std::string& Name) const { return !FLeftOut.empty() && FLeftOut.contains(LowerCase(Name)); }

  bool Write(const std::string& Language, std::string_view Text) {
    SetStringID(FID, FTo.SectionID, FName);
    TLResourceReport& Report = FReportOf(FName);
    const bool IsAsked = FAsk.FAlwaysAsk || !FAsk.FYes || FAsk.FCancel;
    if (IsAsked && FTarget.StringExist(FID, Language) && !MayOverwrite()) {
      ++Report.LeftAlone;
      return !FAsk.FCancel;
    }
    FTarget.WriteString(FID, Language, Text);
    ++Report.Texts;
    return true;
  }

  /// Asked once a string, whatever its languages and runs.
  bool MayOverwrite() {
    if (!FAsk.FAlwaysAsk) return AskOfListToEnd(FAsk, {}, &FOperation);
    const auto [Known, IsNew] = FAnswers.try_emplace(LowerCase(FName), false);
    if (IsNew) {
      const std::string Key = "M_Catalox_LUtils_OverwriteCopyLSectionsConfirm";
      Known->second = AskOfListToEnd(FAsk, Format(BaseMng().LString(Key), FID), &FOperation);
    }
    return Known->second;
  }

  TUtilOperation& FOperation;
  TYesNoCancelAsk& FAsk;
  const TPlace FFrom, FTo;
  const TReportOf FReportOf;
  TLocalizatorTable &FSource, &FTarget;
  std::int64_t FDone = 0, FTotal = 0;  // texts
  std::string FName, FID;              // of the string in hand
  std::unordered_set<std::string> FLeftOut;
  std::unordered_map<std::string, bool> FAnswers;
};

}  // namespace

constinit const TUtilOperationDescriptor TSections::Descriptor = OperationDescriptor<TSections>("TUOCopyLSections");
constinit const TUtilOperationDescriptor TStrings::Descriptor = OperationDescriptor<TStrings>("TUOCopyLResources");
constinit const TInterfaceDescriptor TUOCopyLSectionsInterface::Descriptor =
    Describe("TUOCopyLSectionsInterface", SectionsProperties);
constinit const TInterfaceDescriptor TUOCopyLResourcesInterface::Descriptor =
    Describe("TUOCopyLResourcesInterface", StringsProperties);

int TUOCopyLSections::Execute() {
  if (BaseMng().IsSameDatabase(DatabaseName, TargetDatabaseName))
    throw ELUtilError("Can not copy resources to same database.");
  BeginAsking();
  constexpr TListWords Words{"M_Velkrund_LUtils_ErrorOnCopyLocalSection", "M_Velkrund_DSPUtils_ContinueCopy", true};
  return RunItems(*this, SectionIDs, Words, [this](TLItemResult& Result, int Index) { return CopyOne(Result, Index); });
}

bool TUOCopyLSections::CopyOne(TLItemResult& Result, int Index) {
  TLResourceReport Copied;
  TTransaction Transaction(TargetDatabaseName, TIsolationLevel::ReadCommitted);
  TSectionCopy Copy(*this, RunAsk(), {DatabaseName, Result.Name}, {TargetDatabaseName, Result.Name},
                    [&](const std::string&) -> TLResourceReport& { return Copied; });
  Copy.OnProgress = ProgressOfItem(*this, Index, SectionIDs.Count());
  if (!Copy.Run()) return false;
  Transaction.Commit();
  Result.Report = Copied;
  Result.LeftAlone = Copied.Texts == 0 && Copied.LeftAlone > 0;
  return true;
}

/// The copy as often as it takes: without the strings that have failed all others are copied anew.
class TUOCopyLResources::TRun {
 public:
  explicit TRun(TUOCopyLResources& Operation)
      : FOperation(Operation),
        FResults(Operation.FResults),
        FCopy(Operation, Operation.RunAsk(), {Operation.DatabaseName, Operation.SourceSectionID},
              {Operation.DatabaseName, Operation.TargetSectionID},
              [this](const std::string& Name) -> TLResourceReport& { return FReports[IndexOf(Name)]; }) {
    FCopy.OnProgress = [this](auto... Progress) { FOperation.ShowProgress(Progress...); };
  }

  /// Whether all is copied but what has failed; false: cancelled, or ended by an answer. Nothing: once more.
  std::optional<bool> Try() {
    try {
      return TryOnce();
    } catch (const EAbort&) {
      return false;
    } catch (const EQuestionUnanswered&) {
      throw;
    } catch (const std::exception& Error) {
      const std::string Name = FCopy.NameInHand();
      if (Name.empty()) throw;
      FResults[IndexOf(Name)].Error = std::current_exception();
      constexpr TListWords Words{"M_Velkrund_LUtils_ErrorOnCopyLocalResource", "M_Velkrund_DSPUtils_ContinueCopy",
                                 true};
      AskToGoOn(FOperation, Words, Error);
      FCopy.LeaveOut(Name);
      return std::nullopt;
    }
  }

 private:
  bool TryOnce() {
    TTransaction Transaction(FOperation.DatabaseName, TIsolationLevel::ReadCommitted);
    FReports.assign(FResults.size(), {});
    if (!FCopy.Run()) return false;
    Transaction.Commit();
    for (std::size_t Index = 0; Index < FReports.size(); ++Index) {
      FReports[Index].Strings = FReports[Index].Texts > 0 ? 1 : 0;
      FResults[Index].Report = FReports[Index];
      FResults[Index].LeftAlone = FReports[Index].Texts == 0 && FReports[Index].LeftAlone > 0;
    }
    return true;
  }

  std::size_t IndexOf(const std::string& Name) {
    const auto [Known, IsNew] = FIndexes.try_emplace(LowerCase(Name), FResults.size());
    if (IsNew) {
      FResults.push_back({.Name = Name});
      FReports.emplace_back();
    }
    return Known->second;
  }

  TUOCopyLResources& FOperation;
  std::vector<TLItemResult>& FResults;     // the strings that have come to hand, in their order
  std::vector<TLResourceReport> FReports;  // of these, in the try that runs
  std::unordered_map<std::string, std::size_t> FIndexes;
  TSectionCopy FCopy;
};

/// Where one section's ID begins with the other's, a copy can have the ID of a string that is to be copied.
void TUOCopyLResources::RefuseMoves() const {
  TStringList Languages;
  LContainer().GetLanguagesTable(DatabaseName).FillLanguageNames(Languages);
  std::vector<std::string> Names;
  std::unordered_set<std::string> IDs;
  const auto Texts = LContainer().GetLocalizatorTable(DatabaseName).ReadSection(SourceSectionID, Languages);
  while (Texts->Next()) {
    Names.push_back(Texts->Name());
    IDs.insert(LowerCase(StringIDOf(SourceSectionID, Texts->Name())));
  }
  for (const std::string& Name : Names)
    if (const std::string ID = StringIDOf(TargetSectionID, Name); IDs.contains(LowerCase(ID)))
      throw ELUtilError(
          Format("Can not copy resources. The copy of '%s' would take the place of '%s', which is a string of section "
                 "'%s' itself",
                 StringIDOf(SourceSectionID, Name), ID, SourceSectionID));
}

int TUOCopyLResources::Execute() {
  if (IsSameSection(SourceSectionID, TargetSectionID)) throw ELUtilError("Can not copy resources to itself.");
  FResults.clear();
  RefuseMoves();
  BeginAsking();
  TRun Run(*this);
  std::optional<bool> Done;
  while (!Done) Done = Run.Try();
  return *Done ? 1 : 0;
}

}  // namespace velkrund
