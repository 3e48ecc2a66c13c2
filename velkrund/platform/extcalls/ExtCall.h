#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velkrund {

/// Types of the parameters and results of script functions. The numbers are the script language's own.
enum class TExtCallType : int { String = 1, Integer = 2, Boolean = 6 };

/// How a function is called. The module calls functions of a module by name.
enum class TExtCallKind : int { ModuleFunction = 3 };

/// A caller of one script ("BLL") function at a time: name it, read its definition, set its arguments, run it, read the
/// result. Used by one thread at a time.
class TExtCall {
 public:
  virtual ~TExtCall() = default;

  virtual void SetModule(std::string_view Name) = 0;
  virtual void SetFunction(std::string_view Name) = 0;
  virtual void SetCallKind(TExtCallKind Kind) = 0;
  /// Looks the function up; false when module or function cannot be found or read.
  virtual bool ReadBLLFunction() = 0;

  // Known after ReadBLLFunction. Indexes count from 0.
  virtual int ParamCount() const = 0;
  virtual int ParamType(int Index) const = 0;
  virtual int ResultType() const = 0;

  virtual void SetIntegerParam(int Index, std::int64_t Value) = 0;
  virtual void SetStringParam(int Index, std::string_view Value) = 0;
  /// Runs the function; false when it failed.
  virtual bool Execute() = 0;
  virtual bool BooleanResult() const = 0;
};

/// Makes callers.
class TExtCallFactory {
 public:
  virtual ~TExtCallFactory() = default;
  virtual std::unique_ptr<TExtCall> CreateExtCall() = 0;
};

/// The installed maker of callers. Raises EAccessViolation when there is none.
TExtCallFactory& ExtCalls();
/// Installs one for the process, borrowed, or none when null; returns the one before. TServiceGuard undoes it.
TExtCallFactory* InstallService(TExtCallFactory* Service);

}  // namespace velkrund
