#pragma once

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "velkrund/platform/ormtools/ErrorInfo.h"

namespace velkrund {

/// The general error: a message for people, the name of its class for logs and scripts, and what is known of its place
/// and cause as data. Every error that the module raises derives from it. Messages are UTF-8.
class Exception : public std::runtime_error {
 public:
  explicit Exception(const std::string& Message) : std::runtime_error(Message) {}
  Exception(const std::string& Message, TErrorInfo Info)
      : std::runtime_error(Message), FInfo(std::make_shared<TErrorInfo>(std::move(Info))) {}
  virtual const char* ClassName() const noexcept { return "Exception"; }

  const TErrorInfo& Info() const noexcept;
  /// For handlers that know more than who raised it: adds what is not known yet, then they raise it on.
  void Add(const TErrorInfo& Info);

 private:
  std::shared_ptr<TErrorInfo> FInfo;  // null: nothing is known. Shared by copies, so that copying cannot fail
};

/// Defines an error class that adds only a name to its base.
#define VELKRUND_EXCEPTION(Name, Base)                                \
  class Name : public Base {                                          \
   public:                                                            \
    using Base::Base;                                                 \
    const char* ClassName() const noexcept override { return #Name; } \
  }

/// A text that is no number, date or amount where one was needed.
VELKRUND_EXCEPTION(EConvertError, Exception);
/// Something that had to be set is not; raised instead of following an empty reference.
VELKRUND_EXCEPTION(EAccessViolation, Exception);
/// The user's wish to stop, on its way out. Passes through every handler that goes on with the next item.
VELKRUND_EXCEPTION(EAbort, Exception);
/// A question that nobody can answer; the message names the option that would. Passes through every handler that goes
/// on with the next item.
VELKRUND_EXCEPTION(EQuestionUnanswered, Exception);
/// An index outside a list.
VELKRUND_EXCEPTION(EListError, Exception);
/// A failed stream operation; the classes below say which.
VELKRUND_EXCEPTION(EStreamError, Exception);
/// A file that cannot be opened: missing, no rights, in use.
VELKRUND_EXCEPTION(EFOpenError, EStreamError);
/// A file that cannot be created.
VELKRUND_EXCEPTION(EFCreateError, EStreamError);
VELKRUND_EXCEPTION(EReadError, EStreamError);
/// A failed write, size change or sync, a full disk included.
VELKRUND_EXCEPTION(EWriteError, EStreamError);
/// An error of a database or its driver.
VELKRUND_EXCEPTION(EDatabaseError, Exception);

/// An error after which a person should have been asked whether to go on, and nobody could be: its message, then that
/// of the question. It goes by the name of the original error, which is nested inside. To be made while the original is
/// being handled.
class EUnansweredError : public Exception, public std::nested_exception {
 public:
  EUnansweredError(const std::exception& Original, const std::string& WhyUnanswered);
  const char* ClassName() const noexcept override { return FClassName.c_str(); }

 private:
  std::string FClassName;
};

/// An error in all its parts, for reports.
struct TErrorFacts {
  std::string ClassName;           // of the innermost cause, as Message
  std::string Message;             // the innermost cause's, unchanged
  TErrorInfo Info;                 // of the whole chain; what is known further in counts, and the code is never unknown
  std::vector<std::string> Chain;  // class, ": " and message of what wraps the cause, outermost first; mostly empty

  /// "Class:message", as operations tell it.
  std::string Text() const { return ClassName + ":" + Message; }
};
TErrorFacts FactsOf(const std::exception& Error);
/// Error: not null.
TErrorFacts FactsOf(const std::exception_ptr& Error);

/// The class name of Error; that of a foreign error is the type's own.
std::string ExceptionClassName(const std::exception& Error);

/// Class name, ": " and message of Error, then one such line (carriage return + line feed between them) for every
/// nested cause, outermost first.
std::string Kv_FullExceptionInfo(const std::exception& Error);

}  // namespace velkrund
