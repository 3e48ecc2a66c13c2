#include "standalone/windows/scripted/ScriptedWindows.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

template <typename TControl>
TControl& Named(const TForm& Form, const std::string& Name) {
  for (TControl* Control : Form.VisibleControls<TControl>())
    if (Control->Name() == Name) return *Control;
  throw Exception(Format("%s has no '%s' to answer the question: %s", Form.ClassName(), Name, Form.Message()));
}

}  // namespace

int TScriptedWindows::ShowModal(TForm& Form) {
  // A message is no question: it uses no answer up.
  if (Form.IsQuestion()) {
    const auto Standing = FAlways.find(Form.ClassName());
    if (Standing != FAlways.end() && !Form.YesUndoes()) return AnswerWith(Form, Standing->second);
    if (!FOnce.empty()) {
      const TScriptedAnswer Answer = std::move(FOnce.front());
      FOnce.pop_front();
      return AnswerWith(Form, Answer);
    }
  }
  return (FNext ? *FNext : NobodyAtTheScreen()).ShowModal(Form);
}

int TScriptedWindows::AnswerWith(TForm& Form, const TScriptedAnswer& Answer) {
  // One after the other: to choose can make other boxes.
  for (const auto& [Name, Item] : Answer.Chosen) {
    TLComboBox& Box = Named<TLComboBox>(Form, Name);
    const auto Found = std::find(Box.Items().begin(), Box.Items().end(), Item);
    if (Found == Box.Items().end() && !Item.empty())
      throw Exception(Format("'%s' of %s does not offer '%s'", Name, Form.ClassName(), Item));
    Box.Choose(Found == Box.Items().end() ? -1 : static_cast<int>(Found - Box.Items().begin()));
  }
  for (const std::string& Name : Answer.Checked) Named<TLCheckBox>(Form, Name).Checked = true;
  if (Answer.Button.empty())
    Form.RequestClose();
  else
    Form.Click(Named<TLButton>(Form, Answer.Button));
  if (Form.ModalResult() == mrNone)
    throw Exception(Format("%s stays open %s: %s", Form.ClassName(),
                           Answer.Button.empty() ? "until a button is pressed" : "after '" + Answer.Button + "'",
                           Form.Message()));
  FAnswered.push_back(Form.Message());
  return Form.ModalResult();
}

void TScriptedWindows::Synchronize(const std::function<void()>& Action) {
  if (FNext)
    FNext->Synchronize(Action);
  else
    TWindowSystem::Synchronize(Action);
}

}  // namespace velkrund
