#include "velkrund/operations/UtilOperationInterface.h"

#include <utility>

#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TBase = TUtilOperationInterface;
using TCopy = TCopyDatabaseUtilOperationInterface;

constexpr TProperty BaseProperties[] = {
    PropertyOf<&TBase::DatabaseName, &TBase::SetDatabaseName>("DatabaseName", "database to work on"),
    PropertyOf<&TBase::ShowProgress, &TBase::SetShowProgress>("ShowProgress", "whether progress is shown"),
    ReadOnlyOf<&TBase::LastError>("LastError", "class and message of the last failure, empty after success"),
};

constexpr TProperty CopyProperties[] = {
    PropertyOf<&TCopy::TargetDatabaseName, &TCopy::SetTargetDatabaseName>("TargetDatabaseName",
                                                                          "database that receives the copy"),
};

TProgressRunner InstalledRunner;

/// Puts the callbacks of an operation back that a run replaces by those of its way.
class TCallbacksOfHost {
 public:
  explicit TCallbacksOfHost(TUtilOperation& Operation)
      : FOperation(Operation),
        FOnGetCancel(Operation.FOnGetCancel),
        FOnShowProgress(Operation.FOnShowProgress),
        FOnWriteLog(Operation.FOnWriteLog) {}
  TCallbacksOfHost(const TCallbacksOfHost&) = delete;
  TCallbacksOfHost& operator=(const TCallbacksOfHost&) = delete;
  ~TCallbacksOfHost() {
    FOperation.FOnGetCancel = std::move(FOnGetCancel);
    FOperation.FOnShowProgress = std::move(FOnShowProgress);
    FOperation.FOnWriteLog = std::move(FOnWriteLog);
  }

 private:
  TUtilOperation& FOperation;
  TCancelCallback FOnGetCancel;
  TProgressCallback FOnShowProgress;
  TLogCallback FOnWriteLog;
};

}  // namespace

constinit const TInterfaceDescriptor TBase::Descriptor{
    "TUtilOperationInterface", nullptr, {nullptr, BaseProperties}, nullptr};
constinit const TInterfaceDescriptor TCopy::Descriptor{"TCopyDatabaseUtilOperationInterface",
                                                       &TBase::Descriptor,
                                                       {&TBase::Descriptor.Properties, CopyProperties},
                                                       nullptr};

std::unique_ptr<TUtilOperationInterface> TInterfaceClass::Create(TRBaseManager* Manager) const {
  if (!Descriptor() || !Descriptor()->Factory)
    throw EAccessViolation("No interface object can be made: no class is given");
  return Descriptor()->Factory(Manager);
}

TUtilOperationInterface::TUtilOperationInterface(TUtilOperationClass Class, TRBaseManager* Manager)
    : FClass(Class), FParent(Class.Create()), FRBaseMng(Manager) {
  FParent->FOnGetCancel = [this] { return GetCanceled(); };
}

TUtilOperationInterface::~TUtilOperationInterface() = default;

int TUtilOperationInterface::Execute() {
  FLastError.clear();
  FError = nullptr;
  FEnd = TRunEnd::NotRun;
  try {
    const int Result = ExecuteInternal();
    FEnd = Result ? TRunEnd::Done : TRunEnd::Cancelled;
    return Result;
  } catch (const std::exception& Error) {
    FError = std::current_exception();
    FLastError = ExceptionClassName(Error) + ":" + Error.what();
    FEnd = FactsOf(Error).Info.Code == TErrorCode::Settings ? TRunEnd::WrongSettings : TRunEnd::Failed;
  } catch (...) {
    FError = std::current_exception();
    FLastError = "unknown:A callback raised something that is no error";
    FEnd = TRunEnd::Failed;
  }
  return 0;
}

int TUtilOperationInterface::ExecuteInternal() {
  const TCallbacksOfHost Callbacks(*FParent);
  if (FRBaseMng) {
    FParent->FOnWriteLog = [this, Own = FParent->FOnWriteLog](std::string_view Text, TTraceLevel Level) {
      if (Own) Own(Text, Level);
      FRBaseMng->WriteLog1(Text, static_cast<std::int32_t>(Level));
    };
    if (FShowProgress)
      FParent->FOnShowProgress = [this, Own = FParent->FOnShowProgress](std::int32_t Current, std::int32_t Total,
                                                                        std::string_view Name) {
        if (Own) Own(Current, Total, Name);
        DoShowProgress(Current, Total, Name);
      };
    return FParent->Execute();
  }
  if (!BLLModule.empty()) {
    if (FShowProgress) {
      FParent->FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
        BLLShowProgress(Current, Total, Name);
      };
      FParent->FOnGetCancel = [this] { return BLLCancel(); };
    }
    return FParent->Execute();
  }
  if (!FShowProgress) return FParent->Execute();
  return ExecuteUtilOperation(*FParent, {});
}

std::string TUtilOperationInterface::DatabaseName() const {
  const auto* Operation = dynamic_cast<const TDatabaseUtilOperation*>(FParent.get());
  return Operation ? Operation->DatabaseName : std::string();
}

void TUtilOperationInterface::SetDatabaseName(const std::string& Name) {
  if (auto* Operation = dynamic_cast<TDatabaseUtilOperation*>(FParent.get())) Operation->DatabaseName = Name;
}

bool TUtilOperationInterface::GetCanceled() const { return FRBaseMng && FRBaseMng->GetCanceled(); }

void TUtilOperationInterface::DoShowProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName) {
  if (FRBaseMng) FRBaseMng->UpdateOperationProgress(ObjectName, Total ? static_cast<double>(Current) / Total : 0.0);
}

std::string TCopyDatabaseUtilOperationInterface::TargetDatabaseName() const {
  const auto* Operation = dynamic_cast<const TCopyDatabaseUtilOperation*>(&this->Operation());
  return Operation ? Operation->TargetDatabaseName : std::string();
}

void TCopyDatabaseUtilOperationInterface::SetTargetDatabaseName(const std::string& Name) {
  if (auto* Operation = dynamic_cast<TCopyDatabaseUtilOperation*>(&this->Operation()))
    Operation->TargetDatabaseName = Name;
}

void TInterfaceClassList::Register(TInterfaceClass Class) {
  if (Find(Class.Name())) throw EListError(Format("There is an interface class '%s' already", Class.Name()));
  FList.push_back(Class);
}

TInterfaceClass TInterfaceClassList::Find(std::string_view Name) const {
  for (const TInterfaceClass& Class : FList)
    if (SameText(Class.Name(), Name)) return Class;
  return {};
}

TInterfaceClassList& InterfaceClasses() {
  static TInterfaceClassList List;
  return List;
}

TProgressRunner SetProgressRunner(TProgressRunner Runner) { return std::exchange(InstalledRunner, std::move(Runner)); }

int ExecuteUtilOperation(TUtilOperation& Operation, const std::string& Title) {
  return InstalledRunner ? InstalledRunner(Operation, Title) : Operation.Execute();
}

}  // namespace velkrund
