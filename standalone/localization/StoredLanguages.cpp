#include "standalone/localization/StoredLanguages.h"

#include <algorithm>

#include "standalone/catalogue/CatalogueCells.h"
#include "standalone/databases/WriteTransaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// Strings without any text.
constexpr const char* Empty =
    "velkrund_strings WHERE NOT EXISTS (SELECT 1 FROM velkrund_texts WHERE string_number = velkrund_strings.number)";

}  // namespace

bool TStoredLanguages::GetLanguage(const std::string& Language, TOneLanguage& Record) {
  if (!FTables.Exist()) return false;
  const std::string Key = LowerCase(Language);
  const auto Row = FTables.Query(
      "SELECT russian_name, english_name, native_name FROM velkrund_languages WHERE name_key = ?", {TextCell(Key)});
  if (!Row->Next()) return false;
  Record = {TakeText(*Row, 0), TakeText(*Row, 1), TakeText(*Row, 2)};
  return true;
}

void TStoredLanguages::SetLanguage(const std::string& Language, const TOneLanguage& Record) {
  const TCapabilities& Engine = FTables.Connection().Capabilities();
  CheckHolds(Engine, Language, "The name of the language");
  for (const std::string* Name : {&Record.RussianName, &Record.EnglishName, &Record.NativeName})
    CheckHolds(Engine, *Name, Format("A name of the language '%s'", Language));
  TWriteTransaction Transaction(FTables.Databases(), FTables.DatabaseName());
  FTables.Make();
  FTables.Connection().LockName("languages", Format("Cannot write the language '%s'", Language));
  const std::string Key = LowerCase(Language);
  const std::int64_t Found = FTables.Execute(
      "UPDATE velkrund_languages SET russian_name = ?, english_name = ?, native_name = ? WHERE name_key = ?",
      {TextCell(Record.RussianName), TextCell(Record.EnglishName), TextCell(Record.NativeName), TextCell(Key)});
  if (Found == 0) {
    // No texts that have lost their language come back in another one.
    const std::int64_t Last =
        std::max(FTables.QueryNumber("SELECT max(number) FROM velkrund_languages").value_or(0),
                 FTables.QueryNumber("SELECT max(language_number) FROM velkrund_texts").value_or(0));
    FTables.Execute(
        "INSERT INTO velkrund_languages (number, name_key, name, russian_name, english_name, native_name) "
        "VALUES (?, ?, ?, ?, ?, ?)",
        {NumberCell(Last + 1), TextCell(Key), TextCell(Language), TextCell(Record.RussianName),
         TextCell(Record.EnglishName), TextCell(Record.NativeName)});
  }
  Transaction.Commit();
}

void TStoredLanguages::FillLanguageNames(TStringList& Names) {
  if (!FTables.Exist()) return;
  for (const auto Rows = FTables.Query("SELECT name FROM velkrund_languages ORDER BY number"); Rows->Next();)
    Names.Add(TakeText(*Rows, 0));
}

bool TStoredLanguages::DeleteLanguage(const std::string& Language) {
  if (!LanguageExist(Language)) return false;
  TWriteTransaction Transaction(FTables.Databases(), FTables.DatabaseName());
  FTables.Connection().LockName("languages", Format("Cannot delete the language '%s'", Language));
  const std::optional<std::int64_t> Number = FTables.LanguageNumber(Language);
  if (!Number) return false;
  // Waits for whoever writes texts in it.
  FTables.Execute("DELETE FROM velkrund_languages WHERE number = ?", {NumberCell(Number)});
  DeleteTextsOf(*Number);
  FTables.NoteChange();
  Transaction.Commit();
  return true;
}

void TStoredLanguages::DeleteTextsOf(std::int64_t Language) {
  FTables.Execute("DELETE FROM velkrund_texts WHERE language_number = ?", {NumberCell(Language)});
  // Somebody may be writing a text in another language into a string that has none otherwise. He is waited for, and
  // what the second statement finds is what he has left.
  if (const std::string_view Lock = FTables.RowLock(TRowLock::Wait); !Lock.empty())
    FTables.Query(Format("SELECT count(*) FROM (SELECT number FROM %s%s) AS s", Empty, Lock));
  FTables.Execute(Format("DELETE FROM %s", Empty));
}

std::int64_t TStoredLanguages::TextCount(const std::string& Language) {
  const std::optional<std::int64_t> Number = FTables.LanguageNumber(Language);
  if (!Number) return 0;
  return FTables.QueryNumber("SELECT count(*) FROM velkrund_texts WHERE language_number = ?", {NumberCell(Number)})
      .value_or(0);
}

}  // namespace velkrund
