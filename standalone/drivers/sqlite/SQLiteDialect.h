#pragma once

#include "standalone/drivers/Dialect.h"

namespace velkrund {

class TSQLiteDialect final : public TDialect {
 public:
  std::string QuoteName(std::string_view Name) const override { return QuoteStandardName(Name); }
  std::string SQLName(const TTableInfo& Table) const override { return QuoteStandardName(Table.Name); }
  std::string ParameterMark(int Number) const override { return "?" + std::to_string(Number); }
  std::string ColumnType(TKvKind Kind) const override;
  std::string_view ByteOrder() const override { return {}; }
  std::string_view Clustered() const override { return " WITHOUT ROWID"; }
  std::string_view RowLock(TRowLock /*Lock*/) const override { return {}; }
  const TQuerySyntax& QuerySyntax() const override;
};

}  // namespace velkrund
