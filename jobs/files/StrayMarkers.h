#pragma once

#include <string>
#include <vector>

#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// Lines outside of every section that begin as markers do, one text for each place between sections.
struct TStrayMarkers {
  std::vector<std::string> Hidden;    // a section stands there that no reader sees
  std::vector<std::string> Doubtful;  // a damaged "[SECTION]" line, or somebody's remark
};

/// Reads what lies between the sections, and moves the file's stream. File: opened, as far as it could be.
TStrayMarkers FindStrayMarkers(TEIFile& File);
}  // namespace velkrund
