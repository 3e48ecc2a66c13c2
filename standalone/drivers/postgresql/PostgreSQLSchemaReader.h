#pragma once

#include "standalone/drivers/SchemaReader.h"

namespace velkrund {

class TPostgreSQLResult;
class TPostgreSQLSession;

/// A table's schema is left out of its TTableInfo when it is the one in which names without a schema were looked for
/// first when the connection was made. Tables of all schemas are known, except the engine's own and temporary ones.
class TPostgreSQLSchemaReader final : public TSchemaReader {
 public:
  explicit TPostgreSQLSchemaReader(TPostgreSQLSession& Session) : FSession(Session) {}

  std::vector<TTableInfo> Tables() override;
  /// A name is a table's dotted or exact name, or its name behind its schema, else the name of a table on the search
  /// path.
  std::optional<TTableInfo> FindTable(std::string_view Name) override;
  TTableDescription Describe(const TTableInfo& Table) override;
  std::vector<std::vector<int>> UniqueKeys(const TTableDescription& Table) override;
  /// Without rows of tables that inherit from it; with those of partitions.
  std::int64_t RowCount(const TTableInfo& Table) override;
  std::optional<std::int64_t> EstimatedRows(const TTableDescription& Table) override;
  bool HasAtLeast(const TTableInfo& Table, std::int64_t Rows) override;
  std::optional<std::int64_t> TableBytes(const TTableInfo& Table) override;

  std::vector<TForeignKey> ForeignKeys() override;
  /// The engine lets none in, unless a role that may do so sets its checks aside.
  TBrokenReferences BrokenReferences(const TTableInfo& Table) override;
  std::vector<TTrigger> Triggers() override;

  bool HasCatalogueTable(const std::string& Name) override;

 private:
  struct TCandidate;

  std::vector<TCandidate> Candidates(const std::string& What, const std::string& Name);
  std::vector<TCandidate> CandidatesInAnyCase(const std::string& What, std::string_view Name);
  std::vector<TCandidate> CandidatesIn(const TPostgreSQLResult& Rows) const;
  std::optional<TTableInfo> Find(std::string_view Name);
  void MarkShared(std::vector<TTableInfo*> Tables);
  std::optional<TTableInfo> FindExactly(const std::string& What, const std::vector<std::string>& Parts);
  std::string ShownSchema(std::string_view Schema) const;

  TPostgreSQLSession& FSession;
};

}  // namespace velkrund
