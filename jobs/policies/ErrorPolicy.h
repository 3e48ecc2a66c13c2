#pragma once

#include <string>

#include "jobs/policies/Questions.h"

namespace velkrund {

/// What a run over several things does after one of them failed.
enum class TOnError { Ask, Continue, Stop };

/// Answers whether to go on after a failure: by the option given, else by asking. Operations that ask it themselves, in
/// a message box without a caption, get the same answers while the object lives; their other message boxes are shown.
class TErrorPolicy {
 public:
  /// Answers: borrowed.
  TErrorPolicy(TOnError OnError, TAnswers& Answers);
  TErrorPolicy(const TErrorPolicy&) = delete;
  TErrorPolicy& operator=(const TErrorPolicy&) = delete;
  ~TErrorPolicy();

  /// Whether to go on. Text: what is asked about. Raises EAbort on Cancel, EQuestionUnanswered when nobody can answer.
  bool GoOn(const std::string& Text);
  /// Whether the next failure is asked about, its text shown with the question.
  bool Asks() const { return FOnError == TOnError::Ask && FAnswers.CanAsk(); }
  TOnError OnError() const { return FOnError; }

 private:
  TOnError FOnError;  // Continue once a person has answered for all
  TAnswers& FAnswers;
};

}  // namespace velkrund
