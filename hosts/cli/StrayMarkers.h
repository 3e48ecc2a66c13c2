#pragma once

#include <string>
#include <vector>

#include "hosts/cli/InputFile.h"
#include "hosts/cli/Report.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// Lines outside of every section that begin as markers do, one text for each place between sections.
struct TStrayMarkers {
  std::vector<std::string> Hidden;    // a section stands there that no reader sees
  std::vector<std::string> Doubtful;  // a damaged "[SECTION]" line, or somebody's remark
};

/// Reads what lies between the sections, and moves the file's stream. File: opened, as far as it could be.
TStrayMarkers FindStrayMarkers(TEIFile& File);
/// Enters them in the report of an import, which passes over them; returns those that hide a section.
std::vector<std::string> NoteStrayMarkers(TInputFile& Input, TReport& Report);

}  // namespace velkrund
