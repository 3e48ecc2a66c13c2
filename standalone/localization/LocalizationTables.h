#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "standalone/catalogue/Catalogue.h"
#include "standalone/databases/Databases.h"

namespace velkrund {

/// The catalogue tables of languages and localized strings in one database: velkrund_languages, velkrund_strings (whose
/// numbers are the order in which strings were first written, and each of which has a text) and velkrund_texts. Nothing
/// is made in a database that is only read. Raises EDatabaseError.
class TLocalizationTables {
 public:
  /// Databases: borrowed.
  TLocalizationTables(TDatabases& Databases, std::string DatabaseName)
      : FDatabases(Databases), FDatabaseName(std::move(DatabaseName)) {}

  TDatabases& Databases() { return FDatabases; }
  const std::string& DatabaseName() const { return FDatabaseName; }
  TConnection& Connection() { return FDatabases.Connection(FDatabaseName); }
  bool IsInTransaction() { return FDatabases.IsInTransaction(FDatabaseName); }
  int TransactionDepth() { return FDatabases.TransactionDepth(FDatabaseName); }
  /// As TDatabases's.
  std::int64_t TransactionMark() { return FDatabases.TransactionMark(FDatabaseName); }

  /// Another number with everything that makes what is remembered of strings wrong: TransactionMark, and NoteChange.
  std::pair<std::int64_t, std::int64_t> Moment() { return {TransactionMark(), FChanges}; }
  /// Strings were written or deleted past whoever remembers them.
  void NoteChange() { ++FChanges; }

  bool Exist();
  /// Makes them unless they are there, within a transaction.
  void Make();

  // Statements have "?" where a parameter stands.
  std::unique_ptr<TCursor> Query(std::string_view Statement, std::initializer_list<TKvVariant> Parameters = {});
  std::int64_t Execute(std::string_view Statement, std::initializer_list<TKvVariant> Parameters = {});
  /// The first cell of the first row; nothing: there is no row, or it is NULL.
  std::optional<std::int64_t> QueryNumber(std::string_view Statement,
                                          std::initializer_list<TKvVariant> Parameters = {});
  /// As the dialect's.
  std::string_view RowLock(TRowLock Lock) { return Connection().Dialect().RowLock(Lock); }

  /// Nothing: there is no such language.
  std::optional<std::int64_t> LanguageNumber(const std::string& Language);
  /// Within a transaction, to whose end nobody deletes the language. An error when there is no such language.
  std::int64_t NeedLanguage(const std::string& Language);

  /// Within a transaction: nobody else writes new strings until its end.
  void HoldNumbers();
  bool HoldsNumbers() { return FNumbersMark == TransactionMark(); }
  /// The number of the next new string, for whoever holds the numbers.
  std::int64_t NextNumber() { return ++FLastNumber; }
  /// Of all strings; 0: there is none.
  std::int64_t LastNumber();

 private:
  std::string Marked(std::string_view Statement);

  TDatabases& FDatabases;
  const std::string FDatabaseName;
  // The transactions that they hold for.
  std::int64_t FExistMark = 0, FNumbersMark = 0;
  std::int64_t FLastNumber = 0;
  std::int64_t FChanges = 0;
};

/// The numbers as they stand between brackets behind IN.
std::string ListOf(std::span<const std::int64_t> Numbers);

/// The part of a string's ID behind that of its section, with the separator between them; nothing: it does not begin
/// so. SectionKey: in lower case, without a separator at its end.
std::optional<std::string_view> NameInSection(std::string_view StringID, std::string_view SectionKey);

/// The key of a section, under every spelling of its ID.
std::string SectionKeyOf(std::string_view SectionID);

/// What a text has that the engine does not hold; null: nothing.
const char* WhyNotHeld(const TCapabilities& Engine, std::string_view Text);
/// An error for such a text. What: how its message begins, such as "The name of a language".
void CheckHolds(const TCapabilities& Engine, std::string_view Text, std::string_view What);

}  // namespace velkrund
