#pragma once

#include <string>

#include "standalone/databases/Databases.h"

namespace velkrund {

/// As long as it lives, everything that is read from a database is of one moment, whoever writes meanwhile. Borrows the
/// databases. Raises EDatabaseError.
class TReadTransaction {
 public:
  TReadTransaction(TDatabases& Databases, std::string Name);
  TReadTransaction(const TReadTransaction&) = delete;
  TReadTransaction& operator=(const TReadTransaction&) = delete;
  ~TReadTransaction();

  /// Begins again, at a later moment: after an error of a statement an engine refuses all others.
  void Renew();

 private:
  TDatabases& FDatabases;
  const std::string FName;
  bool FOpen = false;
};

}  // namespace velkrund
