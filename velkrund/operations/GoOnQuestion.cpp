#include "velkrund/operations/GoOnQuestion.h"

#include <atomic>
#include <optional>

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

std::atomic<int> Refusing = 0;

/// Raises the error where nobody can answer.
int AnswerTo(const std::exception& Error, const std::string& Question, const std::string& Caption) {
  if (Refusing > 0) return IDNO;
  std::optional<std::string> Unanswered;
  try {
    return uoMessageBox(0, ToUtf16(Question), ToUtf16(Caption), MB_YESNO, IDYES, IDNO);
  } catch (const EQuestionUnanswered& Reason) {
    Unanswered = Reason.what();
  }
  throw EUnansweredError(Error, *Unanswered);
}

}  // namespace

TNobodyGoesOn::TNobodyGoesOn() { ++Refusing; }
TNobodyGoesOn::~TNobodyGoesOn() { --Refusing; }

void GoOnOrRaise(const std::exception& Error, const std::string& Question) {
  if (AnswerTo(Error, Question, {}) == IDNO) throw;
}

void GoOnAtYesOrRaise(const std::exception& Error, const std::string& Question) {
  if (AnswerTo(Error, Question, BaseMng().LString("ST_CONFIRMATION")) != IDYES) throw;
}

}  // namespace velkrund
