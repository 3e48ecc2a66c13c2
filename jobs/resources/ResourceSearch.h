#pragma once

#include <map>
#include <string>
#include <vector>

#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// The sections of the localized strings of one database, by ID.
class TResourceSearch {
 public:
  /// Reads what there is. DatabaseText: for messages.
  TResourceSearch(const std::string& DatabaseName, std::string DatabaseText);

  /// Sorted.
  const std::vector<TLSectionInfo>& All() const { return FSections; }
  /// Null: there is none. In any case, with the separator or without.
  const TLSectionInfo* Look(const std::string& SectionID) const;
  /// Raises EResourceMissing, which says what there is.
  const TLSectionInfo& Find(const std::string& SectionID) const;
  /// Those that are named, each once, or all. Raises as Find.
  std::vector<TLSectionInfo> Those(const std::vector<std::string>& SectionIDs) const;

 private:
  const std::string FDatabaseText;
  std::vector<TLSectionInfo> FSections;
  std::map<std::string, std::size_t> FPlaces;  // by ID in lower case
};

VELKRUND_EXCEPTION(EResourceMissing, EDatabaseError);

}  // namespace velkrund
