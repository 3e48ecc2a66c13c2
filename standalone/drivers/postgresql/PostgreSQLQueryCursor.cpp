#include <libpq-fe.h>

#include "standalone/drivers/postgresql/PostgreSQLCursor.h"

namespace velkrund {

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

}  // namespace velkrund
