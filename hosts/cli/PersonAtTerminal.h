#pragma once

#include <memory>

#include "hosts/cli/render/Console.h"
#include "velkrund/platform/lctrls/WindowSystem.h"

namespace velkrund {

/// The person who can be asked: at the terminal where questions are seen and answers come from, or the program that
/// hears of events; null when there is none. InputIsData: standard input is not for answers; the controlling terminal
/// is asked instead, if there is one. Console: borrowed.
std::unique_ptr<TWindowSystem> FindPerson(TConsole& Console, bool InputIsData);

}  // namespace velkrund
