#pragma once

#include <vector>

#include "hosts/cli/line/SharedOptions.h"
#include "jobs/tables/ImportTables.h"

namespace velkrund {

/// Options of commands that load sections of rows. They store into the job. Target: the one that names the table.
std::vector<TOptionGroup> ImportRowsOptions(TSharedOptions& Shared, TImportRowsJob& Job, TOption Target);

}  // namespace velkrund
