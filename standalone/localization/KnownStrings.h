#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "standalone/localization/LocalizationTables.h"
#include "velkrund/platform/localization/StringIDs.h"

namespace velkrund {

struct TKnownString {
  std::int64_t Number;
  const std::string* Key = nullptr;  // of the string, in lower case; borrowed
  bool HasText = false;              // in the language that is locked
  bool IsWritten = false;            // the same, by whoever holds the lock
  bool IsForeign = false;            // stands in another section, under an ID that may be this section's too
  bool IsHeld = false;               // nobody else deletes it before the transaction's end
};

/// The strings of one section, by what few questions tell of all of them, so that those which are not there cost no
/// question each. As good as the moment that they were read at.
class TKnownStrings {
 public:
  /// Tables: borrowed.
  TKnownStrings(TLocalizationTables& Tables, std::string_view SectionID)
      : FTables(Tables), FSectionID(SectionWithoutSeparator(SectionID)), FSectionKey(SectionKeyOf(FSectionID)) {}

  TKnownStrings(TKnownStrings&&) = default;

  const std::string& SectionID() const { return FSectionID; }
  const std::string& SectionKey() const { return FSectionKey; }

  /// What is there now, and which have a text in the language. What is remembered is read again where it may have
  /// changed.
  void Read(std::int64_t Language);
  /// The same, whatever is remembered.
  void ReadAll(std::int64_t Language);
  /// Nothing: every string is asked for by itself.
  void ReadNone();
  /// Of an ID in the section; null: there is no such string. Valid until the next Add.
  TKnownString* Find(std::string_view StringID, std::int64_t Language);
  /// One that has just been made.
  TKnownString& Add(std::string_view StringID, std::int64_t Number);
  /// The highest number of all strings when they were read.
  std::int64_t LastNumber() const { return FLastNumber; }
  bool IsOfNow() { return FMoment == FTables.Moment(); }

 private:
  void ReadOwn(std::int64_t Language);
  void ReadForeign(std::int64_t Language);
  void ReadTexts(std::int64_t Language);
  TKnownString* Ask(const std::string& Key, std::int64_t Language);
  bool IsComplete();
  TKnownString& Remember(std::string_view Key, const TKnownString& String);

  TLocalizationTables& FTables;
  std::string FSectionID, FSectionKey;
  std::vector<TKnownString> FStrings;                     // by number, but for those of other sections
  std::unordered_map<std::string, std::size_t> FIndexes;  // by string_key
  bool FHasForeign = false;
  bool FAsks = false;  // for strings that are not remembered
  // Whether all are of this transaction, so that nobody else has put texts into them, and the languages that its own
  // may be in.
  bool FAreOwn = false;
  std::vector<std::int64_t> FLanguages;
  // What was looked for last, and found where.
  std::string FLastID;
  std::size_t FLastIndex = 0;
  std::int64_t FLastNumber = 0;
  std::pair<std::int64_t, std::int64_t> FMoment{-1, -1};
};

}  // namespace velkrund
