#pragma once

#include <string>

#include "standalone/databases/Databases.h"

namespace velkrund {

/// A transaction of a database in which whoever has waited for a lock sees what others committed before: rolled back at
/// the end of the object's life unless it was committed. Borrows the databases. Raises EDatabaseError.
class TWriteTransaction {
 public:
  TWriteTransaction(TDatabases& Databases, std::string Name);
  TWriteTransaction(const TWriteTransaction&) = delete;
  TWriteTransaction& operator=(const TWriteTransaction&) = delete;
  ~TWriteTransaction();

  void Commit();

 private:
  TDatabases& FDatabases;
  const std::string FName;
  bool FEnded = false;
};

}  // namespace velkrund
