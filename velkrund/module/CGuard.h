#pragma once

#include <exception>
#include <string_view>

namespace velkrund {

// The border between C++ and the C functions of Velkrund.h: what is raised behind it becomes a return value and a text.

/// Makes this thread's error text empty.
void ClearCError() noexcept;
/// Keeps an error, or a text as it is, for VelkrundLastError.
void KeepCError(const std::exception& Error) noexcept;
void KeepCError(std::string_view Text) noexcept;

/// Raises EAccessViolation that says which argument is missing.
void RequireCArgument(const void* Argument, std::string_view Name);

/// The result of Action, or Failure when it raises.
template <typename TResult, typename TAction>
TResult GuardedC(TResult Failure, TAction&& Action) noexcept {
  ClearCError();
  try {
    return Action();
  } catch (const std::exception& Error) {
    KeepCError(Error);
  } catch (...) {
    KeepCError("unknown:A callback raised something that is no error");
  }
  return Failure;
}

/// Handles of operations and files that hosts have not given back yet.
class TCHandleCount {
 public:
  TCHandleCount() noexcept;
  TCHandleCount(const TCHandleCount&) = delete;
  TCHandleCount& operator=(const TCHandleCount&) = delete;
  ~TCHandleCount();
  static int Count() noexcept;
};

}  // namespace velkrund
