#include "velkrund/platform/ormtools/Exceptions.h"

#include <algorithm>
#include <cstdlib>
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

struct TClassCode {
  std::string_view ClassName;
  TErrorCode Code;
};

/// What an error is that nobody has said more about.
constexpr TClassCode ClassCodes[] = {
    {"EAbort", TErrorCode::Cancelled},
    {"EConfigurationError", TErrorCode::Configuration},
    {"EConvertError", TErrorCode::Value},
    {"EDSPError", TErrorCode::Structure},
    {"EDSPUtilError", TErrorCode::Structure},
    {"EDatabaseError", TErrorCode::Database},
    {"EDicUtilError", TErrorCode::Record},
    {"EEIError", TErrorCode::FileStructure},
    {"EFCreateError", TErrorCode::FileOpen},
    {"EFOpenError", TErrorCode::FileOpen},
    {"EPolicyUnanswered", TErrorCode::Unanswered},
    {"EPropertyError", TErrorCode::Settings},
    {"EQuestionUnanswered", TErrorCode::Unanswered},
    {"EReadError", TErrorCode::FileRead},
    {"ESettingsError", TErrorCode::Settings},
    {"EUsage", TErrorCode::Settings},
    {"EWriteError", TErrorCode::FileWrite},
};

TErrorCode CodeOfClass(std::string_view ClassName) {
  const auto* const Found = std::find_if(std::begin(ClassCodes), std::end(ClassCodes),
                                         [ClassName](const TClassCode& Known) { return Known.ClassName == ClassName; });
  return Found == std::end(ClassCodes) ? TErrorCode::Other : Found->Code;
}

/// Error is the cause unless it has one itself.
void TakeFacts(const std::exception& Error, TErrorFacts& Facts) {
  const auto* const Own = dynamic_cast<const Exception*>(&Error);
  const auto* const Nested = dynamic_cast<const std::nested_exception*>(&Error);
  if (Nested && Nested->nested_ptr()) {
    Facts.Chain.push_back(ExceptionClassName(Error).append(": ").append(Error.what()));
    try {
      Nested->rethrow_nested();
    } catch (const std::exception& Cause) {
      TakeFacts(Cause, Facts);
    } catch (...) {
      Facts.Message = "an error that is not a std::exception";
    }
  } else {
    Facts.ClassName = ExceptionClassName(Error);
    Facts.Message = Error.what();
  }
  if (Own) Facts.Info.Fill(Own->Info());
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

const TErrorInfo& Exception::Info() const noexcept {
  static const TErrorInfo Nothing;
  return FInfo ? *FInfo : Nothing;
}

void Exception::Add(const TErrorInfo& Info) {
  if (!FInfo) FInfo = std::make_shared<TErrorInfo>();
  FInfo->Fill(Info);
}

TErrorFacts FactsOf(const std::exception& Error) {
  TErrorFacts Result;
  TakeFacts(Error, Result);
  if (Result.Info.Code == TErrorCode::Other) Result.Info.Code = CodeOfClass(Result.ClassName);
  return Result;
}

TErrorFacts FactsOf(const std::exception_ptr& Error) {
  try {
    std::rethrow_exception(Error);
  } catch (const std::exception& Raised) {
    return FactsOf(Raised);
  } catch (...) {
    return {"unknown", "an error that is not a std::exception", {}, {}};
  }
}

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
