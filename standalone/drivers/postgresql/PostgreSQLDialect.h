#pragma once

#include "standalone/drivers/Dialect.h"

namespace velkrund {

class TPostgreSQLDialect final : public TDialect {
 public:
  /// CurrentSchema: that of the tables whose TTableInfo leaves it out; empty: the connection has none.
  explicit TPostgreSQLDialect(std::string CurrentSchema = {}) : FCurrentSchema(std::move(CurrentSchema)) {}

  const std::string& CurrentSchema() const { return FCurrentSchema; }
  const std::string& SchemaOf(const TTableInfo& Table) const {
    return Table.Schema.empty() ? FCurrentSchema : Table.Schema;
  }
  /// As a TTableInfo has it.
  std::string ShownSchema(std::string_view Schema) const {
    return Schema == FCurrentSchema ? std::string() : std::string(Schema);
  }

  std::string QuoteName(std::string_view Name) const override { return QuoteStandardName(Name); }
  /// The quoted name with its schema, and ONLY where rows of other tables would come along.
  std::string SQLName(const TTableInfo& Table) const override;
  /// The same without ONLY, for where the table itself is meant.
  std::string QualifiedName(const TTableInfo& Table) const;
  std::string ParameterMark(int Number) const override { return "$" + std::to_string(Number); }
  std::string ColumnType(TKvKind Kind) const override;
  std::string_view ByteOrder() const override { return " COLLATE pg_catalog.\"C\""; }
  std::string_view Clustered() const override { return {}; }
  std::string_view RowLock(TRowLock Lock) const override {
    return Lock == TRowLock::Stay ? " FOR KEY SHARE" : " FOR UPDATE";
  }
  const TQuerySyntax& QuerySyntax() const override;

 private:
  std::string FCurrentSchema;
};

}  // namespace velkrund
