#include "jobs/queries/ImportQueries.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TJobImportQueries::Descriptor =
    OperationDescriptor<TJobImportQueries>("TJobImportQueries");
constinit const TInterfaceDescriptor TJobImportQueries::Interface =
    TJobInterface<TJobImportQueries>::Describe("TJobImportQueriesInterface", TPropertyTable{&ImportRowsProperties, {}});

}  // namespace velkrund
