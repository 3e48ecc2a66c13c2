#include "hosts/common/Answers.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::uint32_t ButtonsMask = 0xF;

[[noreturn]] void RaiseCancelled() { throw EAbort("Cancelled at a question"); }

}  // namespace

TAnswer TNoAnswers::Ask(const TQuestion& Question) {
  throw EQuestionUnanswered(Format("%s Give %s; there is no terminal to ask", Question.Text, Question.Option));
}

TAnswer TRepeatedQuestion::Ask(const TQuestion& Question) {
  if (FAnswered) return FForAll;
  const TAnswer Answer = FAnswers.Ask(Question);
  switch (Answer) {
    case TAnswer::Cancel:
      RaiseCancelled();
    case TAnswer::All:
    case TAnswer::None:
      FAnswered = true;
      return FForAll = Answer == TAnswer::All ? TAnswer::Yes : TAnswer::No;
    default:
      return Answer;
  }
}

int TAnswersMessageBox::MessageBox(TWindowHandle, std::string_view Text, std::string_view, std::uint32_t Flags) {
  if (FAlwaysYes) return IDYES;
  const TQuestion Question{std::string(Text), {TAnswer::Yes, TAnswer::No, TAnswer::Cancel}, "--yes"};
  switch (FAnswers.Ask(Question)) {
    case TAnswer::Yes:
      return IDYES;
    case TAnswer::No:
      return IDNO;
    default:
      break;
  }
  if ((Flags & ButtonsMask) == MB_YESNOCANCEL) return IDCANCEL;
  RaiseCancelled();
}

}  // namespace velkrund
