#include "standalone/databases/Trace.h"

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <filesystem>

#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

struct TTrace::TLogger {
  spdlog::logger Logger;
};

namespace {

spdlog::sink_ptr MakeSink(const std::string& FileName) {
  if (FileName.empty()) return std::make_shared<spdlog::sinks::stderr_sink_mt>();
  // Otherwise it would be made, however it is misspelt.
  if (const auto Folder = std::filesystem::absolute(FileName).parent_path(); !std::filesystem::exists(Folder))
    throw EConfigurationError(
        Format("Cannot open the trace file '%s': there is no folder '%s'", FileName, Folder.string()));
  try {
    return std::make_shared<spdlog::sinks::basic_file_sink_mt>(FileName);
  } catch (const spdlog::spdlog_ex& Error) {
    throw EConfigurationError(Format("Cannot open the trace file '%s': %s", FileName, Error.what()));
  }
}

spdlog::level::level_enum LevelOf(TTraceLevel Level) {
  switch (Level) {
    case TTraceLevel::Error:
      return spdlog::level::err;
    case TTraceLevel::Info:
      return spdlog::level::info;
    case TTraceLevel::Detail:
      break;
  }
  return spdlog::level::debug;
}

}  // namespace

TTrace::TTrace(TTraceLevelSetting Level, const std::string& FileName) : FLevel(Level) {
  if (Level == TTraceLevelSetting::Off) return;
  FLogger = std::make_unique<TLogger>(TLogger{spdlog::logger("velkrund", MakeSink(FileName))});
  FLogger->Logger.set_level(spdlog::level::debug);
  FLogger->Logger.flush_on(spdlog::level::debug);
  FLogger->Logger.set_pattern("%Y-%m-%d %H:%M:%S.%e %l %v");
  // A disk that is full must not spoil the work itself.
  FLogger->Logger.set_error_handler([](const std::string&) {});
}

TTrace::~TTrace() = default;

void TTrace::Write(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept {
  if (!FLogger || !IsOn(Level)) return;
  try {
    FLogger->Logger.log(LevelOf(Level), Format("%s: %s", Subsystem, OnOneLine(Text)));
  } catch (...) {
    // The trace never raises.
  }
}

}  // namespace velkrund
