#include "standalone/localization/SectionReader.h"

#include <algorithm>
#include <utility>

#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// Strings of a page: few until it shows how long their texts are.
constexpr std::size_t FirstPage = 64, LargestPage = 500;
/// Bytes of a page's texts that are aimed at.
constexpr std::size_t PageBytes = std::size_t{1} << 20U;

}  // namespace

TSectionReader::TSectionReader(TLocalizationTables& Tables, std::string SectionKey, const TStringList& Languages)
    : FTables(Tables), FSectionKey(std::move(SectionKey)), FPageSize(FirstPage) {
  if (FTables.Exist()) FindLanguages(Languages);
  FLater.resize(FLanguages.size());
  if (!FLanguages.empty()) CountStrings();
}

void TSectionReader::FindLanguages(const TStringList& Languages) {
  std::vector<std::pair<std::string, std::int64_t>> Known;
  for (const auto Rows = FTables.Query("SELECT name_key, number FROM velkrund_languages"); Rows->Next();)
    Known.emplace_back(TakeText(*Rows, 0), TakeNumber(*Rows, 1).value_or(0));
  for (const std::string& Language : Languages) {
    const auto Found = std::find_if(Known.begin(), Known.end(),
                                    [Key = LowerCase(Language)](const auto& Entry) { return Entry.first == Key; });
    if (Found == Known.end()) {
      FPlaces.push_back(-1);
      continue;
    }
    const auto Place = std::find(FLanguages.begin(), FLanguages.end(), Found->second);
    FPlaces.push_back(static_cast<int>(Place - FLanguages.begin()));
    if (Place == FLanguages.end()) FLanguages.push_back(Found->second);
  }
  if (FLanguages.size() < Known.size()) FLanguageWords = Format(" AND language_number IN (%s)", ListOf(FLanguages));
}

void TSectionReader::CountStrings() {
  std::string Statement = "SELECT count(*) FROM velkrund_strings WHERE section_key = ?";
  if (!FLanguageWords.empty())
    Statement += Format(" AND EXISTS (SELECT 1 FROM velkrund_texts WHERE string_number = velkrund_strings.number%s)",
                        FLanguageWords);
  FCount = FTables.QueryNumber(Statement, {TextCell(FSectionKey)}).value_or(0);
}

bool TSectionReader::Next() {
  if (FLanguages.empty()) return false;
  if (FHasPage) ++FAt;
  while (true) {
    if (!FHasPage || FAt >= FStringCount) {
      if (!ReadPage()) return false;
      continue;
    }
    const std::size_t First = FirstLanguage(FAt);
    if (First < FLanguages.size() && (!FIsFirst || First == 0)) return true;
    ++FAt;
  }
}

/// False: there is none any more.
bool TSectionReader::ReadPage() {
  FHasPage = false;
  FAt = FStringCount = 0;
  if (FIsFirst) ReadFirst();
  if (FStringCount == 0) {
    FIsFirst = false;
    ReadLater();
  }
  if (FStringCount == 0) return false;
  ReadTexts();
  if (FIsFirst) PutAside();
  const std::size_t Most = FBytes.size() > PageBytes ? FPageSize / 2 : FPageSize * 2;
  FPageSize = std::clamp(Most, std::size_t{1}, LargestPage);
  return FHasPage = true;
}

void TSectionReader::ReadFirst() {
  const auto Rows = FTables.Query(
      Format("SELECT number, name FROM velkrund_strings WHERE section_key = ? AND number > ? ORDER BY number LIMIT %d",
             FPageSize),
      {TextCell(FSectionKey), NumberCell(FLast)});
  TakeStrings(*Rows);
  if (FStringCount > 0) FLast = FStrings[FStringCount - 1].Number;
}

/// Of one language; a page may turn out empty when others have deleted its strings meanwhile.
void TSectionReader::ReadLater() {
  while (FStringCount == 0 && FLaterLanguage < FLater.size()) {
    const std::vector<std::int64_t>& Numbers = FLater[FLaterLanguage];
    const std::size_t Size = std::min(FPageSize, Numbers.size() - FLaterAt);
    if (Size == 0) {
      ++FLaterLanguage;
      FLaterAt = 0;
      continue;
    }
    const auto Rows =
        FTables.Query(Format("SELECT number, name FROM velkrund_strings WHERE number IN (%s) ORDER BY number",
                             ListOf(std::span(Numbers).subspan(FLaterAt, Size))));
    TakeStrings(*Rows);
    FLaterAt += Size;
  }
}

void TSectionReader::TakeStrings(TCursor& Rows) {
  TKvVariant Number, Name;
  while (Rows.Next()) {
    if (FStrings.size() == FStringCount) FStrings.emplace_back();
    TString& String = FStrings[FStringCount++];
    Rows.Read(0, Number);
    Rows.Read(1, Name);
    String.Number = NumberIn(Number);
    String.Name = TextIn(Name);
  }
}

void TSectionReader::ReadTexts() {
  FBytes.clear();
  FTexts.assign(FStringCount * FLanguages.size(), {});
  const std::span<const TString> Strings(FStrings.data(), FStringCount);
  const std::int64_t First = Strings.front().Number, Last = Strings.back().Number;
  std::string Which = Format("BETWEEN %d AND %d", First, Last);
  // Strings of other sections stand between them.
  if (Last - First >= static_cast<std::int64_t>(FStringCount)) {
    std::vector<std::int64_t> Numbers;
    for (const TString& String : Strings) Numbers.push_back(String.Number);
    Which = Format("IN (%s)", ListOf(Numbers));
  }
  const auto Rows =
      FTables.Query(Format("SELECT string_number, language_number, text FROM velkrund_texts WHERE string_number %s%s",
                           Which, FLanguageWords));
  TKvVariant Number, Language, Text;
  auto String = Strings.begin();
  while (Rows->Next()) {
    Rows->Read(0, Number);
    Rows->Read(1, Language);
    Rows->Read(2, Text);
    const std::int64_t Wanted = NumberIn(Number);
    // Mostly that of the row before.
    if (String == Strings.end() || String->Number != Wanted)
      String = std::lower_bound(Strings.begin(), Strings.end(), Wanted,
                                [](const TString& A, std::int64_t B) { return A.Number < B; });
    const auto Place = std::find(FLanguages.begin(), FLanguages.end(), NumberIn(Language));
    if (String == Strings.end() || String->Number != Wanted || Place == FLanguages.end()) continue;
    TText& Taken = FTexts[static_cast<std::size_t>(String - Strings.begin()) * FLanguages.size() +
                          static_cast<std::size_t>(Place - FLanguages.begin())];
    const std::string_view Found = TextIn(Text);
    if (Taken.IsThere) RefuseCell(Text, "no second text of a string in one language");
    Taken = {FBytes.size(), Found.size(), true};
    FBytes += Found;
  }
}

/// Strings without a text in the first language, for later.
void TSectionReader::PutAside() {
  for (std::size_t String = 0; String < FStringCount; ++String) {
    const std::size_t First = FirstLanguage(String);
    if (First > 0 && First < FLanguages.size()) FLater[First].push_back(FStrings[String].Number);
  }
}

/// That a string of the page has a text in, as a place in FLanguages; their number: in none of them.
std::size_t TSectionReader::FirstLanguage(std::size_t String) const {
  std::size_t Place = 0;
  while (Place < FLanguages.size() && !FTexts[String * FLanguages.size() + Place].IsThere) ++Place;
  return Place;
}

std::optional<std::string_view> TSectionReader::Text(int Language) {
  const int Place = FPlaces.at(static_cast<std::size_t>(Language));
  if (Place < 0) return std::nullopt;
  const TText& Text = FTexts[FAt * FLanguages.size() + static_cast<std::size_t>(Place)];
  if (!Text.IsThere) return std::nullopt;
  return std::string_view(FBytes).substr(Text.Start, Text.Size);
}

}  // namespace velkrund
