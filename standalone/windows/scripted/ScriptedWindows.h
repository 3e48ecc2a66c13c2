#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// How a form is answered: its combo boxes, its check boxes, then a button, by their components' names.
struct TScriptedAnswer {
  std::string Button;                // empty: the window is closed without one
  std::vector<std::string> Checked;  // the check boxes to tick
  TStringPairs Chosen = {};          // combo boxes, and the item of each; empty: none
};

/// Forms answered from a list, without a person: for tests, and for answers that were given by option. Used by one
/// thread at a time.
class TScriptedWindows final : public TWindowSystem {
 public:
  /// Next: asked where no answer is prepared, borrowed; null: EQuestionUnanswered.
  explicit TScriptedWindows(TWindowSystem* Next = nullptr) : FNext(Next) {}

  /// For every form of that class, such as "TMessageBoxForm", but questions whose Yes cancels, stops or drops: an
  /// answer to all of a class was given without having read them.
  void AnswerAlways(const std::string& FormClass, TScriptedAnswer Answer) { FAlways[FormClass] = std::move(Answer); }
  /// For the next form that has no standing answer; in the order of the calls, once each.
  void AnswerNext(TScriptedAnswer Answer) { FOnce.push_back(std::move(Answer)); }

  /// Raises Exception for an answer that the form does not offer: a script that went wrong must not decide anything.
  int ShowModal(TForm& Form) override;
  /// Whether an answer is prepared for a form of any class, or the next one can be asked.
  bool CanAsk() const override { return !FOnce.empty() || (FNext && FNext->CanAsk()); }
  std::optional<std::string> AskSecret(const std::string& Text) override {
    return FNext ? FNext->AskSecret(Text) : std::nullopt;
  }
  void Synchronize(const std::function<void()>& Action) override;

  /// The texts of the forms that were answered here, in order.
  const std::vector<std::string>& Answered() const { return FAnswered; }

 private:
  int AnswerWith(TForm& Form, const TScriptedAnswer& Answer);

  TWindowSystem* FNext;
  std::map<std::string, TScriptedAnswer> FAlways;
  std::deque<TScriptedAnswer> FOnce;
  std::vector<std::string> FAnswered;
};

}  // namespace velkrund
