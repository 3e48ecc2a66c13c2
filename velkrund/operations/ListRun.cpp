#include "velkrund/operations/ListRun.h"

#include "velkrund/operations/GoOnQuestion.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

void AskToGoOn(const TUtilOperation& Operation, TListWords Words, const std::exception& Error) {
  const std::string Report = BaseMng().LString(Words.ErrorKey) + "\r\n" + Error.what();
  Operation.WriteLog(TTraceLevel::Info, Report);
  const std::string Question = Report + "\r\n" + BaseMng().LString(Words.ContinueKey);
  Words.YesAlone ? GoOnAtYesOrRaise(Error, Question) : GoOnOrRaise(Error, Question);
}

bool RunList(const TUtilOperation& Operation, const TStringList& Names, TListWords Words,
             const std::function<bool(const std::string& Name, int Index)>& Item,
             const std::function<void(std::exception_ptr Error)>& Failed) {
  for (int Index = 0; Index < Names.Count(); ++Index) {
    Operation.ShowProgress(Index, Names.Count(), Names[Index]);
    if (Operation.IsCanceled()) return false;
    try {
      if (!Item(Names[Index], Index)) return false;
    } catch (const EAbort&) {
      throw;
    } catch (const EQuestionUnanswered&) {
      throw;
    } catch (const std::exception& Error) {
      Failed(std::current_exception());
      AskToGoOn(Operation, Words, Error);
    }
  }
  return !Operation.IsCanceled();
}

}  // namespace velkrund
