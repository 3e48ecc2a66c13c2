#pragma once

#include <string>

#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

/// A transaction of a database, of the level that imports need unless told otherwise: rolled back at the end of the
/// object's life unless it was committed. A roll back that fails goes to the trace, since the error on its way out is
/// the one to tell.
class TTransaction {
 public:
  explicit TTransaction(const std::string& DatabaseName, TIsolationLevel Level = TIsolationLevel::RepeatableRead);
  TTransaction(const TTransaction&) = delete;
  TTransaction& operator=(const TTransaction&) = delete;
  ~TTransaction();

  void Commit();

 private:
  const std::string FDatabaseName;
  bool FEnded = false;
};

}  // namespace velkrund
