#include "standalone/localization/SectionLock.h"

#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// Before anything is read, so that what others have written before is found. Returns the language's number.
std::int64_t Locked(TLocalizationTables& Tables, const TKnownStrings& Strings, const std::string& Language) {
  const std::string What = Format("Cannot write texts of section '%s' in language '%s'", Strings.SectionID(), Language);
  try {
    Tables.Connection().LockName(Format("section %s\n%s", Strings.SectionKey(), LowerCase(Language)), What);
  } catch (const EDatabaseError& Error) {
    if (Error.Info().Code != TErrorCode::DatabaseBusy) throw;
    throw EDatabaseError(Format("%s; another connection is writing them", Error.what()), Error.Info());
  }
  return Tables.NeedLanguage(Language);
}

}  // namespace

TSectionLock::TSectionLock(TLocalizationTables& Tables, TKnownStrings Strings, const std::string& Language)
    : FTables(Tables),
      FStrings(std::move(Strings)),
      FLanguage(Language),
      FNumber(Locked(Tables, FStrings, Language)),
      FMark(Tables.TransactionMark()),
      FDepth(Tables.TransactionDepth()),
      FWriter(Tables, FStrings.SectionID(), FStrings.SectionKey(), FNumber) {}

bool TSectionLock::IsOf(std::string_view SectionID, std::string_view Language) const {
  return SectionKeyOf(SectionID) == FStrings.SectionKey() && SameText(Language, FLanguage);
}

bool TSectionLock::Covers(std::string_view StringID, std::string_view Language) const {
  return (Language == FLanguage || SameText(Language, FLanguage)) && NameOf(StringID);
}

/// In the section; nothing: it does not belong there.
std::optional<std::string_view> TSectionLock::NameOf(std::string_view StringID) const {
  const std::string& SectionID = FStrings.SectionID();
  // Mostly it is spelt alike.
  if (StringID.size() > SectionID.size() + 1 && StringID[SectionID.size()] == '_' && StringID.starts_with(SectionID))
    return StringID.substr(SectionID.size() + 1);
  return NameInSection(StringID, FStrings.SectionKey());
}

TKnownString* TSectionLock::Find(std::string_view StringID) {
  if (!FStrings.IsOfNow()) {
    FWriter.Finish();
    FStrings.ReadAll(FNumber);
  }
  return FStrings.Find(StringID, FNumber);
}

bool TSectionLock::Exists(std::string_view StringID) {
  const TKnownString* const String = Find(StringID);
  return String && String->HasText;
}

bool TSectionLock::IsWritten(std::string_view StringID) {
  const TKnownString* const String = Find(StringID);
  return String && String->IsWritten;
}

void TSectionLock::Write(std::string_view StringID, std::string_view Text) {
  TKnownString& String = StringFor(StringID);
  if (String.IsWritten) FWriter.Finish();
  FWriter.Put(String.Number, Text, String.HasText, String.IsHeld);
  String.HasText = String.IsWritten = String.IsHeld = true;
}

/// In this section.
TKnownString& TSectionLock::StringFor(std::string_view StringID) {
  TKnownString* String = Find(StringID);
  if (!String && !FTables.HoldsNumbers()) {
    HoldNumbers();
    String = Find(StringID);
  }
  const std::optional<std::string_view> Name = NameOf(StringID);
  if (!Name)
    throw EDatabaseError(
        Format("A catalogue table is damaged: the string '%s' stands in section '%s'", StringID, FStrings.SectionID()));
  if (!String) {
    const std::int64_t Number = FTables.NextNumber();
    FWriter.AddString(Number, StringID, *Name);
    return FStrings.Add(StringID, Number);
  }
  if (std::exchange(String->IsForeign, false))
    FTables.Execute(
        "UPDATE velkrund_strings SET section_key = ?, section_id = ?, name = ? WHERE number = ?",
        {TextCell(FStrings.SectionKey()), TextCell(FStrings.SectionID()), TextCell(*Name), NumberCell(String->Number)});
  return *String;
}

void TSectionLock::HoldNumbers() {
  FTables.HoldNumbers();
  // Somebody may have written new strings since these were read.
  if (FTables.LastNumber() == FStrings.LastNumber()) return;
  FWriter.Finish();
  FStrings.ReadAll(FNumber);
}

}  // namespace velkrund
