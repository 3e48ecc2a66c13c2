#pragma once

#include <string>

#include "velkrund/operations/AskObjects.h"

namespace velkrund {

// The answer about one thing of a list: that of the question object when it is not to ask, else that of its callback
// or, without one, of a dialog on the main thread, whose answers for all are kept in the object. FCancel is set when
// the whole list is to end. Sender: for the callback. False: the thing stays as it is.

bool AskOfList(TYesNoCancelAsk& Ask, const std::string& Text, TUtilOperation* Sender);
/// By a dialog without a button that cancels: every code but yes, no and yes to all is no to all. Only a callback, or
/// whoever owns the object, sets FCancel then, and it stays set.
bool AskOfListToEnd(TYesNoCancelAsk& Ask, const std::string& Text, TUtilOperation* Sender);

}  // namespace velkrund
