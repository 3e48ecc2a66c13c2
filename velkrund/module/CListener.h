#pragma once

#include <optional>

#include "velkrund/module/Velkrund.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// Makes an operation tell a listener of its progress and its log, and ask it whether to stop. Both are borrowed.
void Listen(TUtilOperationInterface& Object, const VelkrundListener& Listener);

/// While it lives, which is one run, questions go to the listener first, then to the message box of the process.
class TListenerAnswers {
 public:
  /// Listener: borrowed.
  explicit TListenerAnswers(const VelkrundListener& Listener);

 private:
  TUtilOperationsMessageBox FMessageBox;  // that of the process, may be empty
  std::optional<TMessageBoxGuard> FGuard;
};

}  // namespace velkrund
