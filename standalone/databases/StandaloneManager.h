#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "standalone/databases/Configuration.h"
#include "standalone/databases/Databases.h"
#include "standalone/databases/Trace.h"
#include "standalone/files/PosixFileSystem.h"
#include "velkrund/platform/database/ApplicationManager.h"

namespace velkrund {

/// What `database info` shows.
struct TDatabaseInfo {
  struct TTableSize {
    TTableInfo Table;
    std::optional<std::int64_t> Rows;       // nothing for views and foreign tables
    std::optional<std::int64_t> Bytes;      // with indexes; nothing when the engine cannot tell
    std::optional<TErrorFacts> Error = {};  // why it could not be looked into
  };

  std::string Engine;
  std::string EngineVersion;
  bool ReadOnly = false;
  std::optional<std::int64_t> CatalogueVersion;  // nothing when the platform keeps nothing of its own there
  std::vector<TTableSize> Tables;
};

/// The application manager of the stand-alone platform: databases through drivers, the operating system's files. Tables
/// borrow their connection from it and are freed before it. Used by one thread at a time, except for LString,
/// EnglishString, WriteTrace and Settings.
class TStandaloneManager final : public TApplicationManager {
 public:
  /// The text of a message key; nothing when there is none.
  using TLookUpText = std::function<std::optional<std::string>(std::string_view Key)>;
  using TReportError = std::function<void(const std::exception& Error)>;

  /// Raises EConfigurationError for a trace file that cannot be opened.
  explicit TStandaloneManager(const TConfiguration& Configuration);
  ~TStandaloneManager() override;

  std::unique_ptr<TTable> GetUserTable(const std::string& TableName, const std::string& DatabaseName,
                                       bool ReadWrite) override;
  bool TableExists(const std::string& TableName, const std::string& DatabaseName, bool Views) override;
  bool IsSameDatabase(const std::string& A, const std::string& B) override { return FDatabases.IsSameDatabase(A, B); }
  std::vector<std::string> UserTableNames(const std::string& DatabaseName) override;
  std::unique_ptr<TSelectQuery> CreateSelectQuery(const std::string& DatabaseName) override;
  TODBCBaseManager* GetODBCBaseManager(const std::string& DatabaseName) override;
  std::unique_ptr<TBLOBTable> OpenBLOBTable(std::string_view Bytes) override;
  std::unique_ptr<TBLOBTable> NewBLOBTable(const std::string& Name, const TBLOBTable::TFields& Fields) override;
  void StartTransaction(const std::string& DatabaseName, TIsolationLevel Level) override;
  void CommitTransaction(const std::string& DatabaseName) override;
  void RollbackTransaction(const std::string& DatabaseName) override;
  std::int64_t ExecuteSQL(const std::string& Statement, const std::string& DatabaseName) override;
  const TSettings& Settings() const override { return FSettings; }
  TFileSystem& Files() override { return FFiles; }
  std::string LString(std::string_view Key) const override;
  std::string EnglishString(std::string_view Key) const override;
  void WriteTrace(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept override;
  void Notice(const std::string& Text) noexcept override;
  void ReportError(const std::exception& Error) noexcept override;

  // For hosts. Settings and look-ups are changed while no operation runs.
  TDatabases& Databases() { return FDatabases; }
  const TConfiguration& Configuration() const { return FConfiguration; }
  TSettings& ChangeSettings() { return FSettings; }
  void SetLookUpText(TLookUpText LookUpText) { FLookUpText = std::move(LookUpText); }
  /// The user's texts when not set.
  void SetLookUpEnglish(TLookUpText LookUpText) { FLookUpEnglish = std::move(LookUpText); }
  /// Standard error when not set.
  void SetReportError(TReportError ReportError) { FReportError = std::move(ReportError); }

  std::vector<TTableInfo> Tables(const std::string& DatabaseName);
  TDatabaseInfo DatabaseInfo(const std::string& DatabaseName);

 private:
  TConfiguration FConfiguration;
  TSettings FSettings;
  TPosixFileSystem FFiles;
  TTrace FTrace;
  TDatabases FDatabases;
  std::map<std::string, std::unique_ptr<TODBCBaseManager>> FBaseManagers;  // by the name that was asked for
  TLookUpText FLookUpText, FLookUpEnglish;
  TReportError FReportError;
};

}  // namespace velkrund
