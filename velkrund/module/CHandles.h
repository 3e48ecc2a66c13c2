#pragma once

#include <map>
#include <memory>
#include <string>

#include "velkrund/eif/EIFile.h"
#include "velkrund/module/CGuard.h"
#include "velkrund/module/Velkrund.h"
#include "velkrund/operations/UtilOperationInterface.h"

// What is behind the handles of Velkrund.h. Shared, so that a host may give its handles back in any order.

struct VelkrundManager {
  std::shared_ptr<velkrund::TRBaseManager> Manager;
};

struct VelkrundFile {
  std::shared_ptr<velkrund::TEIFile> File;
  velkrund::TCHandleCount Counted;
};

struct VelkrundOperation {
  std::shared_ptr<velkrund::TRBaseManager> Manager;                 // may be empty
  std::map<std::string, std::shared_ptr<velkrund::TEIFile>> Files;  // by property name
  std::unique_ptr<velkrund::TUtilOperationInterface> Object;
  bool Running = false;  // its settings are in use
  velkrund::TCHandleCount Counted;
};

namespace velkrund {

/// The class that hosts know by that name. Raises an error when there is none.
TInterfaceClass InterfaceClassNamed(const char* Name);

}  // namespace velkrund
