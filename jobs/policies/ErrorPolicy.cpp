#include "jobs/policies/ErrorPolicy.h"

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr const char* Options = "--on-error continue or --on-error stop";

}  // namespace

TErrorPolicy::TErrorPolicy(TOnError OnError, TAnswers& Answers) : FOnError(OnError), FAnswers(Answers) {
  SetUtilOperationsMessageBox([this](TWindowHandle, std::u16string_view Text, std::u16string_view Caption,
                                     std::uint32_t Flags, std::int32_t, std::int32_t) {
    if (Caption.empty() && Flags == MB_YESNO) return GoOn(FromUtf16(Text)) ? IDYES : IDNO;
    return ShowMessageBox(FromUtf16(Text), FromUtf16(Caption), Flags);
  });
}

TErrorPolicy::~TErrorPolicy() { SetUtilOperationsMessageBox({}); }

bool TErrorPolicy::GoOn(const std::string& Text) {
  if (FOnError != TOnError::Ask) return FOnError == TOnError::Continue;
  // The failure itself is told anyway, once is enough.
  if (!FAnswers.CanAsk())
    throw EQuestionUnanswered(Format("There is no terminal to ask whether to go on: give %s", Options));
  switch (FAnswers.Ask(
      {Text, {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::Cancel}, "--on-error continue or --on-error stop"})) {
    case TAnswer::All:
      FOnError = TOnError::Continue;
      return true;
    case TAnswer::Yes:
      return true;
    case TAnswer::Cancel:
      throw EAbort("Cancelled at a question");
    default:
      return false;
  }
}

}  // namespace velkrund
