#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/TestPlatform.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund::tests {

/// Languages and strings of one database, in memory. Strings belong to sections as in a real store.
class TMemoryStrings final : public TLanguagesTable, public TLocalizatorTable {
 public:
  struct TString {
    std::string ID, SectionID, Name;
    std::map<std::string, std::string> Texts;  // by language, in lower case
  };
  struct TContent {
    std::vector<std::pair<std::string, TOneLanguage>> Languages;
    std::vector<TString> Strings;  // in the order in which they were first written
  };

  /// Counts a call and fails where it is told to. Raises EDatabaseError.
  struct TCalls {
    int FailAt = 0;  // 1 fails the next call, and no other; 0: none
    int Count = 0;
    std::vector<std::string> Log;  // locks and bulk updates: "lock S English"
    void Note(const char* What);
  };

  explicit TMemoryStrings(TCalls& Calls) : FCalls(Calls) {}

  // TLanguagesTable
  bool LanguageExist(const std::string& Language) override;
  bool GetLanguage(const std::string& Language, TOneLanguage& Record) override;
  void SetLanguage(const std::string& Language, const TOneLanguage& Record) override;
  void FillLanguageNames(TStringList& Names) override;
  bool DeleteLanguage(const std::string& Language) override;
  std::int64_t TextCount(const std::string& Language) override;

  // TLocalizatorTable
  std::string GetString(const std::string& StringID, const std::string& Language) override;
  void WriteString(const std::string& StringID, const std::string& Language, std::string_view Text) override;
  void FillResNames(const std::string& SectionID, const std::string& Language, TStringList& Names) override;
  void Lock(const std::string& SectionID, const std::string& Language) override;
  void UnLock(const std::string& SectionID, const std::string& Language) override;
  void BeginUpdate() override { FCalls.Log.emplace_back("begin update"); }
  void EndUpdate() override { FCalls.Log.emplace_back("end update"); }
  bool DeleteString(const std::string& StringID) override;
  std::vector<TLSectionInfo> Sections() override;
  std::optional<std::string> SectionOf(const std::string& StringID) override;

  /// Every text, "ID.Language=Text" and a blank behind each, by string and language.
  std::string Texts() const;
  /// Puts a text in without a count.
  void Put(const std::string& SectionID, const std::string& Name, const std::string& Language, std::string_view Text);

  TContent Content;

 private:
  TString* Find(const std::string& StringID);
  TString& Take(const std::string& StringID, const std::string& SectionID);
  std::string SectionFor(const std::string& StringID) const;

  TCalls& FCalls;
  std::string FLocked;  // the section
};

/// A platform with localized strings, a store for each name of a database. A roll back takes back what was written
/// since its transaction began.
class TLocalizationPlatform : public TTestPlatform, public TLContainer {
 public:
  TLocalizationPlatform() : FGuard(this) {}

  TMemoryStrings& Strings(const std::string& DatabaseName = {});
  TLanguagesTable& GetLanguagesTable(const std::string& DatabaseName) override { return Strings(DatabaseName); }
  TLocalizatorTable& GetLocalizatorTable(const std::string& DatabaseName) override { return Strings(DatabaseName); }
  std::unique_ptr<TLocalizator> CreateLocalizator(const std::string& DatabaseName) override;

  void StartTransaction(const std::string& DatabaseName, TIsolationLevel Level) override;
  void CommitTransaction(const std::string& DatabaseName) override;
  void RollbackTransaction(const std::string& DatabaseName) override;

  TMemoryStrings::TCalls Calls;

 private:
  std::map<std::string, std::unique_ptr<TMemoryStrings>> FDatabases;
  std::map<std::string, std::vector<TMemoryStrings::TContent>> FBefore;  // what to come back to, innermost last
  TServiceGuard<TLContainer> FGuard;
};

}  // namespace velkrund::tests
