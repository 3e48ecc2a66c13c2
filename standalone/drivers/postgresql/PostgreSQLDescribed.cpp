#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TDescribingPath::TDescribingPath(TPostgreSQLSession& Session, std::string What)
    : FSession(Session), FWhat(std::move(What)) {
  const std::string& Schema = FSession.Dialect().CurrentSchema();
  // Temporary tables of the session come last, where they hide none of the same name.
  FBefore = Set(Schema.empty() ? "pg_temp" : QuoteStandardName(Schema) + ", pg_temp");
}

TDescribingPath::~TDescribingPath() {
  try {
    Set(FBefore);
  } catch (const Exception&) {
    // A transaction that has failed takes the path back when it ends; a connection that is lost begins anew.
  }
}

/// Within a transaction for that alone.
std::string TDescribingPath::Set(const std::string& Path) {
  const TPostgreSQLResult Before =
      FSession.Query(FWhat,
                     "SELECT s.path, pg_catalog.set_config('search_path', $1, $2::pg_catalog.bool) "
                     "FROM (SELECT pg_catalog.current_setting('search_path') AS path OFFSET 0) s",
                     {Path.c_str(), FSession.InTransaction() ? "true" : "false"});
  return Before.Copy(0, 0);
}

TDicCounter CounterOf(const TSequenceNumbers& Numbers, std::int64_t Highest) {
  const bool Upwards = !Numbers.Step.starts_with('-');
  const std::string Min = Upwards ? "1" : std::to_string(-Highest - 1);
  const std::string Max = Upwards ? std::to_string(Highest) : "-1";
  TDicCounter Result;
  if (Numbers.Start != (Upwards ? Numbers.Min : Numbers.Max)) Result.Start = Numbers.Start;
  if (Numbers.Step != "1") Result.Step = Numbers.Step;
  if (Numbers.Min != Min) Result.Min = Numbers.Min;
  if (Numbers.Max != Max) Result.Max = Numbers.Max;
  Result.Cycle = Numbers.Cycle;
  return Result;
}

}  // namespace velkrund
