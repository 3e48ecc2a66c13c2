#include "velkrund/eif/SectionParameters.h"

#include <limits>

#include "velkrund/eif/EIErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// So many are searched one by one.
constexpr std::size_t Few = 16;

}  // namespace

std::size_t TEISectionParameters::Checked(int Index) const {
  if (Index < 0 || Index >= Count()) throw EListError(Format("Section parameter index %d is out of bounds", Index));
  return static_cast<std::size_t>(Index);
}

std::string_view TEISectionParameters::NameAt(std::size_t Index) const {
  return std::string_view(FText).substr(Start(Index), FPlaces[Index].NameEnd - Start(Index));
}

std::string_view TEISectionParameters::ValueAt(std::size_t Index) const {
  return std::string_view(FText).substr(FPlaces[Index].NameEnd, FPlaces[Index].End - FPlaces[Index].NameEnd);
}

void TEISectionParameters::CheckRoom(std::size_t Size) const {
  if (Size > std::numeric_limits<std::uint32_t>::max() - FText.size())
    throw EEIError("A section header cannot hold more than 4 GiB");
}

void TEISectionParameters::SetParamValues(int Index, std::string_view Value) {
  const std::size_t At = Checked(Index);
  CheckRoom(Value.size());
  const auto Old = FPlaces[At].End - FPlaces[At].NameEnd, New = static_cast<std::uint32_t>(Value.size());
  FText.replace(FPlaces[At].NameEnd, Old, Value);
  FPlaces[At].End = FPlaces[At].NameEnd + New;
  for (std::size_t Later = At + 1; Later < FPlaces.size(); ++Later) {
    FPlaces[Later].NameEnd += New - Old;  // of no sign: it may wrap around, and comes back
    FPlaces[Later].End += New - Old;
  }
}

int TEISectionParameters::IndexOf(std::string_view Name) const {
  if (FIndex) return FIndex->Find(Name, [this](int Place) { return NameAt(static_cast<std::size_t>(Place)); });
  for (std::size_t Index = 0; Index < FPlaces.size(); ++Index)
    if (SameText(NameAt(Index), Name)) return static_cast<int>(Index);
  return -1;
}

std::optional<std::string> TEISectionParameters::Find(std::string_view Name) const {
  const int Index = IndexOf(Name);
  return Index < 0 ? std::nullopt : std::optional(ParamValues(Index));
}

void TEISectionParameters::AddParam(std::string_view Name, std::string_view Value) {
  CheckRoom(Name.size() + Value.size());
  if (IndexOf(Name) >= 0) throw EEIError(Format("Parameter '%s' is already exist", Name));
  FText += Name;
  const auto NameEnd = static_cast<std::uint32_t>(FText.size());
  FText += Value;
  FPlaces.push_back({NameEnd, static_cast<std::uint32_t>(FText.size())});
  if (FIndex)
    Enter(Count() - 1);
  else if (FPlaces.size() > Few)
    MakeIndex();
}

std::string TEISectionParameters::Values(std::string_view Name) const {
  if (std::optional<std::string> Value = Find(Name)) return *std::move(Value);
  throw EEIError("Parameter '%s' not found");
}

void TEISectionParameters::SetValues(std::string_view Name, std::string_view Value) {
  const int Index = IndexOf(Name);
  if (Index < 0) throw EEIError(Format("Parameter '%s' not found", Name));
  SetParamValues(Index, Value);
}

void TEISectionParameters::DeleteParam(int Index) {
  const std::size_t At = Checked(Index);
  const std::size_t From = Start(At);
  const auto Size = static_cast<std::uint32_t>(FPlaces[At].End - From);
  FText.erase(From, Size);
  FPlaces.erase(FPlaces.begin() + Index);
  for (std::size_t Later = At; Later < FPlaces.size(); ++Later) {
    FPlaces[Later].NameEnd -= Size;
    FPlaces[Later].End -= Size;
  }
  if (FIndex) MakeIndex();
}

void TEISectionParameters::Enter(int Index) {
  FIndex->Add(Index, [this](int Place) { return NameAt(static_cast<std::size_t>(Place)); });
}

void TEISectionParameters::MakeIndex() {
  FIndex = std::make_unique<TNameIndex>();
  for (int Index = 0; Index < Count(); ++Index) Enter(Index);
}

void TEISectionParameters::Clear() {
  FText.clear();
  FPlaces.clear();
  FIndex.reset();
}

void TEISectionParameters::Pack() {
  FText.shrink_to_fit();
  FPlaces.shrink_to_fit();
}

}  // namespace velkrund
