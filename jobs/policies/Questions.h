#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jobs/policies/Policies.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

/// What can be answered to a job's own question. All and None answer it for everything that is still to come.
enum class TAnswer { Yes, No, All, None, Append, Cancel };

struct TQuestion {
  TQuestion(TLText Asked, std::vector<TAnswer> Given, TPolicy Decides)
      : Text(std::move(Asked)), Answers(std::move(Given)), Policy(Decides) {}
  /// Nobody is asked in English under buttons of another language: a question comes from a message key.
  template <std::convertible_to<std::string> TWords>
  TQuestion(TWords&&, std::vector<TAnswer>, TPolicy) = delete;

  TLText Text;
  std::vector<TAnswer> Answers;  // those that make sense; Cancel is always one
  TPolicy Policy;                // that would have answered it
};

/// A job's question as a form for the installed window system.
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

/// Whether there is somebody to answer questions: what the installed window system says.
bool CanAsk();
/// One of the question's answers. Raises EPolicyUnanswered when nobody can answer, and EAbort on Cancel.
TAnswer Ask(const TQuestion& Question);

/// A line from the person who answers questions that nobody else may see, such as a password. Nothing: there is none.
std::optional<std::string> AskSecret(const std::string& Text);

/// A question that comes up for one thing after another; an answer for all is kept.
class TRepeatedQuestion {
 public:
  /// Never All or None: those are remembered, and Yes or No. Errors as Ask.
  TAnswer Ask(const TQuestion& Question);

 private:
  bool FAnswered = false;
  TAnswer FForAll = TAnswer::Yes;
};

}  // namespace velkrund
