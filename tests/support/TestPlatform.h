#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/MemoryFiles.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund::tests {

/// A platform without databases, installed for a test's lifetime: settings to change, files in memory, a trace to look
/// at. Tests with tables override what they need.
class TTestPlatform : public TApplicationManager {
 public:
  TTestPlatform() : FGuard(this) {}

  std::unique_ptr<TTable> GetUserTable(const std::string&, const std::string&, bool) override { return nullptr; }
  void StartTransaction(const std::string&, TIsolationLevel) override { Log.push_back("start"); }
  void CommitTransaction(const std::string&) override { Log.push_back("commit"); }
  void RollbackTransaction(const std::string&) override { Log.push_back("rollback"); }
  std::int64_t ExecuteSQL(const std::string& Statement, const std::string&) override {
    Log.push_back(Statement);
    return 0;
  }
  const TSettings& Settings() const override { return WorkSettings; }
  TFileSystem& Files() override { return MemoryFiles; }
  std::string LString(std::string_view Key) const override { return std::string(Key); }
  void WriteTrace(std::string_view, TTraceLevel, std::string_view Text) noexcept override { Log.emplace_back(Text); }
  void ReportError(const std::exception& Error) noexcept override { Log.emplace_back(Error.what()); }

  TSettings WorkSettings;
  TMemoryFiles MemoryFiles;
  std::vector<std::string> Log;

 private:
  TServiceGuard<TApplicationManager> FGuard;
};

}  // namespace velkrund::tests
