#pragma once

#include <string>
#include <vector>

#include "hosts/cli/line/Option.h"
#include "jobs/run/ExportJob.h"

namespace velkrund {

// Options of commands that add sections to a file. They store into the job.

TOption OutputOption(TExportJob& Job);
TOption SectionOption(TExportJob& Job, const std::string& Default);
/// What: that the sections are made from, "table".
std::vector<TOption> OtherExportOptions(TExportJob& Job, const std::string& What);

}  // namespace velkrund
