#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/MessageBox.h"

namespace velkrund {

/// What can be answered to a question. All and None answer it for everything that is still to come.
enum class TAnswer { Yes, No, All, None, Append, Cancel };

struct TQuestion {
  std::string Text;
  std::vector<TAnswer> Answers;  // those that make sense; Cancel is always one
  std::string Option;            // the options that would have answered it, for where nobody can be asked
};

/// Whoever answers a host's questions: a person at a terminal, a window, or nobody.
class TAnswers {
 public:
  virtual ~TAnswers() = default;
  /// Whether Ask gets answers.
  virtual bool CanAsk() const = 0;
  /// One of the question's answers. Raises EQuestionUnanswered, naming the option, when nobody can answer.
  virtual TAnswer Ask(const TQuestion& Question) = 0;
};

/// Where there is nobody to ask.
class TNoAnswers final : public TAnswers {
 public:
  bool CanAsk() const override { return false; }
  TAnswer Ask(const TQuestion& Question) override;
};

/// A question that comes up for one thing after another; an answer for all is kept.
class TRepeatedQuestion {
 public:
  /// Answers: borrowed.
  explicit TRepeatedQuestion(TAnswers& Answers) : FAnswers(Answers) {}
  /// Never All or None: those are remembered, and Yes or No. Raises EAbort on Cancel.
  TAnswer Ask(const TQuestion& Question);

 private:
  TAnswers& FAnswers;
  bool FAnswered = false;
  TAnswer FForAll = TAnswer::Yes;
};

/// The message boxes of operations, answered by the same answers.
class TAnswersMessageBox final : public TMessageBoxService {
 public:
  /// Answers: borrowed. AlwaysYes: yes to everything, without asking.
  TAnswersMessageBox(TAnswers& Answers, bool AlwaysYes) : FAnswers(Answers), FAlwaysYes(AlwaysYes) {}
  /// Cancel at a box that only knows yes and no stops the operation: EAbort.
  int MessageBox(TWindowHandle Window, std::string_view Text, std::string_view Caption, std::uint32_t Flags) override;

 private:
  TAnswers& FAnswers;
  bool FAlwaysYes;
};

}  // namespace velkrund
