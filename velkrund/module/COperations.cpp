#include <list>

#include "velkrund/module/CHandles.h"
#include "velkrund/module/CListener.h"
#include "velkrund/module/CRun.h"
#include "velkrund/operations/OperationErrors.h"
#include "velkrund/operations/RecreateContainerInterface.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

void RequireAtRest(bool IsBusy, std::string_view What) {
  if (IsBusy) throw EPropertyError(Format("The %s is in use by what is running: callbacks cannot touch it", What));
}

VelkrundOperation& OperationAtRest(VelkrundOperation* Operation) {
  RequireCArgument(Operation, "Operation");
  RequireAtRest(Operation->IsBusy, "operation");
  return *Operation;
}

namespace {

static_assert(static_cast<int>(TRunEnd::NotRun) == VELKRUND_NOT_RUN &&
                  static_cast<int>(TRunEnd::Cancelled) == VELKRUND_CANCELLED,
              "the ends of both sides have one order");

TUtilOperationInterface& ObjectAtRest(VelkrundOperation* Operation, const char* Name) {
  VelkrundOperation& Known = OperationAtRest(Operation);
  RequireCArgument(Name, "Name");
  return *Known.Object;
}

static_assert(VELKRUND_GENERATOR == GeneratorObjectType && VELKRUND_VIEW == ViewObjectType &&
                  VELKRUND_EXEC_PROCEDURE == ExecStoredProcObjectType &&
                  VELKRUND_SELECT_PROCEDURE == SelectStoredProcObjectType,
              "the object types of both sides are the same numbers");

TUORecreateContainerInterface& ContainerOf(VelkrundOperation* Operation) {
  TUtilOperationInterface& Object = *OperationAtRest(Operation).Object;
  if (auto* const Container = dynamic_cast<TUORecreateContainerInterface*>(&Object)) return *Container;
  throw EPropertyError(
      Format("A %s collects no objects; a TUORecreateContainerInterface does", Object.ClassType().Name()));
}

/// Runs with everything marked that callbacks must not touch.
std::int32_t Run(VelkrundOperation& Operation) {
  if (Operation.Manager) RequireAtRest(Operation.Manager->IsBusy, "manager");
  const TCRun Alone;
  std::list<TCBusy> Busy;
  Busy.emplace_back(Operation.IsBusy);
  if (Operation.Manager) Busy.emplace_back(Operation.Manager->IsBusy);
  for (const auto& [Name, File] : Operation.Files)
    if (File && !File->IsBusy) Busy.emplace_back(File->IsBusy);
  const TListenerAnswers Answers(Operation.Listener);
  Operation.Texts.clear();
  Operation.Error.Clear();
  const int Result = Operation.Object->Execute();
  Operation.Error.Take(Operation.Object->Error());
  return Result;
}

}  // namespace

}  // namespace velkrund

using namespace velkrund;

VelkrundOperation* VelkrundCreateOperation(const char* ClassName, VelkrundManager* Manager) {
  return GuardedC<VelkrundOperation*>(nullptr, [&] {
    auto Operation = std::make_unique<VelkrundOperation>();
    if (Manager) Operation->Manager = Manager->Shared;
    Operation->Object = InterfaceClassNamed(ClassName).Create(Manager ? &Manager->Shared->Object : nullptr);
    return Operation.release();
  });
}

int VelkrundDestroyOperation(VelkrundOperation* Operation) {
  return GuardedC(0, [Operation] {
    if (Operation) RequireAtRest(Operation->IsBusy, "operation");
    const std::unique_ptr<VelkrundOperation> Owned(Operation);
    return 1;
  });
}

int VelkrundSetProperty(VelkrundOperation* Operation, const char* Name, const char* Text) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectAtRest(Operation, Name);
    RequireCArgument(Text, "Text");
    SetPropertyText(Object, Name, Text);
    return 1;
  });
}

int VelkrundSetList(VelkrundOperation* Operation, const char* Name, const char* const* Items, size_t Count) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectAtRest(Operation, Name);
    if (Count) RequireCArgument(Items, "Items");
    for (std::size_t Index = 0; Index < Count; ++Index) RequireCArgument(Items[Index], "Items");
    SetPropertyItems(Object, Name, {Items, Items + Count});
    return 1;
  });
}

int VelkrundSetFile(VelkrundOperation* Operation, const char* Name, VelkrundFile* File) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectAtRest(Operation, Name);
    const TProperty* Property = Object.ClassType().Properties().Find(Name);
    if (Property && (!Property->ObjectType || *Property->ObjectType != typeid(TEIFile)))
      throw EPropertyError(Format("Property '%s' takes no file", Name));
    SetProperty(Object, Name, static_cast<void*>(File ? &File->Shared->Object : nullptr));
    Operation->Files[std::string(Property->Name)] = File ? File->Shared : nullptr;
    return 1;
  });
}

size_t VelkrundGetProperty(VelkrundOperation* Operation, const char* Name, char* Buffer, size_t Size) {
  return GuardedC<std::size_t>(0, [&] {
    TUtilOperationInterface& Object = ObjectAtRest(Operation, Name);  // before Name becomes a text
    const std::string Text = GetPropertyText(Object, Name);
    if (Size) {
      RequireCArgument(Buffer, "Buffer");
      Buffer[Text.copy(Buffer, Size - 1)] = '\0';
    }
    return Text.size() + 1;
  });
}

int VelkrundGetInteger(VelkrundOperation* Operation, const char* Name, int64_t* Value) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectAtRest(Operation, Name);
    const std::int64_t Number = GetPropertyInteger(Object, Name);
    RequireCArgument(Value, "Value");
    *Value = Number;
    return 1;
  });
}

int VelkrundSetListener(VelkrundOperation* Operation, const VelkrundListener* Listener) {
  return GuardedC(0, [&] {
    VelkrundOperation& Known = OperationAtRest(Operation);
    Known.Listener = Listener ? FromCStruct(Listener, "Listener") : VelkrundListener(VELKRUND_LISTENER_INIT);
    Listen(*Known.Object, Known.Listener);
    return 1;
  });
}

int32_t VelkrundExecute(VelkrundOperation* Operation) {
  return GuardedC<std::int32_t>(0, [&] {
    VelkrundOperation& Known = OperationAtRest(Operation);
    const std::int32_t Result = Run(Known);
    KeepCError(Known.Object->LastError(), Known.Object->Error());
    return Result;
  });
}

VelkrundEnd VelkrundLastEnd(VelkrundOperation* Operation) {
  return CaughtC<VelkrundEnd>(
      VELKRUND_NOT_RUN, [Operation] { return static_cast<VelkrundEnd>(OperationAtRest(Operation).Object->End()); });
}

int VelkrundAddObject(VelkrundOperation* Container, VelkrundObjectType Type, const char* Name) {
  return GuardedC(0, [&] {
    TUORecreateContainerInterface& Known = ContainerOf(Container);
    RequireCArgument(Name, "Name");
    if (!Known.Add(Type, Name))
      throw EPropertyError(
          Format("Nobody creates objects of the type %d ('%s'); the types are VELKRUND_GENERATOR, "
                 "VELKRUND_VIEW, VELKRUND_EXEC_PROCEDURE and VELKRUND_SELECT_PROCEDURE",
                 Type, Name));
    return 1;
  });
}

int VelkrundClearObjects(VelkrundOperation* Container) {
  return GuardedC(0, [&] { return ContainerOf(Container).Clear(), 1; });
}

int VelkrundGetError(VelkrundOperation* Operation, VelkrundError* Error) {
  return CaughtC(0, [&] {
    RequireCStruct(Error, "Error");
    ToCStruct(Error, (Operation ? OperationAtRest(Operation).Error : KeptCError()).Described());
    return 1;
  });
}
