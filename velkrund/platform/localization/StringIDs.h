#pragma once

#include <string>
#include <string_view>

namespace velkrund {

// A text of the localization store is addressed by the ID of its string and a language. Strings are written in
// sections, whose ID stands before their names: the string "Caption" of the section K_CLIENTS is K_CLIENTS_Caption. IDs
// are compared ignoring case. The section of a form may be spelt with the separator: K_CLIENTS_ is K_CLIENTS.

/// The section's ID without separators at its end.
std::string_view SectionWithoutSeparator(std::string_view SectionID);
/// Of the string with that name; without a name that of the section.
std::string StringIDOf(std::string_view SectionID, std::string_view Name);
/// The same in ID, whose buffer is used again.
void SetStringID(std::string& ID, std::string_view SectionID, std::string_view Name);
/// Whether two spellings mean one section.
bool IsSameSection(std::string_view A, std::string_view B);

}  // namespace velkrund
