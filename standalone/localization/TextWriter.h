#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/localization/LocalizationTables.h"

namespace velkrund {

/// Rows on their way into the tables of strings and texts, within one transaction. They are held back, so that each
/// table gets many at once, and dropped unless they are finished. Raises EDatabaseError.
class TTextWriter {
 public:
  /// Tables: borrowed. SectionID, SectionKey: of the strings that are added.
  TTextWriter(TLocalizationTables& Tables, std::string SectionID, std::string SectionKey, std::int64_t Language)
      : FTables(Tables), FSectionID(std::move(SectionID)), FSectionKey(std::move(SectionKey)), FLanguage(Language) {}
  TTextWriter(const TTextWriter&) = delete;
  TTextWriter& operator=(const TTextWriter&) = delete;

  void AddString(std::int64_t Number, std::string_view StringID, std::string_view Name);
  /// IsThere: a text is to be replaced; it is none that was put since Finish. IsHeld: nobody deletes the string
  /// meanwhile.
  void Put(std::int64_t Number, std::string_view Text, bool IsThere, bool IsHeld);
  /// Hands everything over, so that other statements find it.
  void Finish();

 private:
  struct TString {
    std::int64_t Number;
    std::size_t KeySize, NameSize;
  };
  struct TText {
    std::int64_t Number;
    std::size_t Size;
    bool IsThere;
  };
  enum TAppender { Strings, Added, Replaced };

  void Flush();
  void HoldStrings();
  void FlushStrings();
  void FlushTexts(TAppender Which);
  TBulkAppender& Open(TAppender Which);

  TLocalizationTables& FTables;
  const std::string FSectionID, FSectionKey;
  const std::int64_t FLanguage;
  std::string FStringBytes, FTextBytes;  // keys and names; texts; one behind the other
  std::vector<TString> FStrings;
  std::vector<TText> FTexts;
  std::vector<std::int64_t> FToHold;
  std::array<std::unique_ptr<TBulkAppender>, 3> FAppenders;  // made when they are needed
};

}  // namespace velkrund
