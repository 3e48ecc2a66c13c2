// Managers, and the message box of the process.

#include <string>

#include "velkrund/module/CHandles.h"
#include "velkrund/module/CRun.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

void NoProgress(std::int32_t, std::int32_t, std::int32_t, std::int32_t, const char16_t*, const char16_t*) {}
bool NeverCancel() { return false; }

std::shared_ptr<TCShared<TRBaseManager>> MakeManager(const VelkrundCallbacks& Callbacks) {
  const TProgressUpdateProc Progress = Callbacks.Progress ? Callbacks.Progress : &NoProgress;
  const TCancelRequestProc Cancel = Callbacks.Cancel ? Callbacks.Cancel : &NeverCancel;
  using TShared = TCShared<TRBaseManager>;
  if (Callbacks.LevelLog)
    return std::make_shared<TShared>(Progress, Cancel, Callbacks.LevelLog, Callbacks.RangeStart, Callbacks.RangeEnd);
  return std::make_shared<TShared>(Progress, Cancel, Callbacks.Log, Callbacks.RangeStart, Callbacks.RangeEnd);
}

void RequireManager(const VelkrundManager* Manager) {
  RequireCArgument(Manager, "Manager");
  RequireAtRest(Manager->Shared->IsBusy, "manager");
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
    const VelkrundCallbacks Known = FromCStruct(Callbacks, "Callbacks");
    return std::make_unique<VelkrundManager>(VelkrundManager{MakeManager(Known)}).release();
  });
}

int VelkrundDestroyManager(VelkrundManager* Manager) {
  return GuardedC(0, [Manager] {
    if (!Manager) return 1;
    RequireManager(Manager);
    delete Manager;
    return 1;
  });
}

int VelkrundStartOperationProgress(VelkrundManager* Manager, const char* Name, int32_t Weight) {
  return GuardedC(0, [&] {
    RequireManager(Manager);
    RequireCArgument(Name, "Name");
    const TCBusy Busy(Manager->Shared->IsBusy);
    Manager->Shared->Object.StartOperationProgress(Name, Weight);
    return 1;
  });
}

int VelkrundSetMessageBox(VelkrundMessageBoxProc MessageBox) {
  return GuardedC(0, [MessageBox] {
    const TCRun Alone;
    if (MessageBox)
      SetUtilOperationsMessageBox([MessageBox](auto... Arguments) { return AskHost(MessageBox, Arguments...); });
    else
      SetUtilOperationsMessageBox({});
    return 1;
  });
}
