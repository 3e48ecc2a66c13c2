#pragma once

#include <functional>
#include <string>

namespace velkrund {

/// Reads the next line of answers from a descriptor, a byte at a time, so that what follows it is left to others; of a
/// very long one, which is no answer, the beginning. Polls Idle while it waits. False: nothing will come any more, or
/// Canceled answers true; Line has what came of a line without an end.
bool ReadAnswerLine(int Input, std::string& Line, const std::function<bool()>& Canceled,
                    const std::function<void()>& Idle = {});

}  // namespace velkrund
