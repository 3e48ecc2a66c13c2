#include "jobs/resources/PoStrings.h"

#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// Between msgctxt and msgid in what is digested, as in compiled catalogues.
constexpr char ContextEnd = '\x04';

std::string NameOf(const TPoEntry& Entry) {
  constexpr std::string_view Digits = "0123456789ABCDEF";
  const std::uint64_t Digest = TextDigest(Entry.Context ? *Entry.Context + ContextEnd + Entry.Id : Entry.Id);
  std::string Result;
  for (int Shift = 60; Shift >= 0; Shift -= 4) Result += Digits[Digest >> Shift & 0xF];
  return Result;
}

/// For messages.
std::string Named(const TPoEntry& Entry) {
  return "'" + OnOneLine(Shortened(Entry.Context ? *Entry.Context : Entry.Id)) + "'";
}

}  // namespace

std::uint64_t TextDigest(std::string_view Text) {
  // FNV-1a.
  std::uint64_t Result = 0xCBF29CE484222325;
  for (const char Char : Text) Result = (Result ^ static_cast<unsigned char>(Char)) * 0x100000001B3;
  return Result;
}

TPoStrings::TPoStrings(TFileSystem& Files, const std::string& FileName, TSettings Settings)
    : FSettings(std::move(Settings)), FStream(Files) {
  FStream.SetFileName(FileName);
  FStream.Open(TFileMode::Read);
  FReader.emplace(FStream, FileName);
}

bool TPoStrings::Next(TPoString& String) {
  do {
    String.Place = FReader->NextPlace();
    const bool Found = FReader->Next(FEntry);
    FCounts.Obsolete = FReader->ObsoleteEntries();
    if (!Found) return false;
  } while (!Takes(FEntry));
  ++FCounts.Strings;
  String.Line = FEntry.Line;
  TakeID(FEntry, String);
  String.Source = std::move(FEntry.Id);
  TakeTarget(FEntry, String);
  return true;
}

/// Whether the entry is a string; one with plural forms is several.
bool TPoStrings::Takes(const TPoEntry& Entry) {
  if (!Entry.IsPlural) return true;
  if (!FSettings.AllowLoss)
    FReader->Refuse(Entry.Line, Format("the entry %s has plural forms, which the store cannot keep", Named(Entry)),
                    TErrorCode::Loss);
  ++FCounts.Plurals;
  return false;
}

void TPoStrings::TakeID(const TPoEntry& Entry, TPoString& String) {
  String.SectionID = Entry.Section;
  if (FSettings.SectionID.empty()) {
    if (!Entry.Context)
      FReader->Refuse(Entry.Line,
                      Format("the entry %s has no msgctxt, which would be the ID of its string", Named(Entry)),
                      TErrorCode::ContextMissing);
    String.StringID = *Entry.Context;
    try {
      RequireKept(TResourceName::String, String.StringID);
    } catch (const EResourceName& Error) {
      FReader->Refuse(Entry.Line, Error.what());
    }
    return;
  }
  if (Entry.Context && !FSettings.AllowLoss)
    FReader->Refuse(Entry.Line,
                    Format("the entry has the msgctxt %s, which would be lost, since IDs are made", Named(Entry)),
                    TErrorCode::Loss);
  FCounts.Contexts += Entry.Context ? 1 : 0;
  String.SectionID = SectionWithoutSeparator(FSettings.SectionID);
  String.StringID = StringIDOf(FSettings.SectionID, NameOf(Entry));
}

void TPoStrings::TakeTarget(TPoEntry& Entry, TPoString& String) {
  String.Target.reset();
  if (Entry.Text.empty()) {
    ++FCounts.Untranslated;
    return;
  }
  if (Entry.IsFuzzy && FSettings.Fuzzy == TFuzzyEntries::Refuse)
    FReader->Refuse(Entry.Line, Format("the entry of the string '%s' is fuzzy", OnOneLine(String.StringID)),
                    TErrorCode::FuzzyEntry);
  FCounts.Fuzzy += Entry.IsFuzzy ? 1 : 0;
  if (!Entry.IsFuzzy || FSettings.Fuzzy == TFuzzyEntries::Take) String.Target = std::move(Entry.Text);
}

}  // namespace velkrund
