#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

/// Forms as message boxes of yes, no and cancel, for hosts that have nothing else. Yes is the button that does most of
/// what the form offers (yes, replace, overwrite), no the one that leaves things alone (no, skip, else cancel); where
/// their captions say otherwise than yes and no, the text explains them. Buttons beside these, and check boxes, are not
/// offered.
class TMessageBoxWindows final : public TWindowSystem {
 public:
  /// Flags: MB_YESNOCANCEL, or MB_OK for what is no question. Returns the answer's code; 0: nobody can answer.
  using TShow = std::function<int(const std::string& Text, const std::string& Caption, std::uint32_t Flags)>;

  /// HasShow: whether there is a message box at the moment.
  explicit TMessageBoxWindows(
      TShow Show, bool (*HasShow)() = [] { return true; })
      : FShow(std::move(Show)), FHasShow(HasShow) {}

  /// Cancel where the form has no button for it raises EAbort; where nobody can answer, or the form has no yes and no,
  /// it is as without a window system. A form with lists to choose from is an EQuestionUnanswered.
  int ShowModal(TForm& Form) override;
  bool CanAsk() const override { return FHasShow(); }

 private:
  const TShow FShow;
  bool (*const FHasShow)();
};

}  // namespace velkrund
