#pragma once

#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include "velkrund/module/Module.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund {

/// A platform without databases and files, so that a target touches nothing but its input.
class TFuzzPlatform final : public TApplicationManager {
 public:
  TFuzzPlatform() : FGuard(this) { StartModule(); }

  std::unique_ptr<TTable> GetUserTable(const std::string&, const std::string&, bool) override { return nullptr; }
  void StartTransaction(const std::string&, TIsolationLevel) override {}
  void CommitTransaction(const std::string&) override {}
  void RollbackTransaction(const std::string&) override {}
  std::int64_t ExecuteSQL(const std::string&, const std::string&) override { return 0; }
  const TSettings& Settings() const override { return FSettings; }
  TFileSystem& Files() override { throw Exception("a fuzz target has no files"); }
  std::string LString(std::string_view Key) const override { return std::string(Key); }
  void WriteTrace(std::string_view, TTraceLevel, std::string_view) noexcept override {}
  void ReportError(const std::exception&) noexcept override {}

  TSettings& ChangeSettings() { return FSettings; }

 private:
  TSettings FSettings;
  TServiceGuard<TApplicationManager> FGuard;
};

/// Stops the run with a finding.
inline void Require(bool Condition) {
  if (!Condition) std::abort();
}

/// A failure has to be one of the module's own errors, down to its first cause: any other is a finding.
inline void RequireOwn(const std::exception& Error) {
  Require(dynamic_cast<const Exception*>(&Error) != nullptr);
  try {
    std::rethrow_if_nested(Error);
  } catch (const std::exception& Cause) {
    RequireOwn(Cause);
  }
}

}  // namespace velkrund
