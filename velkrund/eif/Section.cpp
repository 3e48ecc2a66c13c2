#include "velkrund/eif/Section.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void CheckIndex(int Index, int Limit) {
  if (Index < 0 || Index >= Limit) throw EListError(Format("Section index %d is out of bounds", Index));
}

}  // namespace

TEISection& TEISectionList::Sections(int Index) const {
  CheckIndex(Index, Count());
  return *FList[static_cast<std::size_t>(Index)];
}

TEISection& TEISectionList::AddSection() { return *FList.emplace_back(std::make_unique<TEISection>()); }

TEISection& TEISectionList::InsertSection(int Index) {
  CheckIndex(Index, Count() + 1);
  return **FList.insert(FList.begin() + Index, std::make_unique<TEISection>());
}

void TEISectionList::DeleteSection(int Index) {
  CheckIndex(Index, Count());
  FList.erase(FList.begin() + Index);
}

void TEISectionList::DeleteMarked(const std::vector<bool>& Marks) {
  std::vector<std::unique_ptr<TEISection>> Kept;
  for (std::size_t Index = 0; Index < FList.size(); ++Index)
    if (!Marks[Index]) Kept.push_back(std::move(FList[Index]));
  FList = std::move(Kept);
}

TEISection* TEISectionList::FindByName(std::string_view Name) const {
  for (const auto& Section : FList)
    if (SameText(Section->FName, Name)) return Section.get();
  return nullptr;
}

int TEISectionList::IndexOf(const TEISection& Section) const {
  for (int Index = 0; Index < Count(); ++Index)
    if (FList[static_cast<std::size_t>(Index)].get() == &Section) return Index;
  return -1;
}

}  // namespace velkrund
