#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "standalone/localization/KnownStrings.h"
#include "standalone/localization/TextWriter.h"

namespace velkrund {

/// The texts of one section in one language, which nobody else writes until the end of the running transaction; and the
/// way to write them. What is not finished is dropped. Raises EDatabaseError.
class TSectionLock {
 public:
  /// Tables: borrowed. Strings: of the section, read or not.
  TSectionLock(TLocalizationTables& Tables, TKnownStrings Strings, const std::string& Language);

  const std::string& Language() const { return FLanguage; }
  std::string_view SectionID() const { return FStrings.SectionID(); }
  bool IsOf(std::string_view SectionID, std::string_view Language) const;
  /// False: its transaction has ended, or a part of it was rolled back, which may have held some of what was written.
  bool IsAlive() { return FMark == FTables.TransactionMark(); }
  /// Whether the transaction that it stands in goes on.
  bool HasTransaction() { return FTables.TransactionDepth() >= FDepth; }
  /// A part was rolled back that held nothing of what was written.
  void Renew() { FMark = FTables.TransactionMark(); }
  /// Whether an ID and a language fall under it.
  bool Covers(std::string_view StringID, std::string_view Language) const;

  // Of IDs that it covers.
  bool Exists(std::string_view StringID);
  /// Whether its text may be held back still.
  bool IsWritten(std::string_view StringID);
  void Write(std::string_view StringID, std::string_view Text);

  /// Hands over what is held back, so that other statements find it.
  void Finish() { FWriter.Finish(); }
  /// What is known of the section, for the next lock.
  TKnownStrings TakeStrings() { return std::move(FStrings); }

  /// Reads all that is there at once; without it every string is asked for by itself.
  void ReadStrings() { FStrings.Read(FNumber); }

 private:
  std::optional<std::string_view> NameOf(std::string_view StringID) const;
  TKnownString* Find(std::string_view StringID);
  TKnownString& StringFor(std::string_view StringID);
  void HoldNumbers();

  TLocalizationTables& FTables;
  TKnownStrings FStrings;
  const std::string FLanguage;
  const std::int64_t FNumber;  // of the language
  std::int64_t FMark;          // of the transaction that it stands in
  const int FDepth;            // the same
  TTextWriter FWriter;
};

}  // namespace velkrund
