#pragma once

#include <memory>

#include "standalone/drivers/ProcedureRun.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// Calls a function or procedure, as TConnection::RunProcedure. A function yields its rows, or its value as one; a
/// procedure its output parameters as one, where it has some.
std::unique_ptr<TProcedureRun> CallPostgreSQLRoutine(TPostgreSQLSession& Session,
                                                     const TDicProcedureDescription& Procedure,
                                                     const TProcedureArguments& Arguments);

}  // namespace velkrund
