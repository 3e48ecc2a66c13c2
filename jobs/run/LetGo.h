#pragma once

#include <string>

#include "standalone/databases/Databases.h"

namespace velkrund {

/// Lets a database go that was not open before: whoever works on for long does not hold on to a file that others may
/// replace meanwhile.
class TLetGo {
 public:
  TLetGo(TDatabases& Databases, const std::string& Name)
      : FDatabases(Databases), FName(Name), FWasOpen(Databases.IsOpen(Name)) {}
  TLetGo(const TLetGo&) = delete;
  TLetGo& operator=(const TLetGo&) = delete;
  ~TLetGo() {
    if (!FWasOpen && FDatabases.IsOpen(FName)) FDatabases.Close(FName);
  }

 private:
  TDatabases& FDatabases;
  const std::string FName;
  const bool FWasOpen;
};

}  // namespace velkrund
