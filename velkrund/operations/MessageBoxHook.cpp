#include "velkrund/operations/MessageBoxHook.h"

#include <utility>

#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

TUtilOperationsMessageBox InstalledHook;

}  // namespace

TUtilOperationsMessageBox SetUtilOperationsMessageBox(TUtilOperationsMessageBox Hook) {
  return std::exchange(InstalledHook, std::move(Hook));
}

bool HasUtilOperationsMessageBox() { return static_cast<bool>(InstalledHook); }

int uoMessageBox(TWindowHandle Window, std::u16string_view Text, std::u16string_view Caption, std::uint32_t Flags,
                 std::int32_t Extra1, std::int32_t Extra2) {
  if (!InstalledHook) return ShowMessageBox(FromUtf16(Text), FromUtf16(Caption), Flags);
  int Result = 0;
  Synchronize([&] { Result = InstalledHook(Window, Text, Caption, Flags, Extra1, Extra2); });
  return Result;
}

}  // namespace velkrund
