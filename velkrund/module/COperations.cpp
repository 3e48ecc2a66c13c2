#include <atomic>

#include "velkrund/module/CHandles.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/operations/OperationErrors.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void NoProgress(std::int32_t, std::int32_t, std::int32_t, std::int32_t, const char16_t*, const char16_t*) {}
bool NeverCancel() { return false; }

std::shared_ptr<TRBaseManager> MakeManager(const VelkrundCallbacks& Callbacks) {
  const TProgressUpdateProc Progress = Callbacks.Progress ? Callbacks.Progress : &NoProgress;
  const TCancelRequestProc Cancel = Callbacks.Cancel ? Callbacks.Cancel : &NeverCancel;
  if (Callbacks.LevelLog)
    return std::make_shared<TRBaseManager>(Progress, Cancel, Callbacks.LevelLog, Callbacks.RangeStart,
                                           Callbacks.RangeEnd);
  return std::make_shared<TRBaseManager>(Progress, Cancel, Callbacks.Log, Callbacks.RangeStart, Callbacks.RangeEnd);
}

/// The running operation of the process.
class TOnlyOne {
 public:
  TOnlyOne() {
    if (Running.test_and_set()) throw Exception("Another operation is running; one runs at a time in a process");
  }
  TOnlyOne(const TOnlyOne&) = delete;
  TOnlyOne& operator=(const TOnlyOne&) = delete;
  ~TOnlyOne() { Running.clear(); }

 private:
  static inline std::atomic_flag Running;
};

TUtilOperationInterface& ObjectOf(VelkrundOperation* Operation, const char* Name) {
  RequireCArgument(Operation, "Operation");
  RequireCArgument(Name, "Name");
  return *Operation->Object;
}

void RequireAtRest(const VelkrundOperation* Operation) {
  if (Operation && Operation->Running)
    throw EPropertyError("The operation is running: callbacks can neither change it nor destroy it");
}

TUtilOperationInterface& ObjectToChange(VelkrundOperation* Operation, const char* Name) {
  TUtilOperationInterface& Object = ObjectOf(Operation, Name);
  RequireAtRest(Operation);
  return Object;
}

int AskHost(VelkrundMessageBoxProc MessageBox, TWindowHandle Window, std::u16string_view Text,
            std::u16string_view Caption, std::uint32_t Flags, std::int32_t Extra1, std::int32_t Extra2) {
  const std::u16string Question(Text);
  const int Answer = MessageBox(Window, Question.c_str(), std::u16string(Caption).c_str(), Flags, Extra1, Extra2);
  if (Answer) return Answer;
  TMessageBoxForm Form(FromUtf16(Text), FromUtf16(Caption), Flags);
  return NobodyAtTheScreen().ShowModal(Form);
}

}  // namespace

}  // namespace velkrund

using namespace velkrund;

VelkrundManager* VelkrundCreateManager(const VelkrundCallbacks* Callbacks) {
  return GuardedC<VelkrundManager*>(nullptr, [&] {
    RequireCArgument(Callbacks, "Callbacks");
    return std::make_unique<VelkrundManager>(VelkrundManager{MakeManager(*Callbacks)}).release();
  });
}

int VelkrundDestroyManager(VelkrundManager* Manager) {
  return GuardedC(0, [Manager] {
    const std::unique_ptr<VelkrundManager> Owned(Manager);
    return 1;
  });
}

int VelkrundStartOperationProgress(VelkrundManager* Manager, const char* Name, int32_t Weight) {
  return GuardedC(0, [&] {
    RequireCArgument(Manager, "Manager");
    RequireCArgument(Name, "Name");
    Manager->Manager->StartOperationProgress(Name, Weight);
    return 1;
  });
}

int VelkrundSetMessageBox(VelkrundMessageBoxProc MessageBox) {
  return GuardedC(0, [MessageBox] {
    if (MessageBox)
      SetUtilOperationsMessageBox([MessageBox](auto... Arguments) { return AskHost(MessageBox, Arguments...); });
    else
      SetUtilOperationsMessageBox({});
    return 1;
  });
}

VelkrundOperation* VelkrundCreateOperation(const char* ClassName, VelkrundManager* Manager) {
  return GuardedC<VelkrundOperation*>(nullptr, [&] {
    auto Operation = std::make_unique<VelkrundOperation>();
    if (Manager) Operation->Manager = Manager->Manager;
    Operation->Object = InterfaceClassNamed(ClassName).Create(Operation->Manager.get());
    return Operation.release();
  });
}

int VelkrundDestroyOperation(VelkrundOperation* Operation) {
  return GuardedC(0, [Operation] {
    RequireAtRest(Operation);
    const std::unique_ptr<VelkrundOperation> Owned(Operation);
    return 1;
  });
}

int VelkrundSetProperty(VelkrundOperation* Operation, const char* Name, const char* Text) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectToChange(Operation, Name);
    RequireCArgument(Text, "Text");
    SetPropertyText(Object, Name, Text);
    return 1;
  });
}

int VelkrundSetList(VelkrundOperation* Operation, const char* Name, const char* const* Items, size_t Count) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectToChange(Operation, Name);
    if (Count) RequireCArgument(Items, "Items");
    for (std::size_t Index = 0; Index < Count; ++Index) RequireCArgument(Items[Index], "Items");
    SetPropertyItems(Object, Name, {Items, Items + Count});
    return 1;
  });
}

int VelkrundSetFile(VelkrundOperation* Operation, const char* Name, VelkrundFile* File) {
  return GuardedC(0, [&] {
    TUtilOperationInterface& Object = ObjectToChange(Operation, Name);
    const TProperty* Property = Object.ClassType().Properties().Find(Name);
    if (Property && (!Property->ObjectType || *Property->ObjectType != typeid(TEIFile)))
      throw EPropertyError(Format("Property '%s' takes no file", Name));
    std::shared_ptr<TEIFile> Taken = File ? File->File : nullptr;
    SetProperty(Object, Name, static_cast<void*>(Taken.get()));
    Operation->Files[std::string(Property->Name)] = std::move(Taken);
    return 1;
  });
}

size_t VelkrundGetProperty(VelkrundOperation* Operation, const char* Name, char* Buffer, size_t Size) {
  return GuardedC<std::size_t>(0, [&] {
    const std::string Text = GetPropertyText(ObjectOf(Operation, Name), Name);
    if (Size) {
      RequireCArgument(Buffer, "Buffer");
      Buffer[Text.copy(Buffer, Size - 1)] = '\0';
    }
    return Text.size() + 1;
  });
}

int32_t VelkrundExecute(VelkrundOperation* Operation) {
  return GuardedC<std::int32_t>(0, [&] {
    RequireCArgument(Operation, "Operation");
    const TOnlyOne Alone;
    Operation->Running = true;
    const int Result = Operation->Object->Execute();
    Operation->Running = false;
    KeepCError(Operation->Object->LastError());
    return Result;
  });
}
