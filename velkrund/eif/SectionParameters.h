#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace velkrund {

/// The extra header lines of a section: names and values in the order in which they were added. Names are unique
/// without regard to case.
class TEISectionParameters {
 public:
  int Count() const { return static_cast<int>(FList.size()); }
  /// Index: 0 .. Count - 1, else EListError.
  const std::string& ParamNames(int Index) const;
  const std::string& ParamValues(int Index) const;
  void SetParamValues(int Index, std::string Value);
  /// -1 when absent.
  int IndexOf(std::string_view Name) const;
  /// The value; null when absent.
  const std::string* Find(std::string_view Name) const;

  /// EEIError "Parameter '%s' is already exist".
  void AddParam(std::string_view Name, std::string_view Value);
  /// EEIError "Parameter '%s' not found": reading keeps the placeholder as it stands, writing fills the name in.
  /// Callers compare these texts.
  const std::string& Values(std::string_view Name) const;
  void SetValues(std::string_view Name, std::string Value);
  void DeleteParam(int Index);
  void Clear() { FList.clear(), FNames.clear(); }

 private:
  std::size_t Checked(int Index) const;

  std::vector<std::pair<std::string, std::string>> FList;
  // In lower case: a header whose "[DATA]" line is damaged takes a whole body in, which must not take ever longer.
  std::unordered_set<std::string> FNames;
};

}  // namespace velkrund
