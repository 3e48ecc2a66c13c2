#include "standalone/databases/ReadTransaction.h"

#include <utility>

namespace velkrund {

TReadTransaction::TReadTransaction(TDatabases& Databases, std::string Name)
    : FDatabases(Databases), FName(std::move(Name)) {
  Renew();
}

TReadTransaction::~TReadTransaction() {
  try {
    if (FOpen) FDatabases.RollbackTransaction(FName);
  } catch (const std::exception&) {
    // Nothing was written, so nothing is lost with it.
  }
}

void TReadTransaction::Renew() {
  if (std::exchange(FOpen, false)) FDatabases.RollbackTransaction(FName);
  FDatabases.StartReading(FName);
  FOpen = true;
}

}  // namespace velkrund
