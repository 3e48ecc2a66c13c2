#pragma once

#include "jobs/tables/ImportTables.h"

namespace velkrund {

/// Loads query data sections of one file into the table that is named, or that a person chooses.
class TJobImportQueries final : public TImportRowsJob {
 public:
  TJobImportQueries() : TImportRowsJob("query", TSectionRole::QueryData, "query data") {}
  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;
};

using TJobImportQueriesInterface = TJobInterface<TJobImportQueries>;

}  // namespace velkrund
