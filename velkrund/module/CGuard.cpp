#include "velkrund/module/CGuard.h"

#include <atomic>
#include <string>

#include "velkrund/module/Velkrund.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

thread_local std::string LastCError;
std::atomic<int> Handles = 0;

}  // namespace

void ClearCError() noexcept { LastCError.clear(); }

void KeepCError(std::string_view Text) noexcept {
  try {
    LastCError = Text;
  } catch (const std::exception&) {
    LastCError.clear();  // no memory left even to say so; the return value still tells of a failure
  }
}

void KeepCError(const std::exception& Error) noexcept {
  try {
    KeepCError(ExceptionClassName(Error) + ":" + Error.what());
  } catch (const std::exception&) {
    KeepCError("std::bad_alloc");  // short enough to need no memory
  }
}

void RequireCArgument(const void* Argument, std::string_view Name) {
  if (!Argument) throw EAccessViolation(Format("The argument %s is NULL", Name));
}

TCHandleCount::TCHandleCount() noexcept { ++Handles; }
TCHandleCount::~TCHandleCount() { --Handles; }
int TCHandleCount::Count() noexcept { return Handles; }

}  // namespace velkrund

const char* VelkrundLastError() { return velkrund::LastCError.c_str(); }
