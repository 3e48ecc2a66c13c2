#pragma once

#include <cstdint>
#include <string>

#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// What a language is called.
struct TOneLanguage {
  std::string RussianName, EnglishName, NativeName;

  bool operator==(const TOneLanguage&) const = default;
};

/// The languages of one database. They are found by name, ignoring case. What writes runs in the caller's transaction,
/// or in one of its own. Raises EDatabaseError.
class TLanguagesTable {
 public:
  virtual ~TLanguagesTable() = default;

  virtual bool LanguageExist(const std::string& Language) = 0;
  /// False, and Record as it was: there is no such language.
  virtual bool GetLanguage(const std::string& Language, TOneLanguage& Record) = 0;
  /// Takes the place of what is stored under that name; a new language stands behind the others.
  virtual void SetLanguage(const std::string& Language, const TOneLanguage& Record) = 0;
  /// Appends the names of all languages, in the order in which they were stored first.
  virtual void FillLanguageNames(TStringList& Names) = 0;
  /// Removes the language with all its texts; false: there is no such language.
  virtual bool DeleteLanguage(const std::string& Language) = 0;
  /// How many strings have a text in it.
  virtual std::int64_t TextCount(const std::string& Language) = 0;
};

}  // namespace velkrund
