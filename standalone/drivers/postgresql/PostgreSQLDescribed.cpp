#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TDescribing::TDescribing(TPostgreSQLSession& Session, std::string What) : FSession(Session), FWhat(std::move(What)) {
  const TPostgreSQLResult Now = FSession.Query(
      FWhat,
      "SELECT pg_catalog.current_setting('search_path'), (SELECT pg_catalog.concat(',', pg_catalog.string_agg(p.name, "
      "','), ',') FROM pg_catalog.pg_prepared_statements p WHERE pg_catalog.starts_with(p.name, 'velkrund_'))");
  FPathBefore = Now.Copy(0, 0);
  FKept = Now.Copy(0, 1);
  const std::string& Schema = FSession.Dialect().CurrentSchema();
  // Temporary tables of the session come last, where they hide none of the same name.
  SetPath(Schema.empty() ? "pg_temp" : QuoteStandardName(Schema) + ", pg_temp");
}

TDescribing::~TDescribing() {
  try {
    SetPath(FPathBefore);
  } catch (const Exception&) {
    // A transaction that has failed takes the path back when it ends; a connection that is lost begins anew.
  }
}

/// Within a transaction for that alone.
void TDescribing::SetPath(const std::string& Path) {
  FSession.Query(FWhat, "SELECT pg_catalog.set_config('search_path', $1, $2::pg_catalog.bool)",
                 {Path.c_str(), FSession.InTransaction() ? "true" : "false"});
}

TPostgreSQLResult TDescribing::Ask(const std::string& Name, const char* Statement,
                                   const std::vector<std::string>& Parameters) {
  const std::string Kept = "velkrund_" + Name;
  if (FKept.find("," + Kept + ",") == std::string::npos) {
    FSession.Query(FWhat, "PREPARE " + Kept + " AS " + CatalogueStatement(Statement));
    FKept += Kept + ",";
  }
  std::string Texts;
  for (const std::string& Parameter : Parameters) Texts += (Texts.empty() ? "" : ", ") + QuotePostgreSQLText(Parameter);
  return FSession.Query(FWhat, "EXECUTE " + Kept + "(" + Texts + ")");
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
