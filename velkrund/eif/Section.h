#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/SectionParameters.h"
#include "velkrund/platform/ormtools/CodePage.h"

namespace velkrund {

/// The header of one section, and where its parts lie in the source. Filled by the source.
class TEISection {
 public:
  const std::string& Name() const { return FName; }
  /// -1 when not given.
  int Version() const { return FVersion; }
  TKvEncoding Encoding() const { return FEncoding; }
  int ParamCount() const { return FParameters.Count(); }
  std::string ParamName(int Index) const { return FParameters.ParamNames(Index); }
  /// Raises EEIError when absent.
  std::string ParamValue(std::string_view Name) const { return FParameters.Values(Name); }
  /// Nothing when absent.
  std::optional<std::string> FindParam(std::string_view Name) const { return FParameters.Find(Name); }
  std::string_view TypeName() const { return ObjectClass.TypeName(); }

  std::string FName;
  int FVersion = 0;
  TKvEncoding FEncoding = TKvEncoding::Ansi;
  TEISectionParameters FParameters;
  TEIObjectClass ObjectClass;         // the registered class for type and version; may be empty
  std::int64_t Position = -1;         // byte offset behind the "[SECTION]" line
  std::int64_t DataPosition = 0;      // byte offset behind the "[DATA]" line
  std::int64_t DataLinePosition = 0;  // number of the "[DATA]" line, from 1, as the file was opened
  std::int64_t DataSize = 0;          // bytes of the body, the end of its last line included
};

/// The headers of a source, in stream order. Owns them.
class TEISectionList {
 public:
  int Count() const { return static_cast<int>(FList.size()); }
  /// Index: 0 .. Count - 1, else EListError.
  TEISection& Sections(int Index) const;
  TEISection& operator[](int Index) const { return Sections(Index); }
  TEISection& AddSection();
  TEISection& InsertSection(int Index);
  void DeleteSection(int Index);
  /// Removes every header whose flag is set; one flag per header.
  void DeleteMarked(const std::vector<bool>& Marks);
  /// The first of that name, ignoring case; null when absent.
  TEISection* FindByName(std::string_view Name) const;
  /// The position of that very header; -1 when absent.
  int IndexOf(const TEISection& Section) const;
  void Clear() { FList.clear(); }

 private:
  std::vector<std::unique_ptr<TEISection>> FList;
};

}  // namespace velkrund
