#include "velkrund/resources/TargetSections.h"

#include "velkrund/operations/ListQuestion.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr char PathDelimiter = '/';

void DeleteFile(const std::string& FileName) {
  try {
    BaseMng().Files().Remove(FileName);
  } catch (const std::exception&) {
    std::throw_with_nested(Exception(Format(BaseMng().LString("M_Velkrund_LUtils_CanNotDeleteFile"), FileName)));
  }
}

}  // namespace

int FindTargetSection(const TEISource& Target, TEIObjectClass Class, std::string_view Parameter, std::string_view Value,
                      bool (*IsSame)(std::string_view, std::string_view)) {
  for (int Index = 0; Index < Target.Sections().Count(); ++Index) {
    const TEISection& Section = Target.Sections()[Index];
    if (!Section.ObjectClass.InheritsFrom(Class)) continue;
    const auto Known = Section.FindParam(Parameter);
    if (Known && IsSame(*Known, Value)) return Index;
  }
  return -1;
}

bool ReplacesTargetSection(TEISource& Target, int Index, TYesNoCancelAsk& Ask, const std::string& Question,
                           TUtilOperation* Sender) {
  if (Index < 0) return true;
  if (!AskOfListToEnd(Ask, Question, Sender)) return false;
  Target.DeleteSection(Index);
  return true;
}

std::string PathInFolder(std::string Folder, std::string_view FileName) {
  if (!Folder.empty() && !Folder.ends_with(PathDelimiter)) Folder += PathDelimiter;
  return Folder.append(FileName);
}

bool ReplacesFile(const std::string& FileName, TYesNoCancelAsk& Ask, const std::string& Question,
                  TUtilOperation* Sender) {
  if (!BaseMng().Files().Exists(FileName)) return true;
  const std::string AboutFile = Format(BaseMng().LString("M_Velkrund_LUtils_FileExists"), FileName);
  if (Ask.FAlwaysAsk) Ask.fAskCallbackString = AboutFile;
  if (!AskOfListToEnd(Ask, Question.empty() ? AboutFile : Question, Sender)) return false;
  DeleteFile(FileName);
  return true;
}

}  // namespace velkrund
