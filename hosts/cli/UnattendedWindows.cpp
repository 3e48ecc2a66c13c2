#include "hosts/cli/UnattendedWindows.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

std::string UnansweredText(std::string_view Stakes, std::string_view Options) {
  return Format("%s Give %s; there is no terminal to ask", Stakes, Options);
}

EQuestionUnanswered UnshownError(const TForm& Form) {
  std::string Stakes;
  for (const char C : Form.Message()) Stakes += C == '\n' ? ". " : std::string(1, C);
  return EQuestionUnanswered(UnansweredText(Stakes + ".", "--target TABLE and --map FILEFIELD=TABLEFIELD"));
}

int TUnattendedWindows::ShowModal(TForm& Form) {
  if (!Form.VisibleControls<TLComboBox>().empty()) throw UnshownError(Form);
  const bool IsBox = Form.ClassName() == std::string_view("TMessageBoxForm");
  if (Form.YesUndoes()) throw EQuestionUnanswered(Format("%s There is no terminal to ask", Form.Message()));
  if (Form.IsQuestion())
    throw EQuestionUnanswered(UnansweredText(Form.Message(), IsBox ? "--yes" : "--overwrite yes or --overwrite no"));
  FTell(Form.Message());
  return mrOk;
}

}  // namespace velkrund
