#include "velkrund/module/CGuard.h"

#include <atomic>
#include <string>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

#define VELKRUND_TEXT_OF(Number) #Number
#define VELKRUND_JOINED(Major, Minor, Patch) \
  VELKRUND_TEXT_OF(Major) "." VELKRUND_TEXT_OF(Minor) "." VELKRUND_TEXT_OF(Patch)
constexpr std::string_view NumbersOfHeader =
    VELKRUND_JOINED(VELKRUND_VERSION_MAJOR, VELKRUND_VERSION_MINOR, VELKRUND_VERSION_PATCH);
static_assert(NumbersOfHeader == VELKRUND_PROJECT_VERSION && NumbersOfHeader == VELKRUND_VERSION,
              "velkrund/module/Velkrund.h has to say the version of CMakeLists.txt");

// More than any structure will ever have: a size beyond is what somebody forgot to set.
constexpr std::size_t MostCSize = 4096;

struct TKeptError {
  std::string Text;
  TCError Error;
};
thread_local TKeptError Kept;
std::atomic<int> Handles = 0;

std::string TextOf(const std::exception_ptr& Error) {
  try {
    std::rethrow_exception(Error);
  } catch (const std::exception& Raised) {
    return ExceptionClassName(Raised) + ":" + Raised.what();
  } catch (...) {
    return "unknown:A callback raised something that is no error";
  }
}

}  // namespace

void TCError::Take(const std::exception_ptr& Error) { FFacts = Error ? FactsOf(Error) : TErrorFacts(); }

VelkrundError TCError::Described() {
  const TErrorInfo& Info = FFacts.Info;
  const bool IsError = !FFacts.ClassName.empty();
  FContext.clear();
  for (const std::string& Text : FFacts.Chain) FContext.push_back(Text.c_str());
  VelkrundError Result = VELKRUND_ERROR_INIT;
  Result.Class = FFacts.ClassName.c_str();
  Result.Message = FFacts.Message.c_str();
  Result.Code = IsError ? ErrorCodeText(Info.Code).data() : "";  // a literal
  Result.File = Info.File.c_str();
  Result.Line = Info.Line;
  Result.Section = Info.Section.c_str();
  Result.Table = Info.Table.c_str();
  Result.Column = Info.Column.c_str();
  Result.Record = Info.Record;
  Result.Value = Info.Value.c_str();
  Result.Database = Info.Database.c_str();
  Result.EngineCode = Info.EngineCode.c_str();
  Result.Statement = Info.Statement.c_str();
  Result.Context = FContext.data();
  Result.ContextCount = FContext.size();
  return Result;
}

void ClearCError() noexcept {
  Kept.Text.clear();
  Kept.Error.Clear();
}

void KeepCError(const std::string& Text, const std::exception_ptr& Error) noexcept {
  ClearCError();
  try {
    Kept.Text = Text;
    Kept.Error.Take(Error);
  } catch (const std::exception&) {
    Kept.Text = "std::bad_alloc";  // short enough to need no memory
  }
}

void KeepCError() noexcept {
  const std::exception_ptr Error = std::current_exception();
  try {
    KeepCError(TextOf(Error), Error);
  } catch (const std::exception&) {
    Kept.Text = "std::bad_alloc";
  }
}

TCError& KeptCError() noexcept { return Kept.Error; }

void RequireCArgument(const void* Argument, std::string_view Name) {
  if (!Argument) throw EAccessViolation(Format("The argument %s is NULL", Name));
}

void RequireCSize(std::size_t Size, std::size_t Least, std::string_view Name) {
  if (Size < Least || Size > MostCSize)
    throw EAccessViolation(Format("The field Size of %s is %d, and has to be what sizeof says", Name, Size));
}

TCHandleCount::TCHandleCount() noexcept { ++Handles; }
TCHandleCount::~TCHandleCount() { --Handles; }
int TCHandleCount::Count() noexcept { return Handles; }

}  // namespace velkrund

const char* VelkrundLastError() { return velkrund::Kept.Text.c_str(); }

const char* VelkrundVersion() { return VELKRUND_VERSION; }
