#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "velkrund/operations/HookGuard.h"
#include "velkrund/platform/lctrls/MessageBox.h"

namespace velkrund {

/// Same parameters and result as uoMessageBox.
using TUtilOperationsMessageBox =
    std::function<int(TWindowHandle Window, std::u16string_view Text, std::u16string_view Caption, std::uint32_t Flags,
                      std::int32_t Extra1, std::int32_t Extra2)>;

/// Installs a host's own message box and returns the one before; an empty hook stands for the platform's. To be called
/// while no operation runs.
TUtilOperationsMessageBox SetUtilOperationsMessageBox(TUtilOperationsMessageBox Hook);
using TMessageBoxGuard = THookGuard<TUtilOperationsMessageBox, &SetUtilOperationsMessageBox>;
bool HasUtilOperationsMessageBox();

/// Asks a question that has no question object, with texts already in the user's language, and returns the answer's
/// code (platform/lctrls/MessageBox.h has flags and codes). Asked on the main thread, whatever thread calls. A hook
/// gets all six arguments unchanged; what Extra1 and Extra2 mean is between the asking operation and the hook. Raises
/// EQuestionUnanswered when nobody can answer.
int uoMessageBox(TWindowHandle Window, std::u16string_view Text, std::u16string_view Caption, std::uint32_t Flags,
                 std::int32_t Extra1, std::int32_t Extra2);

}  // namespace velkrund
