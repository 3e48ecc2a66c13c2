#include "standalone/windows/terminal/ComboLines.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "standalone/windows/terminal/TerminalText.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

// What a search answers besides positions.
constexpr int None = -1, Several = -2;

constexpr int WidestName = 32;  // columns; longer ones push what follows
constexpr std::string_view Arrow = "  <- ";

template <typename... T>
std::string Text(const char* Key, const T&... Arguments) {
  return Format(BaseMng().LString(Key), Arguments...);
}

/// Captions in front of a box end in a colon.
std::string NameOf(const TLComboBox& Box) {
  std::string Result = Box.Caption();
  if (!Box.CaptionKey().empty()) {
    std::erase(Result, '&');
    if (Result.ends_with(':')) Result.pop_back();
  }
  return OnOneLine(Result);
}

std::vector<std::string> Shown(const std::vector<std::string>& Names) {
  std::vector<std::string> Result;
  for (const std::string& Name : Names) Result.push_back(OnOneLine(Name));
  return Result;
}

/// The only name that Typed stands for: as it is, else ignoring case and the blanks around it.
int Find(const std::vector<std::string>& Names, std::string_view Typed) {
  const auto Only = [&](const auto& Is) {
    int Result = None;
    for (std::size_t I = 0; I < Names.size(); ++I)
      if (Is(Names[I])) Result = Result == None ? static_cast<int>(I) : Several;
    return Result;
  };
  const int Exact = Only([&](const std::string& Name) { return Name == Typed; });
  return Exact != None ? Exact : Only([&](const std::string& Name) { return SameText(Trim(Name), Trim(Typed)); });
}

std::string Padded(const std::string& Text, int Width) {
  return Text + std::string(static_cast<std::size_t>(std::max(0, Width - DisplayWidth(Text))), ' ');
}

int Widest(const std::vector<std::string>& Texts) {
  int Result = 0;
  for (const std::string& Text : Texts) Result = std::max(Result, DisplayWidth(Text));
  return Result;
}

std::string InColumns(const std::vector<std::string>& Items, int Width) {
  const int Column = Widest(Items) + 2;
  const std::size_t InLine = static_cast<std::size_t>(std::max(1, (Width - 2) / Column));
  std::string Result;
  for (std::size_t I = 0; I < Items.size(); ++I) {
    const bool EndsLine = I % InLine == InLine - 1 || I + 1 == Items.size();
    Result += (I % InLine == 0 ? "  " : "") + (EndsLine ? Items[I] + "\n" : Padded(Items[I], Column));
  }
  return Result;
}

std::string WithHint(std::string Message, std::string_view Typed, const std::vector<std::string>& Known) {
  const std::string Meant = Nearest(Typed, Known);
  if (!Meant.empty()) Message += ". " + Text("M_Velkrund_Terminal_DidYouMean", Meant);
  return Message + "\n";
}

}  // namespace

TComboLines::TComboLines(const TForm& Form) : FForm(Form), FBoxes(Form.VisibleControls<TLComboBox>()) {
  for (const TLComboBox* Box : FBoxes) FNames.push_back(NameOf(*Box));
}

std::vector<std::string> TComboLines::Lines() const {
  const int NameWidth = std::min(Widest(FNames), WidestName);
  const std::size_t Digits = std::to_string(FBoxes.size()).size();
  std::vector<std::string> Result;
  std::size_t At = 0;
  for (TLControl* Control : FForm.Controls()) {
    if (!Control->Visible) continue;
    if (const auto* Label = dynamic_cast<const TLLabel*>(Control); Label && !Label->Caption.empty())
      Result.push_back(Printable(WithShortLines(Label->Caption)));
    if (const auto* Box = dynamic_cast<const TLComboBox*>(Control)) {
      const std::string Number = std::to_string(At + 1), &Name = FNames[At];
      const bool Chosen = Box->ItemIndex() >= 0;
      Result.push_back("  " + std::string(Digits - Number.size(), ' ') + Number + "  " +
                       (Chosen ? Padded(Name, NameWidth) + std::string(Arrow) + OnOneLine(Box->Chosen()) : Name));
      ++At;
    }
  }
  return Result;
}

int TComboLines::FindBox(std::string_view Typed) const {
  std::size_t Number = 0;
  const auto [End, Error] = std::from_chars(Typed.data(), Typed.data() + Typed.size(), Number);
  const bool IsNumber = Error == std::errc() && End == Typed.data() + Typed.size();
  if (IsNumber && Number >= 1 && Number <= FBoxes.size()) return static_cast<int>(Number) - 1;
  return Find(FNames, Typed);
}

bool TComboLines::HasName(std::string_view Typed) const { return FindBox(Typed) != None; }

/// What Typed can mean, cut at each "=" in turn: names may have one too.
std::vector<TComboLines::TOrder> TComboLines::OrdersIn(std::string_view Typed) const {
  std::vector<TOrder> Result;
  for (std::size_t At = Typed.find('='); At != std::string_view::npos; At = Typed.find('=', At + 1)) {
    const std::string_view Name = TrimRight(Typed.substr(0, At));
    const int Box = FindBox(Name);
    if (Box == None) continue;
    Result.push_back({Box, Trim(Typed.substr(At + 1))});
    // The number of a box; nothing else is looked for.
    if (Box >= 0 && Find({FNames[static_cast<std::size_t>(Box)]}, Name) == None) return {Result.back()};
  }
  return Result;
}

std::optional<std::string> TComboLines::Obey(std::string_view Typed, int Width) const {
  std::vector<TOrder> Orders = OrdersIn(Typed);
  if (Orders.empty()) {
    const int Box = FindBox(Typed);
    if (Box == Several) return Text("M_Velkrund_Terminal_Several", Typed) + "\n";
    if (Box != None) return Values(Box, Width);
    if (Typed.find('=') == std::string_view::npos) return std::nullopt;
    return Unknown(TrimRight(Typed.substr(0, Typed.find('='))));
  }
  const TOrder First = Orders.front();
  if (Orders.size() > 1)
    std::erase_if(Orders, [&](const TOrder& Order) {
      return Order.Box < 0 || (!Order.Value.empty() &&
                               Find(Shown(FBoxes[static_cast<std::size_t>(Order.Box)]->Items()), Order.Value) == None);
    });
  if (Orders.size() > 1 || (Orders.empty() ? First : Orders.front()).Box == Several)
    return Text("M_Velkrund_Terminal_Several", Typed) + "\n";
  return Choose(Orders.empty() ? First : Orders.front());
}

std::string TComboLines::Choose(const TOrder& Order) const {
  TLComboBox& Box = *FBoxes[static_cast<std::size_t>(Order.Box)];
  const std::vector<std::string> Items = Shown(Box.Items());
  const int Item = Order.Value.empty() ? None : Find(Items, Order.Value);
  if (Item == Several) return Text("M_Velkrund_Terminal_Several", Order.Value) + "\n";
  if (Item == None && !Order.Value.empty())
    return WithHint(Text("M_Velkrund_Terminal_NoSuchValue", FNames[static_cast<std::size_t>(Order.Box)], Order.Value),
                    Order.Value, Items);
  Box.Choose(Item);
  return {};
}

std::string TComboLines::Values(int Box, int Width) const {
  const std::vector<std::string> Items = Shown(FBoxes[static_cast<std::size_t>(Box)]->Items());
  const std::string& Name = FNames[static_cast<std::size_t>(Box)];
  if (Items.empty()) return Text("M_Velkrund_Terminal_NoValues", Name) + "\n";
  return Name + ":\n" + InColumns(Items, Width);
}

std::string TComboLines::Unknown(std::string_view Typed) const {
  return WithHint(Text("M_Velkrund_Terminal_NoSuchEntry", Typed), Typed, FNames);
}

std::string TFormText::Whole(const TForm& Form) {
  const TComboLines Boxes(Form);
  if (Boxes.Empty()) return Printable(WithShortLines(Form.Message())) + "\n";
  FLines.clear();
  return Again(Form, 0) + Text("M_Velkrund_Terminal_HowToChoose") + "\n";
}

std::string TFormText::Again(const TForm& Form, int Height) {
  const TComboLines Boxes(Form);
  if (Boxes.Empty()) return {};
  std::vector<std::string> Lines = Boxes.Lines();
  const bool Fits = static_cast<int>(Lines.size()) < Height;
  const std::set<std::string> Before(FLines.begin(), FLines.end());
  std::string Result;
  for (const std::string& Line : Lines)
    if (Fits || !Before.contains(Line)) Result += Line + "\n";
  FLines = std::move(Lines);
  return Result;
}

}  // namespace velkrund
