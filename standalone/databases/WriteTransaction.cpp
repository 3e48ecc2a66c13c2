#include "standalone/databases/WriteTransaction.h"

#include <utility>

namespace velkrund {

TWriteTransaction::TWriteTransaction(TDatabases& Databases, std::string Name)
    : FDatabases(Databases), FName(std::move(Name)) {
  FDatabases.StartTransaction(FName, TIsolationLevel::ReadCommitted);
}

TWriteTransaction::~TWriteTransaction() {
  if (FEnded) return;
  try {
    FDatabases.RollbackTransaction(FName);
  } catch (const std::exception&) {
    // A connection that cannot roll back has lost the transaction anyway.
  }
}

void TWriteTransaction::Commit() {
  FEnded = true;
  FDatabases.CommitTransaction(FName);
}

}  // namespace velkrund
