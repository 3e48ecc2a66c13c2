#include "standalone/drivers/postgresql/PostgreSQLCursor.h"

#include <libpq-fe.h>

#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

std::string SelectText(const TTableDescription& Table, const std::vector<TPostgreSQLColumn>& Columns,
                       const TPostgreSQLDialect& Dialect) {
  std::string Text = "SELECT ";
  for (const TPostgreSQLColumn& Column : Columns) {
    const std::string Name = "T." + QuoteStandardName(Column.Info.Name);
    // A cast would not do: that of inet adds a mask.
    Text += Column.OutputFunction.empty() ? Name : "pg_catalog.textin(" + Column.OutputFunction + "(" + Name + "))";
    Text += ", ";
  }
  if (!Columns.empty()) Text.resize(Text.size() - 2);
  return Text + " FROM " + Dialect.SQLName(Table.Table) + " AS T";
}

/// COPY reads a table itself faster than a question about it.
std::string CopyText(const TTableDescription& Table, const TPostgreSQLTable& Known,
                     const std::vector<TPostgreSQLColumn>& Columns, const TPostgreSQLDialect& Dialect) {
  bool Plain = Known.Kind == 'r' && !Columns.empty();
  std::string Names;
  for (const TPostgreSQLColumn& Column : Columns) {
    Plain = Plain && Column.OutputFunction.empty() && !Column.Info.Generated;
    Names += (Names.empty() ? "" : ", ") + QuoteStandardName(Column.Info.Name);
  }
  if (!Plain) return "COPY (" + SelectText(Table, Columns, Dialect) + ") TO STDOUT (FORMAT binary)";
  return "COPY " + Dialect.QualifiedName(Table.Table) + " (" + Names + ") TO STDOUT (FORMAT binary)";
}

}  // namespace

void TPostgreSQLCursor::Read(int Column, TKvVariant& Value) {
  const auto Index = static_cast<std::size_t>(Column);
  const TCell& Cell = FCells[Index];
  if (!Cell.Bytes) return Value.SetNull();
  FSource.Decoders[Index].Decode({Cell.Bytes, static_cast<std::size_t>(Cell.Size)}, Value);
}

TPostgreSQLQueryCursor::TPostgreSQLQueryCursor(TPostgreSQLSession& Session, const std::string& Statement,
                                               std::span<const TKvVariant> Parameters)
    : FRows(Session.Ask(Statement, Parameters)) {
  for (int Column = 0; Column < PQnfields(FRows.Handle()); ++Column)
    FDecoders.emplace_back(PlainPostgreSQLColumn(PQftype(FRows.Handle(), Column)), TPostgreSQLMoney());
}

void TPostgreSQLQueryCursor::Read(int Column, TKvVariant& Value) {
  if (PQgetisnull(FRows.Handle(), FRow, Column) != 0) return Value.SetNull();
  FDecoders[static_cast<std::size_t>(Column)].Decode(FRows.Text(FRow, Column), Value);
}

std::unique_ptr<TCursor> OpenPostgreSQLCursor(TPostgreSQLSession& Session, const TTableDescription& Table,
                                              std::span<const int> Columns, TPostgreSQLReading Reading) {
  TPostgreSQLSource Source{
      Session, Format("Cannot read table '%s'", FullName(Table.Table)), FullName(Table.Table), {}, {}};
  const TPostgreSQLTable Known = ReadPostgreSQLTable(Session, Table.Table, Source.What);
  std::vector<TPostgreSQLColumn> Asked;
  for (const int Column : Columns)
    Asked.push_back(ColumnOf(Known, Table.Columns[static_cast<std::size_t>(Column)].Name, Source.What));
  const TPostgreSQLMoney Money = ReadPostgreSQLMoney(Session, Asked);
  for (const TPostgreSQLColumn& Column : Asked) Source.Decoders.emplace_back(Column, Money);
  if (Reading == TPostgreSQLReading::InBatches) {
    Source.Statement = SelectText(Table, Asked, Session.Dialect());
    return std::make_unique<TPostgreSQLFetchCursor>(std::move(Source));
  }
  Source.Statement = CopyText(Table, Known, Asked, Session.Dialect());
  return std::make_unique<TPostgreSQLCopyCursor>(std::move(Source));
}

}  // namespace velkrund
