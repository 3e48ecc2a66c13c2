#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// What the store answers where a string has no text in a language; an empty text is one.
inline constexpr std::string_view AbsentText{"\0", 1};

/// The strings of a section, one after the other, with their texts in some languages. Begins before the first one.
/// Freed before its table. Raises EDatabaseError.
class TSectionTexts {
 public:
  TSectionTexts() = default;
  TSectionTexts(const TSectionTexts&) = delete;
  TSectionTexts& operator=(const TSectionTexts&) = delete;
  virtual ~TSectionTexts() = default;

  /// How many strings there are; for progress.
  virtual std::int64_t Count() const = 0;
  /// Moves to the next string; false behind the last one.
  virtual bool Next() = 0;
  /// Its name in the section; valid until the next one.
  virtual const std::string& Name() const = 0;
  /// Its text in the language of that place in the list, from 0, valid until the next call; nothing: it has none.
  virtual std::optional<std::string_view> Text(int Language) = 0;
};

/// What is told of a section.
struct TLSectionInfo {
  std::string SectionID;
  std::int64_t Strings = 0;  // with a text in any language
  std::int64_t Texts = 0;    // of all languages
};

/// The localized strings of one database. A string belongs to the section that it was last written in: that of the lock
/// that holds, else the one it was in; a new string that is written without a lock goes to the longest section there is
/// whose ID stands before its own, else to the part of its ID before the last "_". So no section lists or holds strings
/// of another one, even if one's ID is the beginning of the other's. Languages have to be in the languages table. Used
/// by one thread at a time. What writes runs in the caller's transaction, or in one of its own. Raises EDatabaseError.
class TLocalizatorTable {
 public:
  virtual ~TLocalizatorTable() = default;

  /// AbsentText: there is none.
  virtual std::string GetString(const std::string& StringID, const std::string& Language) = 0;
  virtual bool StringExist(const std::string& StringID, const std::string& Language) {
    return GetString(StringID, Language) != AbsentText;
  }
  /// AbsentText cannot be written. A text that is there is replaced, and keeps its place among the others.
  virtual void WriteString(const std::string& StringID, const std::string& Language, std::string_view Text) = 0;
  /// Appends the names of the section's strings that have a text in the language, in the order in which they were first
  /// written.
  virtual void FillResNames(const std::string& SectionID, const std::string& Language, TStringList& Names) = 0;
  /// The strings with a text in one of the languages: those of the first one, then those that only the second has, and
  /// so on, each in the order in which they were first written. Languages: those that are not there have no texts.
  /// Others may write meanwhile, within one transaction what is read is of one moment. By default made of FillResNames
  /// and GetString.
  virtual std::unique_ptr<TSectionTexts> ReadSection(const std::string& SectionID, const TStringList& Languages);

  /// Until UnLock, or the end of the transaction that it stands in, nobody else writes texts of the section in that
  /// language: whoever locks them waits, or is refused after the database's waiting time. One lock at a time. Without
  /// an outer transaction, what is written in between is committed by UnLock.
  virtual void Lock(const std::string& SectionID, const std::string& Language) = 0;
  virtual void UnLock(const std::string& SectionID, const std::string& Language) = 0;
  /// What is changed in between is done as one, and quicker: some of it only when something is read, or at the end.
  virtual void BeginUpdate() = 0;
  virtual void EndUpdate() = 0;
  /// In all languages; false: there is no such string.
  virtual bool DeleteString(const std::string& StringID) = 0;

  /// Those that have strings, sorted by ID.
  virtual std::vector<TLSectionInfo> Sections() = 0;
  /// Of a string; nothing: there is no such string.
  virtual std::optional<std::string> SectionOf(const std::string& StringID) = 0;
};

/// Strings with the names of a list, their texts asked for one by one.
class TListedTexts final : public TSectionTexts {
 public:
  /// Table: borrowed. SectionID: whose ID stands before the names.
  TListedTexts(TLocalizatorTable& Table, std::string SectionID, TStringList Names, TStringList Languages)
      : FTable(Table), FSectionID(std::move(SectionID)), FNames(std::move(Names)), FLanguages(std::move(Languages)) {}

  std::int64_t Count() const override { return FNames.Count(); }
  bool Next() override { return ++FIndex < FNames.Count(); }
  const std::string& Name() const override { return FNames[FIndex]; }
  std::optional<std::string_view> Text(int Language) override;

 private:
  TLocalizatorTable& FTable;
  const std::string FSectionID;
  const TStringList FNames, FLanguages;
  int FIndex = -1;
  std::string FText;
};

}  // namespace velkrund
