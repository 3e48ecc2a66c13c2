#include "velkrund/platform/localization/LSection.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t FirstBlock = 1024, LargestBlock = 256 * 1024;
constexpr std::size_t FirstSlots = 16;

/// The same for names that differ in case only.
std::uint32_t HashOf(std::string_view Name) {
  std::uint32_t Hash = 2'166'136'261U;  // FNV-1a
  for (std::size_t At = 0; At < Name.size();) {
    char32_t Code = static_cast<unsigned char>(Name[At]);
    if (Code < 0x80)
      ++At;
    else
      Code = NextCodePoint(Name, At);
    Hash = (Hash ^ static_cast<std::uint32_t>(LowerCase(Code))) * 16'777'619U;
  }
  return Hash;
}

}  // namespace

TStringHash::TStringHash(const TStringHash& Other) {
  for (const TEntry& Entry : Other.FEntries) Change(Entry.Name, Entry.Text);
}

TStringHash& TStringHash::operator=(TStringHash Other) noexcept {
  FEntries.swap(Other.FEntries);
  FSlots.swap(Other.FSlots);
  FBlocks.swap(Other.FBlocks);
  return *this;
}

std::size_t TStringHash::SlotOf(std::string_view Name, std::uint32_t Hash) const {
  const std::size_t Mask = FSlots.size() - 1;
  for (std::size_t At = Hash & Mask;; At = (At + 1) & Mask) {
    const TSlot& Slot = FSlots[At];
    if (Slot.Number == 0) return At;
    if (Slot.Hash != Hash) continue;
    const std::string_view Known = FEntries[Slot.Number - 1].Name;
    if (Known == Name || SameText(Known, Name)) return At;
  }
}

void TStringHash::MakeSlots() {
  std::vector<TSlot> Before(std::max(FirstSlots, FSlots.size() * 2));
  Before.swap(FSlots);
  const std::size_t Mask = FSlots.size() - 1;
  for (const TSlot& Slot : Before) {
    std::size_t At = Slot.Hash & Mask;
    while (FSlots[At].Number != 0) At = (At + 1) & Mask;
    if (Slot.Number != 0) FSlots[At] = Slot;
  }
}

std::string_view TStringHash::Kept(std::string_view Text) {
  if (FBlocks.empty() || FBlocks.back().Size - FBlocks.back().Used < Text.size()) {
    const std::size_t Usual = FBlocks.empty() ? FirstBlock : std::min(FBlocks.back().Size * 2, LargestBlock);
    const std::size_t Size = std::max(Usual, Text.size());
    FBlocks.push_back({std::make_unique_for_overwrite<char[]>(Size), Size, 0});
  }
  TBlock& Block = FBlocks.back();
  char* const Begin = Block.Bytes.get() + Block.Used;
  std::copy(Text.begin(), Text.end(), Begin);
  Block.Used += Text.size();
  return {Begin, Text.size()};
}

bool TStringHash::Change(std::string_view Name, std::string_view Text) {
  if ((FEntries.size() + 1) * 4 > FSlots.size() * 3) MakeSlots();
  const std::uint32_t Hash = HashOf(Name);
  TSlot& Slot = FSlots[SlotOf(Name, Hash)];
  const std::string_view KeptText = Kept(Text);
  if (Slot.Number != 0) {
    FEntries[Slot.Number - 1].Text = KeptText;
    return false;
  }
  FEntries.push_back({Kept(Name), KeptText});
  Slot = {Hash, static_cast<std::uint32_t>(FEntries.size())};
  return true;
}

std::optional<std::string_view> TStringHash::Find(std::string_view Name) const {
  if (FSlots.empty()) return std::nullopt;
  const TSlot& Slot = FSlots[SlotOf(Name, HashOf(Name))];
  return Slot.Number == 0 ? std::nullopt : std::optional(FEntries[Slot.Number - 1].Text);
}

void TLSection::AddLanguage(const std::string& Language) {
  if (GetResources(Language)) return;
  FLanguages.push_back({Language, {}});
  FNames.Add(GetCount() - 1, [this](int Index) -> std::string_view { return GetLanguages(Index); });
}

TStringHash* TLSection::GetResources(std::string_view Language) {
  const int Index = FNames.Find(Language, [this](int Known) -> std::string_view { return GetLanguages(Known); });
  return Index < 0 ? nullptr : &FLanguages[static_cast<std::size_t>(Index)].Resources;
}

const TStringHash* TLSection::GetResources(std::string_view Language) const {
  return const_cast<TLSection*>(this)->GetResources(Language);
}

const TLSection::TLanguage& TLSection::At(int Index) const {
  if (Index < 0 || Index >= GetCount()) throw EListError(Format("List index out of bounds (%d)", Index));
  return FLanguages[static_cast<std::size_t>(Index)];
}

}  // namespace velkrund
