#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"

namespace velkrund {

TPostgreSQLFetchCursor::TPostgreSQLFetchCursor(TPostgreSQLSource Source)
    : TPostgreSQLCursor(std::move(Source)),
      FBatches(FSource.Session, FSource.What, FSource.Statement, {}, TPostgreSQLSession::TFormat::Binary,
               FSource.OnlyReads) {}

bool TPostgreSQLFetchCursor::Next() {
  if (!FBatches.Next()) return false;
  const PGresult* const Batch = FBatches.Batch().Handle();
  const int Row = FBatches.Row();
  for (std::size_t I = 0; I < FCells.size(); ++I) {
    const int Column = static_cast<int>(I);
    const bool IsNull = PQgetisnull(Batch, Row, Column) != 0;
    FCells[I] = {IsNull ? nullptr : PQgetvalue(Batch, Row, Column), PQgetlength(Batch, Row, Column)};
  }
  return true;
}

}  // namespace velkrund
