#pragma once

#include <string>
#include <vector>

#include "hosts/cli/line/Option.h"
#include "jobs/resources/ExportToFolder.h"
#include "jobs/run/ExportJob.h"

namespace velkrund {

// Options of commands that add sections to a file. They store into the job.

TOption OutputOption(TExportJob& Job);
TOption SectionOption(TExportJob& Job, const std::string& Default);
/// Where a folder can be given in its place.
TOption NotRequired(TOption Option);
/// What is said of sections of a file, for files of a folder.
void TakeExportSettings(TExportToFolder& Job, const TExportJob& Said);
/// What: that the sections are made from, "table".
std::vector<TOption> OtherExportOptions(TExportJob& Job, const std::string& What);

}  // namespace velkrund
