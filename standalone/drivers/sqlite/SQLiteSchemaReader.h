#pragma once

#include <array>
#include <span>

#include "standalone/drivers/Connection.h"
#include "standalone/drivers/sqlite/SQLiteSchemaMemory.h"
#include "standalone/drivers/sqlite/SQLiteVirtualTable.h"

namespace velkrund {

/// The engine keeps foreign keys as words of a table's declaration; unless it is told to enforce them, rows may refer
/// to whatever they like.
class TSQLiteSchemaReader final : public TSchemaReader {
 public:
  /// Capabilities: borrowed.
  TSQLiteSchemaReader(const TSQLiteHandle& Database, const TCapabilities& Capabilities)
      : FDatabase(Database), FCapabilities(Capabilities) {}

  std::vector<TTableInfo> Tables() override;
  std::optional<TTableInfo> FindTable(std::string_view Name) override;
  TTableDescription Describe(const TTableInfo& Table) override;
  std::vector<std::vector<int>> UniqueKeys(const TTableDescription& Table) override;
  std::int64_t RowCount(const TTableInfo& Table) override;
  std::optional<std::int64_t> EstimatedRows(const TTableDescription& Table) override;
  bool HasAtLeast(const TTableInfo& Table, std::int64_t Rows) override;
  std::optional<std::int64_t> TableBytes(const TTableInfo& Table) override;

  /// Those whose table is there.
  std::vector<TTextIndex> TextIndexes() override;

  /// Those that name a table which is not there are not among them.
  std::vector<TForeignKey> ForeignKeys() override;
  TBrokenReferences BrokenReferences(const TTableInfo& Table) override;
  std::vector<TTrigger> Triggers() override;
  const std::vector<TTrigger>& KnownTriggers();
  /// Those of one table, by its exact name, as long as the schema stays.
  std::span<const TTrigger> TriggersOf(std::string_view Table);
  /// Null when there is none of exactly that name.
  const TSQLiteListedTable* Listed(std::string_view Name) { return FMemory.Find(Name); }
  TSQLiteSchemaMemory& Memory() { return FMemory; }

  bool HasCatalogueTable(const std::string& Name) override;

 private:
  std::string About(std::string_view What) const;
  void DescribeAll(TSQLiteSchemaMemory::TContent& Content) const;
  TTableDescription ReadDescription(const TTableInfo& Table);
  std::vector<TTrigger> ReadTriggers() const;
  std::vector<TForeignKey> ReadForeignKeys(const TSQLiteSchemaMemory::TContent& Known) const;
  std::map<std::string, std::int64_t> MeasureAll() const;
  TTableKind KindOfTable(const std::string& Name, std::string_view Type);
  TSQLiteVirtualTable Virtual(const std::string& Name);

  using TMoment = std::array<std::int64_t, 3>;
  TMoment Moment();

  const TSQLiteHandle FDatabase;
  const TCapabilities& FCapabilities;
  TSQLiteSchemaMemory FMemory{FDatabase};
  std::optional<std::map<std::string, std::int64_t>> FSizes;  // of all tables, measured at one moment
  TMoment FSizesAreOf = {};
};

}  // namespace velkrund
