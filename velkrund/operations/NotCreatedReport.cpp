#include "velkrund/operations/NotCreatedReport.h"

#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

constexpr std::size_t MaxNamesLength = 500;

}  // namespace

std::string NamesInReport(const std::vector<std::string>& Names) {
  std::string Result;
  for (const std::string& Name : Names) {
    Result += Name + ";";
    if (Result.size() > MaxNamesLength && Utf16Length(Result) > MaxNamesLength) return Result + " more...";
  }
  return Result;
}

std::string NotCreatedReport(const std::vector<std::string>& Names, const std::string& LastError) {
  return BaseMng().LString("M_Velkrund_DicUtils_NotCreated_ObjectsInfo") + "\r\n" + NamesInReport(Names) +
         "\r\nLast Error: " + LastError;
}

void ShowNotCreated(const std::string& Report) {
  uoMessageBox(0, ToUtf16(Report), {}, MB_OK | MB_ICONINFORMATION, 0, 0);
}

}  // namespace velkrund
