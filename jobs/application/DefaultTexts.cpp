#include "jobs/application/DefaultTexts.h"

#include <cstdint>
#include <cstdlib>

#include "velkrund/eif/EISource.h"
#include "velkrund/module/Module.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LResource.h"

namespace velkrund {

// Made from texts/velkrund.eif by cmake/EmbedFile.cmake.
extern const unsigned char EmbeddedTexts[];
extern const unsigned long EmbeddedTextsSize;

namespace {

constexpr std::string_view English = "English";
constexpr std::string_view Russian = "Russian";

/// A file that is in memory already. A run that is not strict about text has no say in it.
class TTextsSource final : public TEISource {
 public:
  explicit TTextsSource(std::string_view File) {
    FStream.Write(File);
    SetStrictText(true);
  }
  void CreateFile() override { FStream.Clear(); }
  TStream& Stream() override { return FStream; }

 protected:
  void InternalOpen() override { FStream.SetPosition(0); }

 private:
  TMemoryStream FStream;
};

[[noreturn]] void Refuse(std::int64_t Line, std::string_view What) {
  throw ETextsError(Format("The file of texts cannot be used. Line %d: %s", Line, What));
}

}  // namespace

TDefaultTexts::TDefaultTexts(std::string_view File) {
  StartModule();
  TTextsSource Source(File);
  try {
    Source.Open();
    if (Source.Sections().Count() == 0)
      Refuse(1, "there are no texts; do lines end with carriage return and line feed?");
    for (int Index = 0; Index < Source.Sections().Count(); ++Index) ReadSection(Source, Index);
  } catch (const ETextsError&) {
    throw;
  } catch (const std::exception& Error) {
    const TErrorFacts Facts = FactsOf(Error);
    Refuse(Facts.Info.Line, Facts.Message);
  }
}

void TDefaultTexts::ReadSection(TEISource& Source, int Index) {
  const TEISection& Header = Source.Sections()[Index];
  if (Header.Encoding() != TKvEncoding::Utf8) Refuse(Header.DataLinePosition, "the section's Encoding has to be UTF8");
  if (Header.ObjectClass != TEIObjectClass(TEILResource::Descriptor))
    Refuse(Header.DataLinePosition, Format("the section has to be of Type %s and Version 200", LResourceType));
  const auto Object = Source.CreateEIObject(Index);
  auto& Section = static_cast<TEILResource&>(*Object);
  TLSection Read;
  Section.StrictLines = true;
  Section.LSection = &Read;
  Source.ImportObject(Section);
  std::string Key;
  for (int Number = 0; Number < Read.GetCount(); ++Number) {
    const std::string& Language = Read.GetLanguages(Number);
    FTexts.AddLanguage(Language);
    for (const auto& [Name, Text] : Read.GetResByIndex(Number).Entries()) {
      SetStringID(Key, Section.SectionID(), Name);
      if (!FTexts.GetResources(Language)->Change(Key, Text))
        Refuse(Header.DataLinePosition, Format("a second text of %s in the language '%s'", Key, Language));
    }
  }
}

const TDefaultTexts& TDefaultTexts::Own() {
  static const TDefaultTexts Texts(std::string_view(reinterpret_cast<const char*>(EmbeddedTexts), EmbeddedTextsSize));
  return Texts;
}

std::optional<std::string> TDefaultTexts::Find(std::string_view Key, std::string_view Language) const {
  for (const std::string_view Candidate : {Language, English})
    if (const TStringHash* const Texts = FTexts.GetResources(Candidate))
      if (const auto Found = Texts->Find(Key)) return std::string(*Found);
  return std::nullopt;
}

std::string TextLanguage(const std::string& Setting) {
  std::string Wanted = Setting;
  for (const char* const Variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (!Wanted.empty()) break;
    if (const char* const Value = std::getenv(Variable)) Wanted = Value;
  }
  return std::string(LowerCase(Wanted).starts_with("ru") ? Russian : English);
}

}  // namespace velkrund
