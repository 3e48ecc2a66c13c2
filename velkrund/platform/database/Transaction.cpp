#include "velkrund/platform/database/Transaction.h"

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

TTransaction::TTransaction(const std::string& DatabaseName, TIsolationLevel Level) : FDatabaseName(DatabaseName) {
  BaseMng().StartTransaction(FDatabaseName, Level);
}

TTransaction::~TTransaction() {
  if (FEnded) return;
  try {
    BaseMng().RollbackTransaction(FDatabaseName);
  } catch (const std::exception& Error) {
    // A connection that cannot roll back has lost the transaction anyway.
    BaseMng().WriteTrace(TraceSubsystem, TTraceLevel::Error, Format("Cannot roll back: %s", Error.what()));
  }
}

void TTransaction::Commit() {
  FEnded = true;
  BaseMng().CommitTransaction(FDatabaseName);
}

}  // namespace velkrund
