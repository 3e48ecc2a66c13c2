#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

/// What can be answered to a host's own question. All and None answer it for everything that is still to come.
enum class TAnswer { Yes, No, All, None, Append, Cancel };

struct TQuestion {
  std::string Text;
  std::vector<TAnswer> Answers;  // those that make sense; Cancel is always one
  std::string Option;            // the options that would have answered it, for where nobody can be asked
};

/// A host's question as a form for the installed window system.
class TQuestionForm final : public TForm {
 public:
  explicit TQuestionForm(const TQuestion& Question);
  const char* ClassName() const override { return "TQuestionForm"; }
  /// Cancel unless a button was pressed.
  TAnswer Answer() const { return FAnswer; }

 private:
  TLLabel FTextLabel{*this, "TextLabel"};
  std::vector<std::unique_ptr<TLButton>> FButtons;
  TAnswer FAnswer = TAnswer::Cancel;
};

/// Whoever answers a host's questions: the installed window system.
class TAnswers {
 public:
  /// CanAsk: whether there is a person to answer.
  explicit TAnswers(bool CanAsk) : FCanAsk(CanAsk) {}
  bool CanAsk() const { return FCanAsk; }
  /// One of the question's answers. Raises EQuestionUnanswered, naming the option, when nobody can answer.
  TAnswer Ask(const TQuestion& Question);

 private:
  bool FCanAsk;
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

/// The window system where there is nobody to ask: the question of an operation raises EQuestionUnanswered that names
/// the option which answers it, a message is handed on.
class TUnattendedWindows final : public TWindowSystem {
 public:
  explicit TUnattendedWindows(std::function<void(std::string_view Text)> Tell) : FTell(std::move(Tell)) {}
  int ShowModal(TForm& Form) override;

 private:
  std::function<void(std::string_view)> FTell;
};

}  // namespace velkrund
