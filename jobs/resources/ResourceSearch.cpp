#include "jobs/resources/ResourceSearch.h"

#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TResourceSearch::TResourceSearch(const std::string& DatabaseName, std::string DatabaseText)
    : FDatabaseText(std::move(DatabaseText)), FSections(LContainer().GetLocalizatorTable(DatabaseName).Sections()) {
  for (std::size_t Place = 0; Place < FSections.size(); ++Place)
    FPlaces.emplace(LowerCase(FSections[Place].SectionID), Place);
}

const TLSectionInfo* TResourceSearch::Look(const std::string& SectionID) const {
  const auto Found = FPlaces.find(LowerCase(SectionWithoutSeparator(SectionID)));
  return Found == FPlaces.end() ? nullptr : &FSections[Found->second];
}

const TLSectionInfo& TResourceSearch::Find(const std::string& SectionID) const {
  if (const TLSectionInfo* const Found = Look(SectionID)) return *Found;
  std::vector<std::string> Known;
  for (const TLSectionInfo& Section : FSections) Known.push_back(Section.SectionID);
  throw EResourceMissing(Format("There is no resource '%s' in the database %s%s", OnOneLine(SectionID), FDatabaseText,
                                Known.empty() ? "" : ContentHint(SectionID, Known, ": it has ")));
}

std::vector<TLSectionInfo> TResourceSearch::Those(const std::vector<std::string>& SectionIDs) const {
  if (SectionIDs.empty()) return FSections;
  std::vector<TLSectionInfo> Result;
  std::vector<bool> Taken(FSections.size());
  for (const std::string& SectionID : SectionIDs) {
    const TLSectionInfo& Found = Find(SectionID);
    const auto Place = static_cast<std::size_t>(&Found - FSections.data());
    if (!Taken[Place]) Result.push_back(Found);
    Taken[Place] = true;
  }
  return Result;
}

}  // namespace velkrund
