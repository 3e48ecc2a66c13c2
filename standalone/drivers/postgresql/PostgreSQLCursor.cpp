#include "standalone/drivers/postgresql/PostgreSQLCursor.h"

#include "standalone/drivers/Selection.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLForm.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

using TColumns = std::vector<TPostgreSQLColumn>;

std::string NameOf(const TPostgreSQLColumn& Column) { return "T." + QuoteStandardName(Column.Info.Name); }

std::string TextOf(const TPostgreSQLColumn& Column) {
  // A cast would not do: that of inet adds a mask.
  if (Column.OutputFunction.empty()) return NameOf(Column);
  // Functions of enumerations, ranges and composites do not take their domains.
  const std::string Base = Column.DomainOver.empty() ? "" : "::" + Column.DomainOver;
  return "pg_catalog.textin(" + Column.OutputFunction + "(" + NameOf(Column) + Base + "))";
}

/// What is sorted by: texts by their bytes, whatever the type makes of case, what travels as a text of the engine's
/// too, and all else as its type has it.
std::string PlaceOf(const TPostgreSQLColumn& Column) {
  if (Column.Type == TPostgreSQLType::Text || Column.Type == TPostgreSQLType::Other)
    return TextOf(Column) + " COLLATE pg_catalog.\"C\"";
  return NameOf(Column) + (Column.HasCollation ? " COLLATE pg_catalog.\"C\"" : "");
}

std::string SelectText(const TTableDescription& Table, const TColumns& Columns, const TColumns& Order,
                       std::string_view Condition, const TPostgreSQLDialect& Dialect) {
  std::string Text = "SELECT ";
  for (const TPostgreSQLColumn& Column : Columns) Text += PostgreSQLValueOf(Column) + ", ";
  if (!Columns.empty()) Text.resize(Text.size() - 2);
  Text += " FROM " + Dialect.SQLName(Table.Table) + " AS T" + SelectionWords(Condition);
  const char* Separator = " ORDER BY ";
  for (const TPostgreSQLColumn& Column : Order) {
    Text += Separator + PlaceOf(Column);
    Separator = ", ";
  }
  return Text;
}

/// COPY reads a table itself faster than a question about it.
std::string CopyText(const TTableDescription& Table, const TPostgreSQLTable& Known, const TColumns& Columns,
                     const TColumns& Order, std::string_view Condition, const TPostgreSQLDialect& Dialect) {
  bool Plain = Known.Kind == 'r' && !Columns.empty() && Order.empty() && Condition.empty();
  std::string Names;
  for (const TPostgreSQLColumn& Column : Columns) {
    Plain = Plain && HasPostgreSQLBinaryForm(Column) && !Column.Info.Generated;
    Names += (Names.empty() ? "" : ", ") + QuoteStandardName(Column.Info.Name);
  }
  if (!Plain) return "COPY (" + SelectText(Table, Columns, Order, Condition, Dialect) + ") TO STDOUT (FORMAT binary)";
  return "COPY " + Dialect.QualifiedName(Table.Table) + " (" + Names + ") TO STDOUT (FORMAT binary)";
}

}  // namespace

std::string PostgreSQLValueOf(const TPostgreSQLColumn& Column) {
  return HasPostgreSQLBinaryForm(Column) ? NameOf(Column) : TextOf(Column);
}

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

void CheckPostgreSQLSelection(TPostgreSQLSession& Session, const TTableDescription& Table, std::string_view Condition,
                              const std::string& What) {
  if (!Condition.empty())
    Session.Query(What, SelectionCheck(Condition, Session.Dialect().SQLName(Table.Table) + " AS T"));
}

std::unique_ptr<TCursor> OpenPostgreSQLCursor(TPostgreSQLSession& Session, const TTableDescription& Table,
                                              std::span<const int> Columns, const TWalkOptions& Options,
                                              TPostgreSQLReading Reading) {
  TPostgreSQLSource Source{Session,
                           SelectionFailed(Format("Cannot read table '%s'", FullName(Table.Table)), Options.Condition),
                           Format("table '%s'", FullName(Table.Table)),
                           {},
                           {}};
  if (Reading == TPostgreSQLReading::Copy) Session.LetGoOfLocks(Source.What);
  CheckPostgreSQLSelection(Session, Table, Options.Condition, Source.What);
  const TPostgreSQLTable Known = ReadPostgreSQLTable(Session, Table.Table, Source.What);
  const auto Find = [&](std::span<const int> Indexes) {
    TColumns Result;
    for (const int Column : Indexes)
      Result.push_back(ColumnOf(Known, Table.Columns[static_cast<std::size_t>(Column)].Name, Source.What));
    return Result;
  };
  const TColumns Asked = Find(Columns), Places = Find(Options.Order);
  const TPostgreSQLMoney Money = ReadPostgreSQLMoney(Session, Asked);
  for (const TPostgreSQLColumn& Column : Asked) Source.Decoders.emplace_back(Column, Money);
  if (Reading == TPostgreSQLReading::InBatches) {
    Source.Statement = SelectText(Table, Asked, Places, Options.Condition, Session.Dialect());
    return std::make_unique<TPostgreSQLFetchCursor>(std::move(Source));
  }
  Source.Table = Session.Dialect().QualifiedName(Table.Table);
  Source.Oid = Known.Oid;
  Source.Statement = CopyText(Table, Known, Asked, Places, Options.Condition, Session.Dialect());
  return std::make_unique<TPostgreSQLCopyCursor>(std::move(Source));
}

}  // namespace velkrund
