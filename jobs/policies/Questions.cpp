#include "jobs/policies/Questions.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

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

[[noreturn]] void RaiseUnanswered(const std::string& Question, const std::string& Option) {
  throw EQuestionUnanswered(Format("%s Give %s; there is no terminal to ask", Question, Option));
}

}  // namespace

TQuestionForm::TQuestionForm(const TQuestion& Question) {
  FTextLabel.Caption = Question.Text;
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

TAnswer TAnswers::Ask(const TQuestion& Question) {
  if (!FCanAsk) RaiseUnanswered(Question.Text, Question.Option);
  TQuestionForm Form(Question);
  Form.ShowModal();
  return Form.Answer();
}

TAnswer TRepeatedQuestion::Ask(const TQuestion& Question) {
  if (FAnswered) return FForAll;
  const TAnswer Answer = FAnswers.Ask(Question);
  switch (Answer) {
    case TAnswer::Cancel:
      throw EAbort("Cancelled at a question");
    case TAnswer::All:
    case TAnswer::None:
      FAnswered = true;
      return FForAll = Answer == TAnswer::All ? TAnswer::Yes : TAnswer::No;
    default:
      return Answer;
  }
}

int TUnattendedWindows::ShowModal(TForm& Form) {
  const bool IsBox = Form.ClassName() == std::string_view("TMessageBoxForm");
  if (Form.IsQuestion()) RaiseUnanswered(Form.Message(), IsBox ? "--yes" : "--overwrite yes or --overwrite no");
  FTell(Form.Message());
  return mrOk;
}

}  // namespace velkrund
