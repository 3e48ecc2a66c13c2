#include "velkrund/eif/SectionParameters.h"

#include "velkrund/eif/EIErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

std::size_t TEISectionParameters::Checked(int Index) const {
  if (Index < 0 || Index >= Count()) throw EListError(Format("Section parameter index %d is out of bounds", Index));
  return static_cast<std::size_t>(Index);
}

const std::string& TEISectionParameters::ParamNames(int Index) const { return FList[Checked(Index)].first; }

const std::string& TEISectionParameters::ParamValues(int Index) const { return FList[Checked(Index)].second; }

void TEISectionParameters::SetParamValues(int Index, std::string Value) {
  FList[Checked(Index)].second = std::move(Value);
}

int TEISectionParameters::IndexOf(std::string_view Name) const {
  for (int Index = 0; Index < Count(); ++Index)
    if (SameText(FList[static_cast<std::size_t>(Index)].first, Name)) return Index;
  return -1;
}

const std::string* TEISectionParameters::Find(std::string_view Name) const {
  const int Index = IndexOf(Name);
  return Index < 0 ? nullptr : &ParamValues(Index);
}

void TEISectionParameters::AddParam(std::string_view Name, std::string_view Value) {
  if (!FNames.insert(LowerCase(Name)).second) throw EEIError(Format("Parameter '%s' is already exist", Name));
  FList.emplace_back(Name, Value);
}

const std::string& TEISectionParameters::Values(std::string_view Name) const {
  if (const std::string* const Value = Find(Name)) return *Value;
  throw EEIError("Parameter '%s' not found");
}

void TEISectionParameters::SetValues(std::string_view Name, std::string Value) {
  const int Index = IndexOf(Name);
  if (Index < 0) throw EEIError(Format("Parameter '%s' not found", Name));
  SetParamValues(Index, std::move(Value));
}

void TEISectionParameters::DeleteParam(int Index) {
  FNames.erase(LowerCase(ParamNames(Index)));
  FList.erase(FList.begin() + static_cast<std::ptrdiff_t>(Index));
}

}  // namespace velkrund
