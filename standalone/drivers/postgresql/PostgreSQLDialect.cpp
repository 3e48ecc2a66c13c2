#include "standalone/drivers/postgresql/PostgreSQLDialect.h"

namespace velkrund {

std::string TPostgreSQLDialect::QualifiedName(const TTableInfo& Table) const {
  return QuoteStandardName(SchemaOf(Table)) + "." + QuoteStandardName(Table.Name);
}

std::string TPostgreSQLDialect::SQLName(const TTableInfo& Table) const {
  return (Table.HasHeirs ? "ONLY " : "") + QualifiedName(Table);
}

std::string TPostgreSQLDialect::ColumnType(TKvKind Kind) const {
  if (Kind == TKvKind::Bytes) return "bytea";
  return Kind == TKvKind::String ? "text" : "bigint";
}

const TQuerySyntax& TPostgreSQLDialect::QuerySyntax() const {
  static constexpr TQuerySyntax Result = {
      .Escapes = true, .DollarQuotes = true, .NestedComments = true, .LineEnds = "\r\n", .ParameterMarks = "$"};
  return Result;
}

}  // namespace velkrund
