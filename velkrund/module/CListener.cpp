#include "velkrund/module/CListener.h"

#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void Listen(TUtilOperationInterface& Object, const VelkrundListener& Listener) {
  TUtilOperation& Operation = Object.Operation();
  Operation.FOnShowProgress = nullptr;
  Operation.FOnWriteLog = nullptr;
  Operation.FOnGetCancel = [&Object, &Listener] {
    return Object.GetCanceled() || (Listener.Cancel && Listener.Cancel(Listener.UserData) != 0);
  };
  if (Listener.Progress)
    Operation.FOnShowProgress = [&Listener, Text = std::string()](std::int32_t Current, std::int32_t Total,
                                                                  std::string_view Name) mutable {
      Text = Name;  // reused: once a row
      Listener.Progress(Listener.UserData, Current, Total, Text.c_str());
    };
  if (Listener.Log)
    Operation.FOnWriteLog = [&Listener](std::string_view Text, TTraceLevel Level) {
      Listener.Log(Listener.UserData, static_cast<std::int32_t>(Level), std::string(Text).c_str());
    };
}

TListenerAnswers::TListenerAnswers(const VelkrundListener& Listener) {
  if (!Listener.Ask) return;
  FMessageBox = SetUtilOperationsMessageBox({});
  SetUtilOperationsMessageBox(FMessageBox);
  FGuard.emplace([this, &Listener](TWindowHandle Window, std::u16string_view Text, std::u16string_view Caption,
                                   std::uint32_t Flags, std::int32_t Extra1, std::int32_t Extra2) -> int {
    const std::string Question = FromUtf16(Text), Title = FromUtf16(Caption);
    if (const int Answer = Listener.Ask(Listener.UserData, Question.c_str(), Title.c_str(), Flags)) return Answer;
    if (FMessageBox) return FMessageBox(Window, Text, Caption, Flags, Extra1, Extra2);
    TMessageBoxForm Form(Question, Title, Flags);
    return NobodyAtTheScreen().ShowModal(Form);
  });
}

}  // namespace velkrund
