#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "standalone/databases/Configuration.h"
#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

/// The platform's trace: lines with time, level and subsystem to a file or to standard error. Safe to call from several
/// threads.
class TTrace {
 public:
  /// FileName: appended to; empty: standard error. Raises EConfigurationError when the file cannot be opened.
  TTrace(TTraceLevelSetting Level, const std::string& FileName);
  ~TTrace();

  bool IsOn(TTraceLevel Level) const { return static_cast<int>(Level) <= static_cast<int>(FLevel); }
  void Write(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept;

 private:
  struct TLogger;

  TTraceLevelSetting FLevel;
  std::unique_ptr<TLogger> FLogger;  // null when the trace is off
};

}  // namespace velkrund
