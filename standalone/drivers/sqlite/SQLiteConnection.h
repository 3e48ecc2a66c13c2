#pragma once

#include <memory>

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteDialect.h"
#include "standalone/drivers/sqlite/SQLiteWait.h"

struct sqlite3;

namespace velkrund {

/// A connection without mutexes: used by one thread at a time. A database file that it makes and in which nothing is
/// made is gone with it.
class TSQLiteConnection final : public TConnection {
 public:
  /// Path: absolute, or ":memory:".
  TSQLiteConnection(const std::string& Path, const TConnectOptions& Options);
  ~TSQLiteConnection() override;

  const TCapabilities& Capabilities() const override { return FCapabilities; }
  std::string EngineName() const override { return "SQLite"; }
  std::string EngineVersion() const override;
  const TDialect& Dialect() const override { return FDialect; }

  void Begin(TIsolationLevel Level) override;
  void BeginReading() override { Begin(TIsolationLevel::ReadCommitted); }
  void Commit() override;
  void Rollback() override;
  std::int64_t Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) override;
  std::unique_ptr<TCursor> Query(const std::string& Statement, std::span<const TKvVariant> Parameters) override;

  std::vector<TTableInfo> Tables() override;
  std::optional<TTableInfo> FindTable(std::string_view Name) override;
  TTableDescription Describe(const TTableInfo& Table) override;
  std::int64_t RowCount(const TTableInfo& Table) override;
  std::optional<std::int64_t> TableBytes(const TTableInfo& Table) override;

  /// Those that name a table which is not there are not among them.
  std::vector<TForeignKey> ForeignKeys() override;
  TBrokenReferences BrokenReferences(const TTableInfo& Table) override;

  bool HasCatalogueTable(const std::string& Name) override;

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;

 private:
  struct TClose {
    void operator()(sqlite3* Database) const;
  };

  void CheckReadable();
  void CheckNotMoved();
  void RemoveUnused() noexcept;
  /// How a message about the whole database begins.
  std::string About(std::string_view Failed) const;
  int RowNumberColumn(const TTableDescription& Table, bool WithoutRowId);
  bool RowsDependOnStatement(const std::string& Table);

  std::string FPath;
  TSQLiteWait FWait;
  bool FIsNew = false;  // the file was not there before
  std::unique_ptr<sqlite3, TClose> FDatabase;
  TCapabilities FCapabilities;
  TSQLiteDialect FDialect;
  TSQLiteTexts FTexts;
};

}  // namespace velkrund
