#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "jobs/resources/PoStrings.h"
#include "jobs/resources/ResourceSearch.h"

namespace velkrund {

/// Strings that follow each other in a catalogue.
struct TPoRange {
  TPoPlace From;
  std::int64_t Count;
};

/// The strings of a catalogue by the sections that they go into: the one that a string of that ID is in already, else
/// the one that the catalogue names, else the longest there is whose ID stands before the string's, else the part of
/// that before the last "_".
class TPoSections {
 public:
  struct TSection {
    std::string SectionID;
    std::vector<TPoRange> Ranges = {};
  };

  /// Reads which sections there are. Only: the one section that all go into; empty: there is none. DatabaseText: for
  /// messages.
  TPoSections(const std::string& DatabaseName, const std::string& DatabaseText, const std::string& Only);

  /// Raises EResourceName where a file would not bring section or name back.
  void Add(const TPoString& String);
  /// In the order of the catalogue.
  const std::vector<TSection>& All() const { return FSections; }

 private:
  std::string SectionFor(const TPoString& String) const;

  const std::string FDatabaseName, FOnly;
  const TResourceSearch FSearch;
  std::vector<TSection> FSections;
  std::map<std::string, std::size_t> FPlaces;  // by ID in lower case
  std::size_t FLast = 0;                       // of the string before
};

}  // namespace velkrund
