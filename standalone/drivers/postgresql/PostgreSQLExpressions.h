#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/expressions/NeutralExpression.h"

namespace velkrund {

/// What expressions may be made of, of one table.
struct TExpressionColumn {
  std::string Name;
  std::string Quoted;  // as the engine writes it
  std::string Type;    // below a domain, without length: "character varying"
  bool IsText = false;
};

/// Neutral forms of what the engine prints of a table's expressions.
class TPostgreSQLExpressions {
 public:
  explicit TPostgreSQLExpressions(std::vector<TExpressionColumn> Columns) : FColumns(std::move(Columns)) {}

  std::optional<std::string> Expression(const std::string& Text) const;
  /// Of a field with its type and own words. Type: as of TExpressionColumn.
  std::optional<std::string> Default(const std::string& Text, const std::string& Type, const TDicField& Field) const;

 private:
  std::optional<std::string> ColumnNamed(std::string_view Name) const;
  bool ChangesColumn(const std::string& Text) const;

  std::vector<TExpressionColumn> FColumns;
};

}  // namespace velkrund
