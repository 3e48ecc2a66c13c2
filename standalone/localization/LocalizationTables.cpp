#include "standalone/localization/LocalizationTables.h"

#include <algorithm>

#include "standalone/catalogue/CatalogueCells.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr bool ByBytes = true, Unique = true;

// Keys are names and IDs in lower case.

const TCatalogueTable& Languages() {
  static const TCatalogueTable Table{"velkrund_languages",
                                     {{"number", TKvKind::Int64, false},
                                      {"name_key", TKvKind::String, false, ByBytes},
                                      {"name", TKvKind::String, false},
                                      {"russian_name", TKvKind::String, false},
                                      {"english_name", TKvKind::String, false},
                                      {"native_name", TKvKind::String, false}},
                                     "number",
                                     {{"velkrund_languages_key", "name_key", Unique}}};
  return Table;
}

const TCatalogueTable& Strings() {
  static const TCatalogueTable Table{
      "velkrund_strings",
      {{"number", TKvKind::Int64, false},
       {"string_key", TKvKind::String, false, ByBytes},
       {"section_key", TKvKind::String, false, ByBytes},
       {"section_id", TKvKind::String, false, ByBytes},
       {"name", TKvKind::String, false}},
      "number",
      {{"velkrund_strings_key", "string_key", Unique}, {"velkrund_strings_section", "section_key, number"}}};
  return Table;
}

const TCatalogueTable& Texts() {
  static const TCatalogueTable Table{"velkrund_texts",
                                     {{"string_number", TKvKind::Int64, false},
                                      {"language_number", TKvKind::Int64, false},
                                      {"text", TKvKind::String, false}},
                                     "string_number, language_number",
                                     {},
                                     true};
  return Table;
}

std::span<const TKvVariant> SpanOf(std::initializer_list<TKvVariant> Parameters) {
  return {Parameters.begin(), Parameters.size()};
}

}  // namespace

bool TLocalizationTables::Exist() {
  // The last one that is made.
  if (FExistMark != TransactionMark() && TCatalogue(Connection()).Has(Texts())) FExistMark = TransactionMark();
  return FExistMark == TransactionMark();
}

void TLocalizationTables::Make() {
  if (Exist()) return;
  TCatalogue Catalogue(Connection());
  for (const TCatalogueTable* Table : {&Languages(), &Strings(), &Texts()}) Catalogue.Make(*Table);
}

std::string TLocalizationTables::Marked(std::string_view Statement) {
  const TDialect& Dialect = Connection().Dialect();
  std::string Result;
  int Number = 0;
  for (const char C : Statement) {
    if (C == '?')
      Result += Dialect.ParameterMark(++Number);
    else
      Result += C;
  }
  return Result;
}

std::unique_ptr<TCursor> TLocalizationTables::Query(std::string_view Statement,
                                                    std::initializer_list<TKvVariant> Parameters) {
  return Connection().Query(Marked(Statement), SpanOf(Parameters));
}

std::int64_t TLocalizationTables::Execute(std::string_view Statement, std::initializer_list<TKvVariant> Parameters) {
  return Connection().Execute(Marked(Statement), SpanOf(Parameters));
}

std::optional<std::int64_t> TLocalizationTables::QueryNumber(std::string_view Statement,
                                                             std::initializer_list<TKvVariant> Parameters) {
  const auto Rows = Query(Statement, Parameters);
  return Rows->Next() ? TakeNumber(*Rows, 0) : std::nullopt;
}

std::optional<std::int64_t> TLocalizationTables::LanguageNumber(const std::string& Language) {
  if (!Exist()) return std::nullopt;
  const std::string Key = LowerCase(Language);
  return QueryNumber("SELECT number FROM velkrund_languages WHERE name_key = ?", {TextCell(Key)});
}

std::int64_t TLocalizationTables::NeedLanguage(const std::string& Language) {
  const std::string Key = LowerCase(Language);
  std::optional<std::int64_t> Number;
  if (Exist())
    Number = QueryNumber(Format("SELECT number FROM velkrund_languages WHERE name_key = ?%s", RowLock(TRowLock::Stay)),
                         {TextCell(Key)});
  if (Number) return *Number;
  throw EDatabaseError(
      Format("The database has no language '%s': add it first, with 'languages add' or by importing "
             "its section of a file",
             Language));
}

std::int64_t TLocalizationTables::LastNumber() {
  if (!Exist()) return 0;
  return QueryNumber("SELECT max(number) FROM velkrund_strings").value_or(0);
}

void TLocalizationTables::HoldNumbers() {
  if (HoldsNumbers()) return;
  Connection().LockName("numbers of localized strings", "Cannot write new localized strings");
  // A text that somebody has written into a string at the moment of its removal is nobody's.
  FLastNumber = std::max(LastNumber(), QueryNumber("SELECT max(string_number) FROM velkrund_texts").value_or(0));
  FNumbersMark = TransactionMark();
}

std::string ListOf(std::span<const std::int64_t> Numbers) {
  std::string Result;
  for (const std::int64_t Number : Numbers) (Result += Result.empty() ? "" : ", ") += std::to_string(Number);
  return Result;
}

std::optional<std::string_view> NameInSection(std::string_view StringID, std::string_view SectionKey) {
  // Letters may be of other sizes than their lower-case forms.
  std::size_t At = 0, KeyAt = 0;
  while (KeyAt < SectionKey.size()) {
    if (At == StringID.size()) return std::nullopt;
    if (LowerCase(NextCodePoint(StringID, At)) != NextCodePoint(SectionKey, KeyAt)) return std::nullopt;
  }
  if (At == StringID.size()) return std::string_view();
  // A name without a character would be that of the section's own ID.
  if (StringID[At] != '_' || At + 1 == StringID.size()) return std::nullopt;
  return StringID.substr(At + 1);
}

std::string SectionKeyOf(std::string_view SectionID) { return LowerCase(SectionWithoutSeparator(SectionID)); }

const char* WhyNotHeld(const TCapabilities& Engine, std::string_view Text) {
  if (FindMalformedUtf8(Text) != std::string_view::npos) return "has bytes that are no UTF-8";
  if (!Engine.NulInText && Text.find('\0') != std::string_view::npos)
    return "has a character U+0000, which the engine does not hold";
  if (!Engine.HalfCharacters && !IsStrictUtf8(Text))
    return "has one half of a character beyond U+FFFF, which the engine does not hold";
  return nullptr;
}

void CheckHolds(const TCapabilities& Engine, std::string_view Text, std::string_view What) {
  const char* const Fault = WhyNotHeld(Engine, Text);
  if (!Fault) return;
  throw EDatabaseError(Format("%s %s", What, Fault), {.Code = TErrorCode::Value, .Value = Shortened(Text)});
}

}  // namespace velkrund
