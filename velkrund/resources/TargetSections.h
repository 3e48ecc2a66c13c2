#pragma once

#include <string>
#include <string_view>

#include "velkrund/eif/EISource.h"
#include "velkrund/operations/AskObjects.h"

namespace velkrund {

/// What a section that is to be written will replace in its target: the first one of that class, or of one that
/// derives from it, whose header parameter has that value, as IsSame compares. -1: none.
int FindTargetSection(const TEISource& Target, TEIObjectClass Class, std::string_view Parameter, std::string_view Value,
                      bool (*IsSame)(std::string_view, std::string_view));

/// Takes the section at Index out of the target, when the answer allows it; true when it is gone, or Index is -1.
/// Question: asked about it.
bool ReplacesTargetSection(TEISource& Target, int Index, TYesNoCancelAsk& Ask, const std::string& Question,
                           TUtilOperation* Sender);

/// The path of a file in a folder.
std::string PathInFolder(std::string Folder, std::string_view FileName);

/// Makes way for a new file, when the answer allows it: an existing one is deleted. False: it stays. Question: asked
/// about it; where it is empty, whether the file may be replaced.
bool ReplacesFile(const std::string& FileName, TYesNoCancelAsk& Ask, const std::string& Question,
                  TUtilOperation* Sender);

}  // namespace velkrund
