#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

/// An application manager whose databases swallow what is written, so that files can be read through as an import
/// reads them while nothing is changed: every table is there, transactions and statements do nothing. Settings, files,
/// texts, the trace and the reporting of errors are those of the real manager. Used by one thread at a time.
class TDiscardManager final : public TApplicationManager {
 public:
  /// Real: borrowed, outlives this one.
  explicit TDiscardManager(TApplicationManager& Real) : FReal(Real) {}

  /// The fields of the tables yielded from now on: a record tells what it has and is not told what is wanted of it, so
  /// whoever reads a file says first which fields it names.
  void SetFieldNames(std::vector<std::string> Names) { FFieldNames = std::move(Names); }

  /// A TDiscardTable, whatever the name.
  std::unique_ptr<TTable> GetUserTable(const std::string& TableName, const std::string& DatabaseName,
                                       bool ReadWrite) override;
  void StartTransaction(const std::string&, TIsolationLevel) override {}
  void CommitTransaction(const std::string&) override {}
  void RollbackTransaction(const std::string&) override {}
  /// Changes no row: 0.
  std::int64_t ExecuteSQL(const std::string&, const std::string&) override { return 0; }

  const TSettings& Settings() const override { return FReal.Settings(); }
  TFileSystem& Files() override { return FReal.Files(); }
  std::string LString(std::string_view Key) const override { return FReal.LString(Key); }
  std::string EnglishString(std::string_view Key) const override { return FReal.EnglishString(Key); }
  void WriteTrace(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept override {
    FReal.WriteTrace(Subsystem, Level, Text);
  }
  void ReportError(const std::exception& Error) noexcept override { FReal.ReportError(Error); }

 private:
  TApplicationManager& FReal;
  std::vector<std::string> FFieldNames;
};

}  // namespace velkrund
