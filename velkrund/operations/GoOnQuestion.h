#pragma once

#include <exception>
#include <string>

namespace velkrund {

/// To be called within the handler of Error. Asks in a message box whether to go on without what has failed, and
/// returns when that is wanted; otherwise raises Error again, where nobody can be asked with the reason.
void GoOnOrRaise(const std::exception& Error, const std::string& Question);

}  // namespace velkrund
