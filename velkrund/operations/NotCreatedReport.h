#pragma once

#include <string>
#include <vector>

namespace velkrund {

// How operations on several database objects tell which of them could not be created.

/// The names, each followed by ";", cut with " more..." beyond 500 UTF-16 units.
std::string NamesInReport(const std::vector<std::string>& Names);
/// LastError: of the last one that failed.
std::string NotCreatedReport(const std::vector<std::string>& Names, const std::string& LastError);
/// Shows the report in a message box.
void ShowNotCreated(const std::string& Report);

}  // namespace velkrund
