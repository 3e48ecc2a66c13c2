#pragma once

#include "standalone/drivers/Driver.h"
#include "standalone/drivers/postgresql/PostgreSQLSession.h"

namespace velkrund {

/// A table's schema is left out of its TTableInfo when it is the one in which names without a schema were looked for
/// first when the connection was made. Tables of all schemas are known, except the engine's own and temporary ones.
class TPostgreSQLConnection final : public TConnection {
 public:
  /// As TPostgreSQLSession's.
  TPostgreSQLConnection(const std::string& ConnectionInfo, const std::string& ShownName,
                        const TConnectOptions& Options);

  const TCapabilities& Capabilities() const override { return FCapabilities; }
  std::string EngineName() const override { return "PostgreSQL"; }
  std::string EngineVersion() const override { return FSession.ServerVersion(); }
  const TDialect& Dialect() const override { return FSession.Dialect(); }

  void Begin(TIsolationLevel Level) override;
  void BeginReading() override;
  void Commit() override { FSession.Commit(); }
  void Rollback() override { FSession.Rollback(); }
  std::int64_t Execute(const std::string& Statement, std::span<const TKvVariant> Parameters) override;
  std::unique_ptr<TCursor> Query(const std::string& Statement, std::span<const TKvVariant> Parameters) override;

  std::vector<TTableInfo> Tables() override;
  /// A name is a table's full name, else its name behind its schema, else the name of a table on the search path.
  std::optional<TTableInfo> FindTable(std::string_view Name) override;
  TTableDescription Describe(const TTableInfo& Table) override;
  /// Without rows of tables that inherit from it; with those of partitions.
  std::int64_t RowCount(const TTableInfo& Table) override;
  std::optional<std::int64_t> TableBytes(const TTableInfo& Table) override;

  std::vector<TForeignKey> ForeignKeys() override;

  bool HasCatalogueTable(const std::string& Name) override;

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;

 private:
  struct TCandidate;

  std::vector<TCandidate> Candidates(const std::string& What, const std::string& Name);

  TPostgreSQLSession FSession;
  TCapabilities FCapabilities;
  bool FReading = false;  // the running transaction only reads
};

}  // namespace velkrund
