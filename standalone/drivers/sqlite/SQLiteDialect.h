#pragma once

#include "standalone/drivers/Dialect.h"

namespace velkrund {

class TSQLiteDialect final : public TDialect {
 public:
  std::string QuoteName(std::string_view Name) const override { return QuoteStandardName(Name); }
  std::string SQLName(const TTableInfo& Table) const override { return QuoteStandardName(Table.Name); }
  std::string ParameterMark(int Number) const override { return "?" + std::to_string(Number); }
  std::string ColumnType(TKvKind Kind) const override;
  const TQuerySyntax& QuerySyntax() const override;
};

}  // namespace velkrund
