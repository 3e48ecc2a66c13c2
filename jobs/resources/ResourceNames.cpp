#include "jobs/resources/ResourceNames.h"

#include <algorithm>

#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LResource.h"
#include "velkrund/resources/Language.h"

namespace velkrund {

namespace {

constexpr std::string_view Words[] = {"section", "string", "language", "name of a language"};

bool IsControl(char32_t Code) { return Code < 0x20 || (Code >= 0x7F && Code <= 0x9F); }

bool HasControl(std::string_view Text) {
  for (std::size_t At = 0; At < Text.size();)
    if (IsControl(NextCodePoint(Text, At))) return true;
  return false;
}

/// Why a name does not come back; empty: it does.
std::string_view Fault(TResourceName What, const std::string& Name) {
  if (Name.empty()) return What == TResourceName::LanguageText ? "" : "is empty";
  if (!IsStrictUtf8(Name)) return "is no UTF-8";
  if (HasControl(Name)) return "has a control character";
  // What stands before a language's name is known.
  const std::string_view Trimmed = What == TResourceName::LanguageText ? TrimRight(Name) : Trim(Name);
  if (Trimmed.size() != Name.size()) return "has a blank at its end or beginning";
  if (What == TResourceName::Language && Name.find_first_of(" =#") != std::string::npos)
    return "has a blank, an equals sign or a number sign";
  return {};
}

}  // namespace

void RequireKept(TResourceName What, const std::string& Name) {
  const std::string_view Found = Fault(What, Name);
  if (Found.empty()) return;
  throw EResourceName(Format("The %s '%s' %s, so that a file would not bring it back",
                             Words[static_cast<std::size_t>(What)], OnOneLine(Name), Found),
                      {.Code = TErrorCode::Value, .Value = Shortened(Name)});
}

void RequireKept(const std::string& Language, const TOneLanguage& Record) {
  RequireKept(TResourceName::Language, Language);
  for (const std::string* const Text : {&Record.RussianName, &Record.EnglishName, &Record.NativeName})
    RequireKept(TResourceName::LanguageText, *Text);
}

void RequireKeptNames(TEIFile& File, int Index) {
  const std::unique_ptr<TEIObject> Object = File.CreateEIObject(Index);
  if (dynamic_cast<const TEILanguage*>(Object.get()))
    return RequireKept(TResourceName::Language, File.Sections()[Index].ParamValue(LanguageParameter));
  auto* const Texts = dynamic_cast<TEICommonLResource*>(Object.get());
  if (!Texts) return;
  RequireKept(TResourceName::Section, std::string(SectionWithoutSeparator(Texts->SectionID())));
  TStringList Languages;
  Texts->ReadLanguagesOnly = true;
  Texts->Languages = &Languages;
  File.ImportObject(*Texts);
  for (const std::string& Language : Languages) RequireKept(TResourceName::Language, Language);
}

bool HasLanguage(const TStringList& Languages, const std::string& Name) { return Languages.IndexOf(Name) >= 0; }

TStringList LanguagesOf(const std::string& DatabaseName, const std::string& DatabaseText,
                        const std::vector<std::string>& Wanted) {
  TStringList Known;
  LContainer().GetLanguagesTable(DatabaseName).FillLanguageNames(Known);
  if (Wanted.empty()) return Known;
  TStringList Result;
  for (const std::string& Name : Wanted) {
    const int Index = Known.IndexOf(Name);
    if (Index < 0)
      throw ELanguageMissing(Format("There is no language '%s' in the database %s%s", OnOneLine(Name), DatabaseText,
                                    Known.Count() == 0 ? "" : ContentHint(Name, Known.Items(), ": it has ")),
                             {.Value = Shortened(Name)});
    if (!HasLanguage(Result, Name)) Result.Add(Known[Index]);
  }
  return Result;
}

}  // namespace velkrund
