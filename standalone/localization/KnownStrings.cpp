#include "standalone/localization/KnownStrings.h"

#include <algorithm>

#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// Of other sections. A section whose ID is the beginning of many others' does not remember all of theirs.
constexpr int MostForeign = 10'000;

/// Number, key, section, and the number again where there is a text in the language, the first parameter.
constexpr const char* Select =
    "SELECT s.number, s.string_key, s.section_key, t.string_number FROM velkrund_strings s LEFT JOIN velkrund_texts t "
    "ON t.string_number = s.number AND t.language_number = ? WHERE %s";

}  // namespace

void TKnownStrings::Read(std::int64_t Language) {
  if (!IsComplete()) {
    ReadAll(Language);
  } else {
    for (TKnownString& String : FStrings) String.HasText = String.IsWritten = false;
    const bool MayHaveTexts = !FAreOwn || std::find(FLanguages.begin(), FLanguages.end(), Language) != FLanguages.end();
    if (MayHaveTexts) ReadTexts(Language);
  }
  FLanguages.push_back(Language);
}

/// Whether what is remembered is all that there is.
bool TKnownStrings::IsComplete() {
  // Who has the whole database, or holds the numbers, knows that nobody else adds strings.
  const bool IsAlone = FTables.RowLock(TRowLock::Stay).empty() || FTables.HoldsNumbers();
  return IsAlone && IsOfNow() && !FHasForeign && !FAsks;
}

void TKnownStrings::ReadAll(std::int64_t Language) {
  ReadNone();
  FAsks = false;
  ReadOwn(Language);
  FAreOwn = FStrings.empty();
  ReadForeign(Language);
}

void TKnownStrings::ReadNone() {
  FStrings.clear();
  FIndexes.clear();
  FLanguages.clear();
  FLastID.clear();
  FHasForeign = false;
  FAsks = true;
  FLastNumber = FTables.LastNumber();
  FMoment = FTables.Moment();
}

void TKnownStrings::ReadOwn(std::int64_t Language) {
  const auto Rows = FTables.Query(Format(Select, "s.section_key = ? ORDER BY s.number"),
                                  {NumberCell(Language), TextCell(FSectionKey)});
  TKvVariant Number, Key, Text;
  while (Rows->Next()) {
    Rows->Read(0, Number);
    Rows->Read(1, Key);
    Rows->Read(3, Text);
    Remember(Key.AsText(), {.Number = Number.AsInteger(), .HasText = !Text.IsNull()});
  }
}

void TKnownStrings::ReadForeign(std::int64_t Language) {
  // "`" stands behind "_".
  const std::string First = FSectionKey + "_", Last = FSectionKey + "`";
  const auto Rows = FTables.Query(
      Format(Select, Format("(s.string_key = ? OR (s.string_key >= ? AND s.string_key < ?)) AND s.section_key <> ? "
                            "LIMIT %d",
                            MostForeign + 1)),
      {NumberCell(Language), TextCell(FSectionKey), TextCell(First), TextCell(Last), TextCell(FSectionKey)});
  for (int Count = 0; Rows->Next(); ++Count) {
    if (Count == MostForeign) {
      FAsks = true;
      return;
    }
    FHasForeign = true;
    Remember(
        TakeText(*Rows, 1),
        {.Number = TakeNumber(*Rows, 0).value_or(0), .HasText = TakeNumber(*Rows, 3).has_value(), .IsForeign = true});
  }
}

/// Of what is remembered.
void TKnownStrings::ReadTexts(std::int64_t Language) {
  const auto Rows = FTables.Query(
      "SELECT t.string_number FROM velkrund_strings s JOIN velkrund_texts t ON t.string_number = s.number "
      "WHERE s.section_key = ? AND t.language_number = ? ORDER BY s.number",
      {TextCell(FSectionKey), NumberCell(Language)});
  TKvVariant Number;
  for (auto At = FStrings.begin(); Rows->Next();) {
    Rows->Read(0, Number);
    At = std::find_if(At, FStrings.end(), [&](const auto& String) { return String.Number >= Number.AsInteger(); });
    if (At != FStrings.end()) At->HasText = At->Number == Number.AsInteger();
  }
}

TKnownString* TKnownStrings::Find(std::string_view StringID, std::int64_t Language) {
  if (!FLastID.empty() && FLastID == StringID) return &FStrings[FLastIndex];
  const std::string Key = LowerCase(StringID);
  // Mostly they come in their order.
  std::size_t Index = FLastIndex + 1;
  if (Index >= FStrings.size() || *FStrings[Index].Key != Key) {
    const auto Found = FIndexes.find(Key);
    if (Found == FIndexes.end()) return FAsks ? Ask(Key, Language) : nullptr;
    Index = Found->second;
  }
  FLastIndex = Index;
  FLastID = StringID;
  return &FStrings[Index];
}

TKnownString* TKnownStrings::Ask(const std::string& Key, std::int64_t Language) {
  const auto Rows = FTables.Query(Format(Select, "s.string_key = ?"), {NumberCell(Language), TextCell(Key)});
  if (!Rows->Next()) return nullptr;
  return &Remember(Key, {.Number = TakeNumber(*Rows, 0).value_or(0),
                         .HasText = TakeNumber(*Rows, 3).has_value(),
                         .IsForeign = TakeText(*Rows, 2) != FSectionKey});
}

TKnownString& TKnownStrings::Add(std::string_view StringID, std::int64_t Number) {
  return Remember(LowerCase(StringID), {.Number = Number, .IsHeld = true});
}

TKnownString& TKnownStrings::Remember(std::string_view Key, const TKnownString& String) {
  const auto Place = FIndexes.emplace(Key, FStrings.size()).first;
  FStrings.push_back(String);
  FStrings.back().Key = &Place->first;
  return FStrings.back();
}

}  // namespace velkrund
