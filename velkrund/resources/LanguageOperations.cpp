#include "velkrund/resources/LanguageOperations.h"

#include <memory>

#include "velkrund/operations/ImportExport.h"
#include "velkrund/operations/ListQuestion.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/Language.h"
#include "velkrund/resources/TargetSections.h"

namespace velkrund {

namespace {

using TExport = TUOExportLanguages;
using TImport = TUOImportLanguages;
using TCopy = TUOCopyLanguages;
using TExportFace = TUOExportLanguagesInterface;
using TImportFace = TUOImportLanguagesInterface;

constexpr TProperty ExportProperties[] = {
    PropertyOf<&TExportFace::Target, &TExportFace::SetTarget>("Target", "opened TEIFile to append to"),
    PropertyOf<&TExport::Languages>("Languages", "languages to save, in this order"),
    PropertyOf<&TExport::UseEncoding>("UseEncoding", "write in Encoding; otherwise in ansi"),
    ChoiceOf<&TExport::Encoding>("Encoding", "encoding of the sections", EncodingNames),
    PropertyOf<&TExport::ToFolder>("ToFolder", "write the new file Languages.eif in Folder"),
    PropertyOf<&TExport::Folder>("Folder", "folder of that file"),
    ChoiceOf<&TExport::Overwrite, &TExport::SetOverwrite>(
        "Overwrite", "whether a section or a file that is there is replaced", RecreateOverwriteNames),
    ReadOnlyOf<&TExport::Written>("Written", "languages that the last run has saved"),
    ReadOnlyOf<&TExport::LeftAlone>("LeftAlone", "languages whose section stays because of an answer"),
};

constexpr TProperty ImportProperties[] = {
    PropertyOf<&TImportFace::Source, &TImportFace::SetSource>("Source", "opened TEIFile to read from"),
    PropertyOf<&TImport::SectionIndexes>("SectionIndexes", "indexes of the sections to load, from 0"),
};

constexpr TProperty CopyProperties[] = {
    PropertyOf<&TCopy::Languages>("Languages", "languages to copy, in this order"),
    PropertyOf<&TCopy::OverwritesAll, &TCopy::SetOverwritesAll>(
        "Overwrite", "replace the names of languages that are there; otherwise a person is asked"),
    ReadOnlyOf<&TCopy::Written>("Written", "languages that the last run has written"),
    ReadOnlyOf<&TCopy::LeftAlone>("LeftAlone", "languages with other names that stay because of an answer"),
};

}  // namespace

constinit const TUtilOperationDescriptor TExport::Descriptor = OperationDescriptor<TExport>("TUOExportLanguages");
constinit const TUtilOperationDescriptor TImport::Descriptor = OperationDescriptor<TImport>("TUOImportLanguages");
constinit const TUtilOperationDescriptor TCopy::Descriptor = OperationDescriptor<TCopy>("TUOCopyLanguages");
constinit const TInterfaceDescriptor TUOExportLanguagesInterface::Descriptor =
    Describe("TUOExportLanguagesInterface", ExportProperties);
constinit const TInterfaceDescriptor TUOImportLanguagesInterface::Descriptor =
    Describe("TUOImportLanguagesInterface", ImportProperties);
constinit const TInterfaceDescriptor TUOCopyLanguagesInterface::Descriptor =
    Describe("TUOCopyLanguagesInterface", CopyProperties);

int TUOExportLanguages::Execute() {
  FWritten.clear();
  FLeftAlone.clear();
  if (Languages.Count() == 0) return 1;
  BeginAsking();
  try {
    if (!ToFolder) {
      if (!Target) throw EAccessViolation("Access violation: the target of an export operation is not assigned");
      return ExportInto(*Target);
    }
    TEIFile File;
    File.SetFileName(PathInFolder(Folder, "Languages.eif"));
    if (!ReplacesFile(File.FileName(), RunAsk(), {}, this)) return 1;
    File.CreateNewFile();
    File.Open();
    const int Result = ExportInto(File);
    File.Sync();
    return Result;
  } catch (const EAbort&) {
    return 0;
  }
}

int TUOExportLanguages::ExportInto(TEISource& Source) {
  Source.SetDefaultEncoding(UseEncoding ? Encoding : TKvEncoding::Ansi);
  for (int Index = 0; Index < Languages.Count(); ++Index) {
    const std::string& Language = Languages[Index];
    ShowProgress(Index, Languages.Count(), Language);
    if (IsCanceled()) return 0;
    if (!ToFolder && !Replaces(Source, Language)) {
      FLeftAlone.push_back(Language);
      if (RunAsk().FCancel) break;
      continue;
    }
    TEILanguage Section;
    Section.DatabaseName = DatabaseName;
    Section.LanguageID = Language;
    Section.OnProgress = FOnShowProgress;
    Section.OnCancel = [this] { return IsCanceled(); };
    Section.SetOverwriteAsk(RunAsk());
    Source.ExportObject(Section, Language);
    FWritten.push_back(Language);
  }
  return 1;
}

bool TUOExportLanguages::Replaces(TEISource& Source, const std::string& Language) {
  std::string Question = HostText();
  if (Question.empty()) Question = Format(BaseMng().LString("M_Catalox_LUtils_OverwriteLanguageConfirm"), Language);
  const int Found =
      FindTargetSection(Source, TEIObjectClass(TEILanguage::Descriptor), "LanguageID", Language, SameText);
  return ReplacesTargetSection(Source, Found, RunAsk(), Question, this);
}

int TUOImportLanguages::Execute() {
  BeginAsking();
  if (!Source && SectionIndexes.Count())
    throw EAccessViolation("Access violation: the source of an import operation is not assigned");
  for (const std::string& Text : SectionIndexes) {
    if (IsCanceled()) return 0;
    const auto Index = StrToInt32(Text);
    if (!Index) throw EConvertError(Format("'%s' is not a valid integer value", Text));
    const std::unique_ptr<TEIObject> Object = Source->CreateEIObject(*Index);
    auto* const Section = dynamic_cast<TEILanguage*>(Object.get());
    if (!Section) throw Exception(Format("Section %d is no language, but of type '%s'", *Index, Object->TypeName()));
    Section->DatabaseName = DatabaseName;
    Section->OnProgress = FOnShowProgress;
    Section->OnCancel = [this] { return IsCanceled(); };
    Section->SetOverwriteAsk(RunAsk());
    Source->ImportObject(*Section);
  }
  return 1;
}

int TUOCopyLanguages::Execute() {
  FWritten.clear();
  FLeftAlone.clear();
  if (BaseMng().IsSameDatabase(DatabaseName, TargetDatabaseName))
    throw ELUtilError("Can not copy languages to same database.");
  BeginAsking();
  const TStringList Found = AsStored();
  try {
    for (int Index = 0; Index < Found.Count(); ++Index) {
      ShowProgress(Index, Found.Count(), Found[Index]);
      if (IsCanceled() || !CopyOne(Found[Index])) return 0;
    }
  } catch (const EAbort&) {
    return 0;
  }
  return 1;
}

/// The languages as the source writes them.
TStringList TUOCopyLanguages::AsStored() const {
  TStringList Known, Result;
  LContainer().GetLanguagesTable(DatabaseName).FillLanguageNames(Known);
  for (const std::string& Language : Languages) {
    const int Index = Known.IndexOf(Language);
    if (Index < 0)
      throw ELUtilError(Format("Can not copy language. Language %s not found in database %s", Language, DatabaseName));
    Result.Add(Known[Index]);
  }
  return Result;
}

/// False: an answer ends the list.
bool TUOCopyLanguages::CopyOne(const std::string& Language) {
  TLanguagesTable& Target = LContainer().GetLanguagesTable(TargetDatabaseName);
  TOneLanguage Names, Known;
  LContainer().GetLanguagesTable(DatabaseName).GetLanguage(Language, Names);
  if (Target.GetLanguage(Language, Known)) {
    if (Known == Names) return true;
    const std::string Question = Format(BaseMng().LString("M_Velkrund_DSPUtils_LanguageExists"), Language);
    if (!AskOfListToEnd(RunAsk(), Question, this)) {
      FLeftAlone.push_back(Language);
      return !RunAsk().FCancel;
    }
  }
  Target.SetLanguage(Language, Names);
  FWritten.push_back(Language);
  return true;
}

}  // namespace velkrund
