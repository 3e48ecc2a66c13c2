#include "velkrund/platform/ormtools/Exceptions.h"

#include <cstdlib>
#include <memory>
#include <string_view>
#include <typeinfo>

#if __has_include(<cxxabi.h>)
#include <cxxabi.h>
#define VELKRUND_DEMANGLE 1
#else
#define VELKRUND_DEMANGLE 0
#endif

namespace velkrund {
namespace {

std::string TypeName(const std::type_info& Type) {
#if VELKRUND_DEMANGLE
  int Status = 0;
  const std::unique_ptr<char, decltype(&std::free)> Name(abi::__cxa_demangle(Type.name(), nullptr, nullptr, &Status),
                                                         &std::free);
  if (Status == 0 && Name) return Name.get();
#endif
  return Type.name();
}

void AppendInfo(std::string& Out, const std::exception& Error) {
  Out += ExceptionClassName(Error);
  Out += ": ";
  Out += Error.what();
  const auto* Nested = dynamic_cast<const std::nested_exception*>(&Error);
  if (!Nested || !Nested->nested_ptr()) return;
  Out += "\r\n";
  try {
    Nested->rethrow_nested();
  } catch (const std::exception& Cause) {
    AppendInfo(Out, Cause);
  } catch (...) {
    Out += "unknown: an error that is not a std::exception";
  }
}

}  // namespace

EUnansweredError::EUnansweredError(const std::exception& Original, const std::string& WhyUnanswered)
    : Exception(std::string(Original.what()) + "\r\n" + WhyUnanswered), FClassName(ExceptionClassName(Original)) {}

std::string ExceptionClassName(const std::exception& Error) {
  if (const auto* Own = dynamic_cast<const Exception*>(&Error)) return Own->ClassName();
  std::string Name = TypeName(typeid(Error));
  // What std::throw_with_nested makes of a foreign error; its user threw the type in the brackets.
  constexpr std::string_view Wrapper = "std::_Nested_exception<";
  if (Name.starts_with(Wrapper) && Name.ends_with('>'))
    return Name.substr(Wrapper.size(), Name.size() - Wrapper.size() - 1);
  return Name;
}

std::string Kv_FullExceptionInfo(const std::exception& Error) {
  std::string Out;
  AppendInfo(Out, Error);
  return Out;
}

}  // namespace velkrund
