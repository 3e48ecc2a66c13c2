#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/lctrls/Form.h"

namespace velkrund {

/// A window of the host, as a number that only the host understands; 0 is none.
using TWindowHandle = std::uintptr_t;

// Flags and answers of message boxes; the numbers are those of the desktop systems' own message box.
inline constexpr std::uint32_t MB_OK = 0;
inline constexpr std::uint32_t MB_YESNOCANCEL = 3;
inline constexpr std::uint32_t MB_YESNO = 4;
inline constexpr std::uint32_t MB_ICONQUESTION = 0x20;
inline constexpr std::uint32_t MB_ICONWARNING = 0x30;
inline constexpr std::uint32_t MB_ICONINFORMATION = 0x40;
/// The second button is what goes without saying: Yes cancels, stops or drops.
inline constexpr std::uint32_t MB_DEFBUTTON2 = 0x100;
inline constexpr int IDOK = mrOk;
inline constexpr int IDCANCEL = mrCancel;
inline constexpr int IDYES = mrYes;
inline constexpr int IDNO = mrNo;

/// A message with the buttons that its flags name. One that asks yes or no is closed by an answer alone: a window that
/// is closed says neither.
class TMessageBoxForm final : public TForm {
 public:
  TMessageBoxForm(std::string_view Text, std::string_view WindowCaption, std::uint32_t Flags);
  const char* ClassName() const override { return "TMessageBoxForm"; }
  bool YesUndoes() const override { return FYesUndoes; }

 protected:
  bool CloseQuery() override { return FMayClose; }

 private:
  void AddButton(const char* Name, const char* CaptionKey, int ModalResult);

  TLImage FImage;
  TLLabel FTextLabel{*this, "TextLabel"};
  std::vector<std::unique_ptr<TLButton>> FButtons;
  bool FMayClose = true;
  const bool FYesUndoes;
};

/// Shows a message box on the main thread and returns the answer's code. Without anybody to answer a question it raises
/// EQuestionUnanswered that names it; it never guesses. May be called from any thread.
int ShowMessageBox(std::string_view Text, std::string_view Caption, std::uint32_t Flags);

}  // namespace velkrund
