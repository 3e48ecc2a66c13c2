#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/Controls.h"

namespace velkrund {

// The codes with which forms close; the numbers are those of the desktop systems.
inline constexpr int mrNone = 0;
inline constexpr int mrOk = 1;
inline constexpr int mrCancel = 2;
inline constexpr int mrRetry = 4;
inline constexpr int mrYes = 6;
inline constexpr int mrNo = 7;

/// A modal window as state and rules, without a screen: controls, and what pressing them does. The installed window
/// system draws it and feeds it; everything that can be decided is decided here. Shown and fed on the main thread.
class TForm {
 public:
  TForm() = default;
  TForm(const TForm&) = delete;
  TForm& operator=(const TForm&) = delete;
  virtual ~TForm() = default;

  /// The form's class, such as "TYesNoConfirmationForm"; by it scripted answers and hosts know the question.
  virtual const char* ClassName() const = 0;

  /// Shows the form until it is closed and returns the code with which it was. To be called on the main thread. Without
  /// anybody who could answer: EQuestionUnanswered, naming the question.
  int ShowModal();

  // For window systems.
  /// In the order in which they stand on the form.
  const std::vector<TLControl*>& Controls() const { return FControls; }
  template <typename TControl>
  std::vector<TControl*> VisibleControls() const;
  /// Presses a button.
  void Click(TLButton& Button);
  /// The close box, the Escape key.
  void RequestClose();
  /// mrNone while the form stays open.
  int ModalResult() const { return FModalResult; }
  /// The question: the form's labels, one a line.
  virtual std::string Message() const;
  /// Whether there is something to choose.
  bool IsQuestion() const { return VisibleControls<TLButton>().size() > 1; }

  /// Whether Yes cancels, stops or drops: nobody says it to such a question without having read it.
  virtual bool YesUndoes() const { return false; }
  /// What is to be named beforehand so that nobody has to be asked: "the target table"; empty: whoever asks knows.
  virtual std::string NamedInstead() const { return {}; }

  std::string Caption;  // of the window, already in the user's language

 protected:
  /// Whether the form may close without a button.
  virtual bool CloseQuery() { return true; }
  void CloseWith(int ModalResult) { FModalResult = ModalResult; }
  /// Puts a control behind all others, such as those that were made meanwhile.
  void MoveToEnd(TLControl& Control);

 private:
  friend class TLControl;
  void Forget(const TLControl& Control);

  std::vector<TLControl*> FControls;  // of the form, borrowed
  int FModalResult = mrNone;
};

template <typename TControl>
std::vector<TControl*> TForm::VisibleControls() const {
  std::vector<TControl*> Result;
  for (TLControl* Control : FControls)
    if (auto* Found = dynamic_cast<TControl*>(Control); Found && Found->Visible) Result.push_back(Found);
  return Result;
}

}  // namespace velkrund
