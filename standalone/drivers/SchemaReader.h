#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Schema.h"

namespace velkrund {

/// How the names of the platform's own catalogue tables begin; others may have tables whose names begin so too.
inline constexpr std::string_view CataloguePrefix = "velkrund_";

/// Whether it is one of those, ignoring case, which are no user tables.
bool IsCatalogueTable(std::string_view Name);

/// What is in a database as it is at that moment: remembers only what cannot have changed since the engine was asked.
/// Raises EDatabaseError.
class TSchemaReader {
 public:
  TSchemaReader() = default;
  TSchemaReader(const TSchemaReader&) = delete;
  TSchemaReader& operator=(const TSchemaReader&) = delete;
  virtual ~TSchemaReader() = default;

  /// The user's tables and views by name; neither the engine's own nor the platform's.
  virtual std::vector<TTableInfo> Tables() = 0;
  /// The table of that name: the dotted one, an exact one (ExactNameParts), else a dotted one that differs in case
  /// only. Several of either are an error that gives their exact names.
  virtual std::optional<TTableInfo> FindTable(std::string_view Name) = 0;
  virtual TTableDescription Describe(const TTableInfo& Table) = 0;
  /// The columns of every unique key that is not the primary one and holds for all rows, as indexes into the
  /// description's columns; also of those whose columns may be NULL.
  virtual std::vector<std::vector<int>> UniqueKeys(const TTableDescription& Table) = 0;
  virtual std::int64_t RowCount(const TTableInfo& Table) = 0;
  /// About as many, without reading them; nothing where that cannot be told.
  virtual std::optional<std::int64_t> EstimatedRows(const TTableDescription& Table) = 0;
  /// Whether there are as many (1 or more); without counting more than these.
  virtual bool HasAtLeast(const TTableInfo& Table, std::int64_t Rows) = 0;
  bool HasRows(const TTableInfo& Table) { return HasAtLeast(Table, 1); }
  /// Bytes on disk of a table and its indexes; nothing when the engine cannot tell.
  virtual std::optional<std::int64_t> TableBytes(const TTableInfo& Table) = 0;

  /// Those of all tables.
  virtual std::vector<TTextIndex> TextIndexes() { return {}; }

  /// Those among the tables of users.
  virtual std::vector<TForeignKey> ForeignKeys() = 0;
  /// Of the foreign keys of that table.
  virtual TBrokenReferences BrokenReferences(const TTableInfo& Table) = 0;
  /// Those on tables of users that fire for rows which are inserted or deleted.
  virtual std::vector<TTrigger> Triggers() = 0;

  /// Whether there is a catalogue table of that name, which begins with CataloguePrefix.
  virtual bool HasCatalogueTable(const std::string& Name) = 0;
};

}  // namespace velkrund
