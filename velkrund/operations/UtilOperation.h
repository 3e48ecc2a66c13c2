#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "velkrund/eif/EIObject.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/ClassRef.h"

namespace velkrund {

class TUtilOperation;

/// Takes a line of the log.
using TLogCallback = std::function<void(std::string_view Text, TTraceLevel Level)>;

struct TUtilOperationDescriptor {
  const char* Name;
  const TUtilOperationDescriptor* Parent;
  std::unique_ptr<TUtilOperation> (*Factory)();
};

/// What an operation class defines as its Descriptor. Name: that of the class.
template <typename TOperation>
constexpr TUtilOperationDescriptor OperationDescriptor(const char* Name,
                                                       const TUtilOperationDescriptor* Parent = nullptr) {
  return {Name, Parent, []() -> std::unique_ptr<TUtilOperation> { return std::make_unique<TOperation>(); }};
}

/// An operation class as a value.
class TUtilOperationClass : public TClassRef<TUtilOperationDescriptor> {
 public:
  using TClassRef::TClassRef;
  /// Raises EAccessViolation for no class.
  std::unique_ptr<TUtilOperation> Create() const;
};

/// One administrative job: its settings are public members, Execute does the work. Reports progress and is cancelled by
/// polling. An operation that runs another as a step becomes its Owner, so that cancelling the outer one stops the
/// inner. Runs on one thread; SetCanceled may come from another.
class TUtilOperation {
 public:
  TUtilOperation() = default;
  TUtilOperation(const TUtilOperation&) = delete;
  TUtilOperation& operator=(const TUtilOperation&) = delete;
  virtual ~TUtilOperation() = default;

  /// Does the job; non-zero is success, 0 cancelled. Failures are errors. May run more than once.
  virtual int Execute() = 0;

  /// Once set, the flag stays set until it is set to false.
  void SetCanceled(bool Value) { FCanceled = Value; }
  /// This operation's own flag or, while that is not set, what FOnGetCancel answers.
  bool GetCanceled() const;
  /// The same for this operation and all its owners. Polled between objects and records.
  bool IsCanceled() const;
  void ShowProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName) const;
  /// Tells what has happened: to the application's trace, and to the log of this operation or of the nearest owner that
  /// has one.
  void WriteLog(TTraceLevel Level, const std::string& Text) const;

  TCancelCallback FOnGetCancel;
  TProgressCallback FOnShowProgress;
  TLogCallback FOnWriteLog;
  TUtilOperation* Owner = nullptr;  // borrowed; null for a top-level operation

 private:
  std::atomic<bool> FCanceled = false;
};

/// An operation on one database.
class TDatabaseUtilOperation : public TUtilOperation {
 public:
  std::string DatabaseName;
};

/// An operation from one database into another.
class TCopyDatabaseUtilOperation : public TDatabaseUtilOperation {
 public:
  std::string TargetDatabaseName;
};

}  // namespace velkrund
