#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/module/Velkrund.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

// The border between C++ and the C functions of Velkrund.h: what is raised behind it becomes a return value, and an
// error that the host may ask for.

/// An error as hosts see it.
class TCError {
 public:
  TCError() = default;
  TCError(const TCError&) = delete;
  TCError& operator=(const TCError&) = delete;

  /// Error: null: there is none.
  void Take(const std::exception_ptr& Error);
  void Clear() noexcept { FFacts = {}; }
  /// The texts are those of this object, until it takes another error.
  VelkrundError Described();

 private:
  TErrorFacts FFacts;
  std::vector<const char*> FContext;
};

/// Forgets this thread's error.
void ClearCError() noexcept;
/// Keeps the error that is being handled as this thread's.
void KeepCError() noexcept;
/// The same for the error of a run. Text: as VelkrundLastError tells it.
void KeepCError(const std::string& Text, const std::exception_ptr& Error) noexcept;
/// This thread's error in its parts.
TCError& KeptCError() noexcept;

/// Raises EAccessViolation that says which argument is missing.
void RequireCArgument(const void* Argument, std::string_view Name);
/// Raises EAccessViolation where what a host's structure says of its size cannot be.
void RequireCSize(std::size_t Size, std::size_t Least, std::string_view Name);

/// How much of a structure every host knows: its size in the first version that had it. A structure that grows gets the
/// offset of its first new field here.
template <typename TStruct>
inline constexpr std::size_t LeastCSize = sizeof(TStruct);

/// To be called before work is done for nothing.
template <typename TStruct>
void RequireCStruct(const TStruct* Given, std::string_view Name) {
  RequireCArgument(Given, Name);
  RequireCSize(Given->Size, LeastCSize<TStruct>, Name);
}
/// What both sides know of a host's structure; the rest is as if it were left out.
template <typename TStruct>
TStruct FromCStruct(const TStruct* Given, std::string_view Name) {
  RequireCStruct(Given, Name);
  TStruct Result = {};
  std::memcpy(&Result, Given, std::min(Given->Size, sizeof(TStruct)));
  return Result;
}
/// Fills what both sides know of a host's structure, its size apart.
template <typename TStruct>
void ToCStruct(TStruct* Given, TStruct Filled) {
  Filled.Size = Given->Size;
  std::memcpy(Given, &Filled, std::min(Given->Size, sizeof(TStruct)));
}

/// The result of Action, or Failure when it raises. What was the thread's error before is still known to Action.
template <typename TResult, typename TAction>
TResult CaughtC(TResult Failure, TAction&& Action) noexcept {
  try {
    return Action();
  } catch (...) {
    KeepCError();
  }
  return Failure;
}

/// The same with a clean slate: what all C functions do but those that ask for errors.
template <typename TResult, typename TAction>
TResult GuardedC(TResult Failure, TAction&& Action) noexcept {
  ClearCError();
  return CaughtC(Failure, std::forward<TAction>(Action));
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
