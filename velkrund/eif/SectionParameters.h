#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/ormtools/NameIndex.h"

namespace velkrund {

/// The extra header lines of a section: names and values in the order in which they were added. Names are unique
/// without regard to case. All texts stand in one, since a file may have a million sections.
class TEISectionParameters {
 public:
  int Count() const { return static_cast<int>(FPlaces.size()); }
  /// Index: 0 .. Count - 1, else EListError.
  std::string ParamNames(int Index) const { return std::string(NameAt(Checked(Index))); }
  std::string ParamValues(int Index) const { return std::string(ValueAt(Checked(Index))); }
  void SetParamValues(int Index, std::string_view Value);
  /// -1 when absent.
  int IndexOf(std::string_view Name) const;
  /// The value; nothing when absent.
  std::optional<std::string> Find(std::string_view Name) const;

  /// EEIError "Parameter '%s' is already exist".
  void AddParam(std::string_view Name, std::string_view Value);
  /// EEIError "Parameter '%s' not found": reading keeps the placeholder as it stands, writing fills the name in.
  /// Callers compare these texts.
  std::string Values(std::string_view Name) const;
  void SetValues(std::string_view Name, std::string_view Value);
  void DeleteParam(int Index);
  void Clear();
  /// Gives back the memory that was kept for more parameters.
  void Pack();

 private:
  struct TPlace {
    std::uint32_t NameEnd, End;  // in FText; the value stands behind the name, the next name behind the value
  };

  std::size_t Checked(int Index) const;
  std::size_t Start(std::size_t Index) const { return Index == 0 ? 0 : FPlaces[Index - 1].End; }
  std::string_view NameAt(std::size_t Index) const;
  std::string_view ValueAt(std::size_t Index) const;
  void CheckRoom(std::size_t Size) const;
  void Enter(int Index);
  void MakeIndex();

  std::string FText;
  std::vector<TPlace> FPlaces;
  // Null while there are few: a header whose "[DATA]" line is damaged takes a whole body in, which must not take ever
  // longer.
  std::unique_ptr<TNameIndex> FIndex;
};

}  // namespace velkrund
