#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "jobs/resources/PoReader.h"
#include "velkrund/platform/ormtools/BufferedStream.h"

namespace velkrund {

/// Entries whose translation somebody has to look at.
enum class TFuzzyEntries : int {
  Refuse = 0,
  Skip = 1,  // as if they were not translated
  Take = 2,
};

/// A string of a catalogue, as it goes into the store.
struct TPoString {
  TPoPlace Place;
  std::int64_t Line = 0;
  std::string StringID;
  std::string SectionID;  // empty: nobody says
  std::string Source;
  std::optional<std::string> Target;  // nothing: not translated
};

/// What was found on the way.
struct TPoCounts {
  std::int64_t Strings = 0;
  std::int64_t Untranslated = 0;  // of these
  std::int64_t Fuzzy = 0;         // of these; skipped or taken
  std::int64_t Contexts = 0;      // of these, that had one which is lost
  std::int64_t Plurals = 0;       // entries with plural forms, which are left out
  std::int64_t Obsolete = 0;      // the same of those that are no longer used
};

/// Reads a catalogue as strings for the store. What the store could not give back is an error, or counted where loss is
/// allowed.
///
/// A string's ID is the msgctxt. Or IDs are made, for catalogues of other makers, in one section: the name is a digest
/// of msgctxt and msgid, so that the same message has the same ID in the catalogues of all languages, whatever their
/// order and whatever they leave out.
class TPoStrings {
 public:
  struct TSettings {
    std::string SectionID = {};  // in which IDs are made; empty: each entry has to have one
    TFuzzyEntries Fuzzy = TFuzzyEntries::Refuse;
    bool AllowLoss = false;
  };

  /// Opens the file and reads the header. Files: borrowed.
  TPoStrings(TFileSystem& Files, const std::string& FileName, TSettings Settings);

  /// False behind the last one.
  bool Next(TPoString& String);
  void SeekTo(const TPoPlace& Place) { FReader->SeekTo(Place); }
  const TPoReader& Reader() const { return *FReader; }
  const TPoCounts& Counts() const { return FCounts; }
  /// For progress.
  std::int64_t Position() const { return FReader->NextPlace().Position; }
  std::int64_t Size() { return FStream.Size(); }

 private:
  bool Takes(const TPoEntry& Entry);
  void TakeID(const TPoEntry& Entry, TPoString& String);
  void TakeTarget(TPoEntry& Entry, TPoString& String);

  const TSettings FSettings;
  TBufferedStream FStream;
  std::optional<TPoReader> FReader;
  TPoCounts FCounts;
  TPoEntry FEntry;
};

/// 64 bits of a text, the same everywhere.
std::uint64_t TextDigest(std::string_view Text);

}  // namespace velkrund
