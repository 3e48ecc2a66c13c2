#include "velkrund/platform/localization/StringIDs.h"

#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr char Separator = '_';

}  // namespace

std::string_view SectionWithoutSeparator(std::string_view SectionID) {
  while (SectionID.size() > 1 && SectionID.ends_with(Separator)) SectionID.remove_suffix(1);
  return SectionID;
}

std::string StringIDOf(std::string_view SectionID, std::string_view Name) {
  std::string Result;
  SetStringID(Result, SectionID, Name);
  return Result;
}

void SetStringID(std::string& ID, std::string_view SectionID, std::string_view Name) {
  ID = SectionWithoutSeparator(SectionID);
  if (!Name.empty()) (ID += Separator) += Name;
}

bool IsSameSection(std::string_view A, std::string_view B) {
  return SameText(SectionWithoutSeparator(A), SectionWithoutSeparator(B));
}

}  // namespace velkrund
