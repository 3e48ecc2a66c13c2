#pragma once

#include <functional>
#include <string_view>

#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// The window system where there is nobody to ask: the question of an operation raises EQuestionUnanswered that names
/// the option which answers it, a message is handed on.
class TUnattendedWindows final : public TWindowSystem {
 public:
  explicit TUnattendedWindows(std::function<void(std::string_view Text)> Tell) : FTell(std::move(Tell)) {}
  int ShowModal(TForm& Form) override;
  bool CanAsk() const override { return false; }

 private:
  std::function<void(std::string_view)> FTell;
};

/// Of a form with lists to choose from, which a terminal alone can show.
EQuestionUnanswered UnshownError(const TForm& Form);

/// A decision that nobody could make: what is at stake, and the options that decide.
TLText UnansweredText(const TLText& Stakes, const TLText& Options);

}  // namespace velkrund
