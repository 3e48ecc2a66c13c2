#include "standalone/drivers/postgresql/PostgreSQLPipeline.h"
#include "standalone/drivers/postgresql/Libpq.h"

namespace velkrund {
namespace {

/// Until the end of a pipeline; the first error in it.
TPostgreSQLResult Answers(pg_conn* Connection, TPostgreSQLWait& Wait,
                          const std::function<void(const TPostgreSQLResult& Answer)>& Took) {
  TPostgreSQLResult Failed;
  while (PQstatus(Connection) == CONNECTION_OK) {
    TPostgreSQLResult Result(Wait.NextResult(Connection));
    // Between the answers to two statements there is none.
    if (!Result.Handle()) continue;
    const ExecStatusType Status = PQresultStatus(Result.Handle());
    if (Status == PGRES_PIPELINE_SYNC) break;
    if (Status == PGRES_TUPLES_OK)
      Took(Result);
    else if (Result.IsError() && !Failed.Handle())
      Failed = std::move(Result);
  }
  return Failed;
}

}  // namespace

TPostgreSQLResult RunPostgreSQLPipeline(pg_conn* Connection, TPostgreSQLWait& Wait, const std::string& Statement,
                                        const std::vector<unsigned>& Types, const std::vector<const char*>& Values,
                                        const std::function<void(const TPostgreSQLResult& Answer)>& Took) {
  PQenterPipelineMode(Connection);
  const int Count = static_cast<int>(Types.size());
  bool Sent = PQsendPrepare(Connection, "", Statement.c_str(), Count, Types.data()) == 1;
  for (std::size_t At = 0; At < Values.size() && Sent; At += Types.size()) {
    Sent = PQsendQueryPrepared(Connection, "", Count, Values.data() + At, nullptr, nullptr, 0) == 1;
    Wait.ForRoom(Connection);
  }
  PQpipelineSync(Connection);
  Wait.ForRoom(Connection);
  TPostgreSQLResult Failed = Answers(Connection, Wait, Took);
  PQexitPipelineMode(Connection);
  return Failed;
}

}  // namespace velkrund
