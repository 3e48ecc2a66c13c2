#pragma once

#include "standalone/drivers/SchemaReader.h"
#include "standalone/drivers/postgresql/PostgreSQLTableSearch.h"

namespace velkrund {

class TPostgreSQLSession;

/// A table's schema is left out of its TTableInfo when it is the one in which names without a schema were looked for
/// first when the connection was made. Tables of all schemas are known, except the engine's own and temporary ones.
class TPostgreSQLSchemaReader final : public TSchemaReader {
 public:
  explicit TPostgreSQLSchemaReader(TPostgreSQLSession& Session) : FSession(Session), FSearch(Session) {}

  std::vector<TTableInfo> Tables() override { return FSearch.Tables(); }
  /// A name is a table's dotted or exact name, or its name behind its schema, else the name of a table on the search
  /// path.
  std::optional<TTableInfo> FindTable(std::string_view Name) override { return FSearch.Find(Name); }
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
  TPostgreSQLSession& FSession;
  TPostgreSQLTableSearch FSearch;
};

}  // namespace velkrund
