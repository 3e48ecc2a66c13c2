#include "jobs/resources/PoSections.h"

#include "jobs/resources/ResourceNames.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

TPoSections::TPoSections(const std::string& DatabaseName, const std::string& DatabaseText, const std::string& Only)
    : FDatabaseName(DatabaseName), FOnly(SectionWithoutSeparator(Only)), FSearch(DatabaseName, DatabaseText) {}

void TPoSections::Add(const TPoString& String) {
  const std::string SectionID = SectionFor(String);
  const auto [Place, IsNew] = FPlaces.try_emplace(LowerCase(SectionID), FSections.size());
  if (IsNew) {
    RequireKept(TResourceName::Section, SectionID);
    FSections.push_back({SectionID});
  }
  if (String.StringID.size() > SectionID.size() + 1)
    RequireKept(TResourceName::String, String.StringID.substr(SectionID.size() + 1));
  std::vector<TPoRange>& Ranges = FSections[Place->second].Ranges;
  if (Ranges.empty() || Place->second != FLast) Ranges.push_back({String.Place, 0});
  ++Ranges.back().Count;
  FLast = Place->second;
}

std::string TPoSections::SectionFor(const TPoString& String) const {
  if (!FOnly.empty()) return FOnly;
  const std::string &ID = String.StringID, &Named = String.SectionID;
  if (!FSearch.All().empty())
    if (auto There = LContainer().GetLocalizatorTable(FDatabaseName).SectionOf(ID)) return *There;
  // A person may have changed one of the two.
  if (!Named.empty() && (SameText(ID, Named) || LowerCase(ID).starts_with(LowerCase(Named) + '_'))) return Named;
  for (std::size_t End = ID.size(); End != std::string::npos && End > 0; End = ID.rfind('_', End - 1))
    if (const TLSectionInfo* const Found = FSearch.Look(ID.substr(0, End))) return Found->SectionID;
  const std::size_t Last = ID.rfind('_');
  return Last == std::string::npos || Last == 0 ? ID : ID.substr(0, Last);
}

}  // namespace velkrund
