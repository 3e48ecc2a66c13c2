#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

TDescribing::TDescribing(TPostgreSQLSession& Session, std::string What) : FSession(Session), FWhat(std::move(What)) {
  const std::string& Schema = FSession.Dialect().CurrentSchema();
  std::vector<std::string> Searched{"pg_catalog"};
  if (!Schema.empty()) Searched.push_back(Schema);
  const std::string Wanted = PostgreSQLArray(Searched);
  const TPostgreSQLResult Now = FSession.Query(
      FWhat,
      "SELECT pg_catalog.current_setting('search_path'), (SELECT pg_catalog.concat(',', pg_catalog.string_agg(p.name, "
      "','), ',') FROM pg_catalog.pg_prepared_statements p WHERE pg_catalog.starts_with(p.name, 'velkrund_')), "
      "pg_catalog.current_schemas(true) OPERATOR(pg_catalog.=) $1::pg_catalog.name[]",
      {Wanted.c_str()});
  FKept = Now.Copy(0, 1);
  // Behind a change of the path the server plans all anew.
  if (Now.Boolean(0, 2)) return;
  FPathBefore = Now.Copy(0, 0);
  // Temporary tables of the session come last, where they hide none of the same name.
  SetPath(Schema.empty() ? "pg_temp" : QuoteStandardName(Schema) + ", pg_temp");
}

TDescribing::~TDescribing() {
  if (FPathBefore) try {
      SetPath(*FPathBefore);
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

void TDescribing::Begin(std::vector<std::string> Oids) {
  FOids = std::move(Oids);
  FAnswers.clear();
}

TDescribedRows TDescribing::RowsOf(const std::string& Oid, const std::string& Name, const char* Statement,
                                   const std::vector<std::string>& Parameters) {
  auto Answer = FAnswers.find(Name);
  if (Answer == FAnswers.end()) Answer = FAnswers.emplace(Name, AskAll(Name, Statement, Parameters)).first;
  const auto Rows = Answer->second.find(Oid);
  return Rows == Answer->second.end() ? TDescribedRows() : Rows->second;
}

TDescribing::TByTable TDescribing::AskAll(const std::string& Name, const char* Statement,
                                          const std::vector<std::string>& Parameters) {
  std::vector<std::string> All{PostgreSQLArray(FOids)};
  All.insert(All.end(), Parameters.begin(), Parameters.end());
  const auto Answer = std::make_shared<const TPostgreSQLResult>(Ask(Name, Statement, All));
  const int Last = Answer->ColumnCount() - 1;
  TByTable Result;
  for (int Row = 0; Row < Answer->RowCount(); ++Row)
    Result.try_emplace(Answer->Copy(Row, Last), Answer, Row).first->second.Add();
  return Result;
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
