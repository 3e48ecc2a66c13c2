#include "standalone/windows/terminal/Choices.h"

#include <algorithm>

#include "standalone/windows/terminal/TerminalText.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr char MnemonicMark = '&';
constexpr const char* CancelKey = "ST_CANCEL";

std::string_view CharacterAt(std::string_view Text, std::size_t At) {
  std::size_t Next = At;
  NextCodePoint(Text, Next);
  return Text.substr(At, Next - At);
}

std::string_view NameOf(const TChoices::TChoice& Choice) {
  return Choice.Button ? Choice.Button->Name() : std::string_view("CancelButton");
}

bool IsLetter(std::string_view Character) {
  return Character.size() > 1 || (Character >= "a" && Character <= "z") || (Character >= "0" && Character <= "9");
}

}  // namespace

TChoices::TChoices(const TForm& Form, TIsName IsName) : FIsName(std::move(IsName)) {
  bool CanCancel = false;
  for (TLButton* Button : Form.VisibleControls<TLButton>()) {
    Add({Button, nullptr, {}, {}}, Button->Caption());
    CanCancel = CanCancel || Button->CaptionKey() == CancelKey;
  }
  for (TLCheckBox* CheckBox : Form.VisibleControls<TLCheckBox>()) Add({nullptr, CheckBox, {}, {}}, CheckBox->Caption());
  if (!CanCancel) Add({}, BaseMng().LString(CancelKey));
}

bool TChoices::Taken(std::string_view Letter) const {
  if (FIsName && FIsName(Letter)) return true;
  return std::any_of(FChoices.begin(), FChoices.end(), [&](const TChoice& Other) { return Other.Letter == Letter; });
}

/// The marked letter when it is free, else the first free one of the caption, else a number.
void TChoices::Add(TChoice Choice, std::string_view Caption) {
  std::string Lower = LowerCase(Printable(Caption));
  const std::size_t Mark = Lower.find(MnemonicMark);
  if (Mark != std::string::npos) Lower.erase(Mark, 1);
  Choice.At = std::string::npos;
  const auto Take = [&](std::size_t At) {
    const std::string_view Letter = CharacterAt(Lower, At);
    if (!IsLetter(Letter) || Taken(Letter)) return false;
    Choice.At = At;
    Choice.Letter = Letter;
    return true;
  };
  bool Found = Mark < Lower.size() && Take(Mark);
  for (std::size_t At = 0; !Found && At < Lower.size(); At += CharacterAt(Lower, At).size()) Found = Take(At);
  for (std::size_t Number = FChoices.size() + 1; !Found && Choice.Letter.empty(); ++Number)
    if (!Taken(std::to_string(Number))) Choice.Letter = std::to_string(Number);
  Choice.Caption = std::move(Lower);
  FChoices.push_back(std::move(Choice));
}

std::string TChoices::Line() const {
  std::string Result;
  for (const TChoice& Choice : FChoices) {
    const bool ForAll = Choice.Button && Choice.Button->ForAll;
    const std::string Marked = "[" + (ForAll ? UpperCase(Choice.Letter) : Choice.Letter) + "]";
    std::string Shown = Choice.Caption;
    if (Choice.At == std::string::npos)
      Shown.insert(0, Marked);
    else
      Shown.replace(Choice.At, Choice.Letter.size(), Marked);
    if (Choice.CheckBox) Shown.insert(0, Choice.CheckBox->Checked ? "(x) " : "( ) ");
    Result += " " + Shown;
  }
  return Result;
}

std::string TChoices::Hints() const {
  std::string Result;
  for (const TChoice& Choice : FChoices) {
    const TLCaptioned* Control = Choice.Button;
    if (Choice.CheckBox) Control = Choice.CheckBox;
    const std::string Hint = Control ? Control->Hint() : std::string();
    if (!Hint.empty()) Result += "  " + Choice.Caption + ": " + Printable(Hint) + "\n";
  }
  return Result;
}

bool TChoices::HasLetter(std::string_view Typed) const {
  const std::string Lower = LowerCase(Typed);
  return std::any_of(FChoices.begin(), FChoices.end(), [&](const TChoice& Choice) { return Choice.Letter == Lower; });
}

const TChoices::TChoice* TChoices::Find(std::string_view Typed) const {
  const std::string Lower = LowerCase(Typed);
  for (const TChoice& Choice : FChoices)
    if (Choice.Letter == Lower || Choice.Caption == Lower) return &Choice;
  // Whoever has a Latin keyboard under another language: the beginning of the button's name.
  for (const TChoice& Choice : FChoices)
    if (!Choice.CheckBox && !Lower.empty() && LowerCase(NameOf(Choice)).starts_with(Lower)) return &Choice;
  return nullptr;
}

}  // namespace velkrund
