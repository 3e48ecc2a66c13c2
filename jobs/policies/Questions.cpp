#include "jobs/policies/Questions.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

namespace {

struct TAnswerButton {
  TAnswer Answer;
  const char* Name;
  const char* CaptionKey;
  bool ForAll;
};

constexpr TAnswerButton AnswerButtons[] = {
    {TAnswer::Yes, "YesButton", "ST_YES", false},
    {TAnswer::No, "NoButton", "ST_NO", false},
    {TAnswer::All, "YesToAllButton", "ST_YESTOALL", true},
    {TAnswer::None, "NoToAllButton", "ST_NOTOALL", true},
    {TAnswer::Append, "AppendButton", "C_Velkrund_OverwriteEIObjectForm_AppendButton_L", false},
    {TAnswer::Cancel, "CancelButton", "ST_CANCEL", false},
};

const TAnswerButton& ButtonOf(TAnswer Answer) { return AnswerButtons[static_cast<std::size_t>(Answer)]; }

}  // namespace

TQuestionForm::TQuestionForm(const TQuestion& Question) {
  FTextLabel.Caption = Question.Text.Local();
  for (const TAnswer Answer : Question.Answers) {
    const TAnswerButton& Made = ButtonOf(Answer);
    FButtons.push_back(std::make_unique<TLButton>(*this, Made.Name, Made.CaptionKey));
    FButtons.back()->ForAll = Made.ForAll;
    FButtons.back()->OnClick = [this, Answer] {
      FAnswer = Answer;
      CloseWith(mrOk);
    };
  }
}

bool CanAsk() { return Windows().CanAsk(); }

TAnswer Ask(const TQuestion& Question) {
  if (!CanAsk()) throw EPolicyUnanswered(Question.Policy, Question.Text);
  TQuestionForm Form(Question);
  try {
    Synchronize([&Form] { Form.ShowModal(); });
  } catch (const EQuestionUnanswered&) {
    throw EPolicyUnanswered(Question.Policy, Question.Text);
  }
  if (Form.Answer() == TAnswer::Cancel) throw EAbort("Cancelled at a question");
  return Form.Answer();
}

std::optional<std::string> AskSecret(const std::string& Text) {
  std::optional<std::string> Result;
  Synchronize([&] { Result = Windows().AskSecret(Text); });
  return Result;
}

TAnswer TRepeatedQuestion::Ask(const TQuestion& Question) {
  if (FAnswered) return FForAll;
  const TAnswer Answer = velkrund::Ask(Question);
  if (Answer != TAnswer::All && Answer != TAnswer::None) return Answer;
  FAnswered = true;
  return FForAll = Answer == TAnswer::All ? TAnswer::Yes : TAnswer::No;
}

}  // namespace velkrund
