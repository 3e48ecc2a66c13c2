#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace velkrund {

class TForm;

/// One thing that a form shows. A member of its form, which lists it in the order of declaration; never moved. Texts
/// that are keys are looked up in the user's language when they are shown.
class TLControl {
 public:
  TLControl(TForm& Form, const char* Name);
  TLControl(const TLControl&) = delete;
  TLControl& operator=(const TLControl&) = delete;
  virtual ~TLControl() = default;

  /// The component's name, such as "YesButton"; for scripts and tests.
  std::string_view Name() const { return FName; }

  bool Visible = true;

 private:
  const char* FName;
};

/// A text, already in the user's language.
class TLLabel : public TLControl {
 public:
  using TLControl::TLControl;
  std::string Caption;
};

/// A control whose caption and hint are keys. Captions mark the letter that picks them with "&".
class TLCaptioned : public TLControl {
 public:
  TLCaptioned(TForm& Form, const char* Name, std::string CaptionKey, std::string HintKey = {});

  const std::string& CaptionKey() const { return FCaptionKey; }
  std::string Caption() const;
  /// Empty when there is none.
  std::string Hint() const;

 private:
  std::string FCaptionKey, FHintKey;
};

/// Closes its form with its result code, unless that is 0; before that its handler runs.
class TLButton : public TLCaptioned {
 public:
  TLButton(TForm& Form, const char* Name, std::string CaptionKey, int ResultCode = 0, std::string HintKey = {});

  const int ModalResult;
  bool Default = false;  // pressed by Enter
  bool ForAll = false;   // its answer holds for everything that is still to come
  std::function<void()> OnClick;
};

class TLCheckBox : public TLCaptioned {
 public:
  using TLCaptioned::TLCaptioned;
  bool Checked = false;
};

enum class TLIcon { Question, Warning, Information };

class TLImage : public TLControl {
 public:
  TLImage(TForm& Form, const char* Name, TLIcon Picture) : TLControl(Form, Name), Icon(Picture) {}
  const TLIcon Icon;
};

}  // namespace velkrund
