#include "velkrund/operations/GoOnQuestion.h"

#include <optional>

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void GoOnOrRaise(const std::exception& Error, const std::string& Question) {
  int Answer = IDNO;
  std::optional<std::string> Unanswered;
  try {
    Answer = uoMessageBox(0, ToUtf16(Question), {}, MB_YESNO, IDYES, IDNO);
  } catch (const EQuestionUnanswered& Reason) {
    Unanswered = Reason.what();
  }
  if (Unanswered) throw EUnansweredError(Error, *Unanswered);
  if (Answer == IDNO) throw;
}

}  // namespace velkrund
