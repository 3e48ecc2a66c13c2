#pragma once

#include <string>
#include <vector>

#include "jobs/files/LineFeeds.h"
#include "velkrund/eif/EIFile.h"

namespace velkrund {

/// Lines outside of every section that begin as markers do, one text for each place between sections.
struct TStrayMarkers {
  std::vector<std::string> Hidden;    // a section stands there that no reader sees
  std::vector<std::string> Doubtful;  // a damaged "[SECTION]" line, or somebody's remark
  std::vector<TFileRange> LineFeeds;  // places where sections are hidden because their lines end with a line feed alone
};

/// Reads what lies between the sections, and moves the file's stream. File: opened, as far as it could be.
TStrayMarkers FindStrayMarkers(TEIFile& File);

/// Raises EEIError for sections that no reader sees; of the code LineFeeds where a line feed alone ends their lines.
/// Name: for the message.
void RefuseHiddenSections(TEIFile& File, const std::string& Name);

}  // namespace velkrund
