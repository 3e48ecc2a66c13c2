#include <unordered_set>
#include <vector>

#include "velkrund/eif/RecordPieces.h"
#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LResource.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/TextLines.h"

namespace velkrund {

namespace {

// A reader would find a second text of one name in one language.
TStringList WithoutRepeats(const TStringList& List) {
  TStringList Result;
  std::unordered_set<std::string> Seen;
  for (const std::string& Text : List)
    if (Seen.insert(LowerCase(Text)).second) Result.Add(Text);
  return Result;
}

bool HasLineEnd(std::string_view Text) { return Text.find_first_of("\r\n") != std::string_view::npos; }

}  // namespace

/// Writes one string after the other in languages that it checks once.
class TEICommonLResource::TWriter {
 public:
  TWriter(TEICommonLResource& Section, TEIStream& Stream) : FSection(Section), FStream(Stream) {}

  void WriteLanguages(const TStringList& Names) {
    FStream.Writeln(" [LANGUAGES]");
    for (const std::string& Name : Names) {
      if (HasLineEnd(Name)) RefuseLanguage(Name);
      FStream.Writeln(FLine.assign(Indentation).append(Name));
      TLanguage& Language = FLanguages.emplace_back();
      Language.Name = Name;
      Language.IsRefused = Name.find_first_of(" =") != std::string::npos;
      FSection.ConvertString(Language.LineBegin, Format("   %s = '", Name));
      Language.IsAltered = Language.LineBegin != Format("   %s = '", Name);
    }
  }

  void WriteString(TSectionTexts& Texts) {
    WriteName(Texts.Name());
    for (std::size_t Index = 0; Index < FLanguages.size(); ++Index)
      if (const auto Text = Texts.Text(static_cast<int>(Index))) WriteText(FLanguages[Index], *Text);
  }

 private:
  struct TLanguage {
    std::string Name, LineBegin;
    bool IsRefused, IsAltered;
  };

  [[noreturn]] static void RefuseLanguage(const std::string& Name) {
    throw ELUtilError(Format("Can not export local resource. Language '%s' contains incorrect symbols", Name));
  }

  // A name is not escaped: its line would be read as that of a text, or as two.
  void WriteName(const std::string& Name) {
    if (HasLineEnd(Name) || (!Name.empty() && static_cast<unsigned char>(Name.front()) <= ' '))
      throw ELUtilError(
          Format("Can not export local resource. A line cannot hold the name '%s': it begins with a "
                 "blank or a control character, or has a line end inside",
                 Name));
    FStream.Writeln((FLine.assign(Indentation) += Name) += ':');
  }

  void WriteText(const TLanguage& Language, std::string_view Text) {
    if (Language.IsRefused) RefuseLanguage(Language.Name);
    if (Language.IsAltered) {
      ++FStream.Losses().Altered;
      if (FStream.StrictText())
        throw ELUtilError(Format("Can not export local resource. Readers of the file would not find the language '%s' "
                                 "of its texts: the name has a '#' or a control character. Allow losses to write it "
                                 "all the same",
                                 Language.Name),
                          {.Code = TErrorCode::Loss});
    }
    FLine = Language.LineBegin;
    FSection.ConvertString(FLine, Text);
    WriteTextLine(FStream, FLine += '\'');
    ++FSection.Counted().Texts;
  }

  TEICommonLResource& FSection;
  TEIStream& FStream;
  std::vector<TLanguage> FLanguages;
  std::string FLine;
};

std::unique_ptr<TSectionTexts> TEICommonLResource::OpenTexts(const TStringList& InLanguages) const {
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  if (!Resources && IsSameSection(ExportSectionID, FSectionID)) return Table.ReadSection(FSectionID, InLanguages);
  TStringList Names;
  if (Resources) {
    Names = WithoutRepeats(*Resources);
  } else {
    const auto Listed = Table.ReadSection(FSectionID, InLanguages);
    while (Listed->Next()) Names.Add(Listed->Name());
  }
  return std::make_unique<TListedTexts>(Table, ExportSectionID, std::move(Names), InLanguages);
}

void TEICommonLResource::ExportData(TEIStream& Stream) {
  Counted() = {};
  TStringList All;
  if (!Languages) LContainer().GetLanguagesTable(DatabaseName).FillLanguageNames(All);
  const TStringList Written = WithoutRepeats(Languages ? *Languages : All);
  TWriter Writer(*this, Stream);
  Writer.WriteLanguages(Written);
  Stream.Writeln(" [STRINGS]");
  const auto Texts = OpenTexts(Written);
  for (std::int64_t Index = 0; Texts->Next(); ++Index) {
    ShowProgress(Index, Texts->Count(), Texts->Name());
    if (IsCanceled()) throw EAbort("Export of localized strings is cancelled");
    try {
      Writer.WriteString(*Texts);
      ++Counted().Strings;
    } catch (const EAbort&) {
      throw;
    } catch (const EQuestionUnanswered&) {
      throw;
    } catch (const std::exception& Error) {
      const std::string ID = Format("%s_%s", SectionWithoutSeparator(FSectionID), Texts->Name());
      GoOnOrRaise(Error, Format(BaseMng().LString("M_Velkrund_DSPUtils_ErrorOnExportLocalResource"), ID) + "\r\n" +
                             Error.what() + "\r\n" + BaseMng().LString("M_Velkrund_DSPUtils_ContinueExport"));
    }
  }
}

}  // namespace velkrund
