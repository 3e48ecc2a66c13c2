#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/operations/HookGuard.h"
#include "velkrund/operations/Properties.h"
#include "velkrund/operations/Rbaseint.h"
#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/extcalls/ExtCall.h"

namespace velkrund {

struct TInterfaceDescriptor {
  const char* Name;
  const TInterfaceDescriptor* Parent;
  TPropertyTable Properties;
  std::unique_ptr<TUtilOperationInterface> (*Factory)(TRBaseManager* Manager);  // null: abstract
};

/// How a run ended. The numbers are those of programs that run operations.
enum class TRunEnd : int { NotRun = -1, Done = 0, Failed = 1, WrongSettings = 2, Cancelled = 3 };

/// An interface class as a value.
class TInterfaceClass : public TClassRef<TInterfaceDescriptor> {
 public:
  using TClassRef::TClassRef;
  const TPropertyTable& Properties() const { return Descriptor()->Properties; }
  /// Manager: borrowed, may be null. Raises EAccessViolation for no class and for an abstract one.
  std::unique_ptr<TUtilOperationInterface> Create(TRBaseManager* Manager) const;
};

/// The scriptable face of an operation: makes and owns it, exposes its settings as properties, sends progress and
/// cancel to the host's manager, to two script functions or to the progress window, and turns errors into LastError.
class TUtilOperationInterface {
 public:
  TUtilOperationInterface(const TUtilOperationInterface&) = delete;
  TUtilOperationInterface& operator=(const TUtilOperationInterface&) = delete;
  virtual ~TUtilOperationInterface();

  /// Runs the operation and returns its result. No error leaves it: then the result is 0, and LastError holds the
  /// error's class name, a colon and its message, with no blank between.
  int Execute();
  /// The class of the operation behind this interface.
  virtual TUtilOperationClass UOClass() const { return FClass; }
  virtual TInterfaceClass ClassType() const = 0;

  /// The database the operation works on; empty, and ignored when set, where the operation has none.
  std::string DatabaseName() const;
  void SetDatabaseName(const std::string& Name);
  bool ShowProgress() const { return FShowProgress; }
  void SetShowProgress(bool Value) { FShowProgress = Value; }
  const std::string& LastError() const { return FLastError; }
  /// What LastError is about; null: the last run has not failed.
  const std::exception_ptr& Error() const { return FError; }
  /// How the last run ended; before the first, and during each, NotRun.
  TRunEnd End() const { return FEnd; }

  /// Names the script functions for progress (integer, integer, string) and cancel (returns a boolean). An empty
  /// module: no script functions.
  void SetProgressCallBack(const std::string& Module, const std::string& ShowProc, const std::string& CancelProc);
  void BLLShowProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName);
  bool BLLCancel();

  void DoShowProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName);
  /// What the host's manager answers; false without one.
  bool GetCanceled() const;
  /// The operation, owned by the interface.
  TUtilOperation& Operation() const { return *FParent; }

  static const TInterfaceDescriptor Descriptor;

 protected:
  /// Manager: borrowed, outlives the interface; may be null.
  TUtilOperationInterface(TUtilOperationClass Class, TRBaseManager* Manager);

  /// Picks the way of progress and cancel, and runs the operation. A manager hears of it beside whoever listens to the
  /// operation itself.
  virtual int ExecuteInternal();

 private:
  TExtCall& PrepareCall(const std::string& Function, const char* Purpose);

  TUtilOperationClass FClass;
  std::unique_ptr<TUtilOperation> FParent;
  bool FShowProgress = false;
  TRBaseManager* FRBaseMng;
  std::string FLastError;
  std::exception_ptr FError;
  TRunEnd FEnd = TRunEnd::NotRun;
  std::string BLLModule, BLLShowProc, BLLCancelProc;
  std::unique_ptr<TExtCall> FExtCall;
};

/// The face of an operation that copies from one database into another.
class TCopyDatabaseUtilOperationInterface : public TUtilOperationInterface {
 public:
  std::string TargetDatabaseName() const;
  void SetTargetDatabaseName(const std::string& Name);

  static const TInterfaceDescriptor Descriptor;

 protected:
  using TUtilOperationInterface::TUtilOperationInterface;
};

/// The interface classes that scripts and hosts can make by name. Filled when the module starts.
class TInterfaceClassList {
 public:
  /// Raises EListError for a name that is taken.
  void Register(TInterfaceClass Class);
  /// Ignoring case; empty when there is none.
  TInterfaceClass Find(std::string_view Name) const;
  const std::vector<TInterfaceClass>& All() const { return FList; }

 private:
  std::vector<TInterfaceClass> FList;
};

TInterfaceClassList& InterfaceClasses();

/// The progress window: runs the operation on a worker thread behind it and returns the operation's result, or raises
/// its error, when it closes.
using TProgressRunner = std::function<int(TUtilOperation& Operation, const std::string& Title)>;
/// Installs the runner of the host's window system and returns the one before; an empty one: there is none.
TProgressRunner SetProgressRunner(TProgressRunner Runner);
using TProgressRunnerGuard = THookGuard<TProgressRunner, &SetProgressRunner>;
/// Runs the operation behind the progress window and returns its result; without a window system, on the caller's
/// thread and without display.
int ExecuteUtilOperation(TUtilOperation& Operation, const std::string& Title);

}  // namespace velkrund
