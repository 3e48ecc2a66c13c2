#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include "velkrund/operations/UtilOperation.h"
#include "velkrund/platform/ormtools/StringLists.h"

namespace velkrund {

/// The texts of the question after the error of one thing of a list: what it was, and whether to go on.
struct TListWords {
  std::string_view ErrorKey, ContinueKey;
  bool YesAlone = false;  // goes on; otherwise every answer but no
};

/// Within the handler of Error: traces it, and returns when a person wants to go on without what has failed; otherwise
/// raises it.
void AskToGoOn(const TUtilOperation& Operation, TListWords Words, const std::exception& Error);

/// The things of a list, one after the other, with the progress of Operation. Item: false ends the list. After the
/// error of an item Failed is told, then a person asked whether to go on with the next one; No raises the error.
/// EAbort and EQuestionUnanswered always do. False: cancelled, or ended by an item.
bool RunList(const TUtilOperation& Operation, const TStringList& Names, TListWords Words,
             const std::function<bool(const std::string& Name, int Index)>& Item,
             const std::function<void(std::exception_ptr Error)>& Failed);

}  // namespace velkrund
