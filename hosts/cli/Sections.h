#pragma once

#include <optional>
#include <string>
#include <vector>

#include "velkrund/eif/EISource.h"

namespace velkrund {

bool IsTableData(const TEISection& Section);
/// "section 3 'ORDERS' (TableData)".
std::string SectionText(const TEISectionList& Sections, int Index);

/// The sections of that name, ignoring case.
std::vector<int> SectionsNamed(const TEISectionList& Sections, const std::string& Name);
/// The one section that Text means: a decimal number is an index, everything else a name. Raises EEIError, which says
/// what the file holds, when there is none, or more than one of that name.
int TheSection(const TEISectionList& Sections, const std::string& Text, const std::string& FileName);

/// The table that a table data section names; empty when it names none.
std::string TableOf(const TEISection& Section);
/// The field names of a table data section, in its order; nothing when its body does not begin with them.
std::optional<std::vector<std::string>> FieldsOf(TEISource& Source, int Index);

}  // namespace velkrund
