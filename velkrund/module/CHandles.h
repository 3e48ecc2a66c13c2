#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/eif/EIFile.h"
#include "velkrund/module/CGuard.h"
#include "velkrund/module/Velkrund.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// What is behind a handle, shared with the operations that use it: a host may give its handles back in any order.
template <typename TObject>
struct TCShared {
  template <typename... TArguments>
  explicit TCShared(TArguments&&... Arguments) : Object(std::forward<TArguments>(Arguments)...) {}

  TObject Object;
  bool IsBusy = false;  // at work, with callbacks to come that must not touch it
};

}  // namespace velkrund

struct VelkrundManager {
  std::shared_ptr<velkrund::TCShared<velkrund::TRBaseManager>> Shared;
};

struct VelkrundFile {
  std::shared_ptr<velkrund::TCShared<velkrund::TEIFile>> Shared;
  velkrund::TCHandleCount Counted;
};

struct VelkrundOperation {
  std::shared_ptr<velkrund::TCShared<velkrund::TRBaseManager>> Manager;                 // may be empty
  std::map<std::string, std::shared_ptr<velkrund::TCShared<velkrund::TEIFile>>> Files;  // by property name
  std::unique_ptr<velkrund::TUtilOperationInterface> Object;
  VelkrundListener Listener = VELKRUND_LISTENER_INIT;
  velkrund::TCError Error;         // of the last run
  std::vector<std::string> Texts;  // what hosts were told of its results, until it runs again
  bool IsBusy = false;
  velkrund::TCHandleCount Counted;
};

namespace velkrund {

/// The class that hosts know by that name. Raises an error when there is none.
TInterfaceClass InterfaceClassNamed(const char* Name);

/// Raises an error where What is at work, on which callbacks must not lay their hands.
void RequireAtRest(bool IsBusy, std::string_view What);

/// The operation of a handle, for whatever reads or changes it. Raises an error for NULL and while it runs.
VelkrundOperation& OperationAtRest(VelkrundOperation* Operation);

}  // namespace velkrund
