#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/eif/EISource.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/NameIndex.h"

namespace velkrund {

bool IsTableData(const TEISection& Section);
/// "section 3 'ORDERS' (TableData)".
std::string SectionText(const TEISectionList& Sections, int Index);
TLText LSectionText(const TEISectionList& Sections, int Index);

/// Finds sections by name, ignoring case, at once: there may be as many names as sections.
class TSectionNames {
 public:
  /// Borrowed, and not changed meanwhile.
  explicit TSectionNames(const TEISectionList& Sections);
  const TEISectionList& Sections() const { return FSections; }
  /// In the order of the file.
  std::vector<int> Named(const std::string& Name) const;

 private:
  std::string_view NameAt(int Index) const { return FSections[Index].Name(); }

  const TEISectionList& FSections;
  TNameIndex FFirst;
  std::vector<int> FNext;  // of the same name, by index; -1: none
};

/// The one section that Text means: a decimal number is an index, everything else a name. Raises EEIError, which says
/// what the file holds, when there is none, or more than one of that name.
int TheSection(const TSectionNames& Names, const std::string& Text, const std::string& FileName);

/// Sections of one role, to be chosen from a file.
struct TSectionChoice {
  TSectionRole Role;
  std::string Content;             // what they hold, for messages: "table data"
  std::vector<std::string> Texts;  // as TheSection takes them; none: all sections of the role
  std::string FileName;
};
/// The indexes of the sections, each once. Notes: gets a line about the other sections when all were chosen. Raises
/// EEIError when there is none, or one that was named has another role.
std::vector<int> ChosenSections(const TEISectionList& Sections, const TSectionChoice& Choice,
                                std::vector<TLText>& Notes);

/// The table that a table data section names; empty when it names none.
std::string TableOf(const TEISection& Section);
/// The text of the query that a query data section holds the rows of.
std::string QueryTextOf(TEISource& Source, int Index);
/// The field names of a section of rows, in its order; nothing when its body does not begin with them.
std::optional<std::vector<std::string>> FieldsOf(TEISource& Source, int Index);

}  // namespace velkrund
