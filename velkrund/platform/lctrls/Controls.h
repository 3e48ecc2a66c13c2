#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velkrund {

class TForm;

/// One thing that a form shows. A member of its form, which lists it in the order of declaration, or made and freed
/// while the form lives; never moved. Texts that are keys are looked up in the user's language when they are shown.
class TLControl {
 public:
  TLControl(TForm& Form, std::string Name);
  TLControl(const TLControl&) = delete;
  TLControl& operator=(const TLControl&) = delete;
  virtual ~TLControl();

  /// The component's name, such as "YesButton"; for scripts and tests.
  std::string_view Name() const { return FName; }

  bool Visible = true;

 private:
  TForm& FForm;
  const std::string FName;
};

/// A text, already in the user's language.
class TLLabel : public TLControl {
 public:
  using TLControl::TLControl;
  std::string Caption;
};

/// A caption that is no key, and marks no letter: the name of a field.
struct TLPlainText {
  std::string Text;
};

/// A control whose caption and hint are keys. Captions mark the letter that picks them with "&".
class TLCaptioned : public TLControl {
 public:
  TLCaptioned(TForm& Form, std::string Name, std::string CaptionKey, std::string HintKey = {});
  TLCaptioned(TForm& Form, std::string Name, TLPlainText Caption);

  /// Empty where the caption is a plain text.
  const std::string& CaptionKey() const { return FCaptionKey; }
  std::string Caption() const;
  /// Empty when there is none.
  std::string Hint() const;

 private:
  std::string FCaptionKey, FHintKey, FPlainText;
};

/// Closes its form with its result code, unless that is 0; before that its handler runs.
class TLButton : public TLCaptioned {
 public:
  TLButton(TForm& Form, std::string Name, std::string CaptionKey, int ResultCode = 0, std::string HintKey = {});

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

/// One item of a list, or none.
class TLComboBox : public TLCaptioned {
 public:
  using TLCaptioned::TLCaptioned;
  using TItems = std::vector<std::string>;

  const TItems& Items() const { return *FItems; }
  /// Then none is chosen. Shared by the boxes that offer the same.
  void SetItems(std::shared_ptr<const TItems> Items);

  /// -1: none.
  int ItemIndex() const { return FItemIndex; }
  /// The chosen item; empty when there is none.
  const std::string& Chosen() const;
  /// Index: of an item, or -1; raises EListError outside. The handler runs when it is another one than before.
  void Choose(int Index);

  std::function<void()> OnChange;  // may make and free other controls of the form

 private:
  std::shared_ptr<const TItems> FItems = std::make_shared<TItems>();
  int FItemIndex = -1;
};

enum class TLIcon { Question, Warning, Information };

class TLImage : public TLControl {
 public:
  TLImage(TForm& Form, std::string Name, TLIcon Picture) : TLControl(Form, std::move(Name)), Icon(Picture) {}
  const TLIcon Icon;
};

}  // namespace velkrund
