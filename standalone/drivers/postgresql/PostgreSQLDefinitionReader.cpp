#include "standalone/drivers/postgresql/PostgreSQLDefinitionReader.h"

#include <limits>
#include <map>
#include <span>

#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

/// What is said of relations ($2, each in the schema $1 of the same place) as a whole, and the place of each.
constexpr const char* RelationsStatement =
    "SELECT c.oid, c.oid::pg_catalog.regclass, pg_catalog.obj_description(c.oid, 'pg_class'), c.relkind, "
    "c.relpersistence = 'u', m.amname, "
    "(SELECT pg_catalog.array_to_string(pg_catalog.array_agg(pg_catalog.concat(o.name, '=', "
    "CASE WHEN pg_catalog.regexp_match(o.setting, '^[a-z0-9_.]+$') IS NULL THEN pg_catalog.quote_literal(o.setting) "
    "ELSE o.setting END) ORDER BY o.toast, o.place), ', ') FROM (SELECT s.name, s.setting, s.place, false AS toast "
    "FROM pg_catalog.pg_options_to_table(c.reloptions) WITH ORDINALITY AS s (name, setting, place) "
    "WHERE s.name <> 'check_option' UNION ALL SELECT pg_catalog.concat('toast.', s.name), s.setting, s.place, true "
    "FROM pg_catalog.pg_class w CROSS JOIN LATERAL pg_catalog.pg_options_to_table(w.reloptions) WITH ORDINALITY "
    "AS s (name, setting, place) WHERE w.oid = c.reltoastrelid) o), "
    "CASE WHEN c.relkind = 'p' THEN pg_catalog.pg_get_partkeydef(c.oid) END, "
    "CASE WHEN c.relispartition THEN pg_catalog.pg_get_expr(c.relpartbound, c.oid) END, "
    "(SELECT pg_catalog.string_agg(i.inhparent::pg_catalog.regclass::pg_catalog.text, ', ' ORDER BY i.inhseqno) "
    "FROM pg_catalog.pg_inherits i WHERE i.inhrelid = c.oid), "
    "(SELECT s.option_value FROM pg_catalog.pg_options_to_table(c.reloptions) s "
    "WHERE s.option_name = 'check_option'), "
    "CASE WHEN c.relkind = ANY ('{v,m}') THEN pg_catalog.pg_get_viewdef(c.oid) END, "
    "c.relhasindex, c.relhastriggers, x.place "
    "FROM ROWS FROM (pg_catalog.unnest($1::pg_catalog.text[]), pg_catalog.unnest($2::pg_catalog.text[])) "
    "WITH ORDINALITY AS x (schema, relation, place) JOIN pg_catalog.pg_namespace n ON n.nspname = x.schema "
    "JOIN pg_catalog.pg_class c ON c.relnamespace = n.oid AND c.relname = x.relation "
    "LEFT JOIN pg_catalog.pg_am m ON m.oid = c.relam AND m.amname <> 'heap'";

constexpr const char* SequenceStatement =
    "SELECT s.seqstart, s.seqincrement, s.seqmin, s.seqmax, s.seqcycle, s.seqcache, "
    "pg_catalog.format_type(s.seqtypid, NULL), pg_catalog.obj_description(c.oid, 'pg_class') "
    "FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
    "JOIN pg_catalog.pg_sequence s ON s.seqrelid = c.oid "
    "WHERE n.nspname = $1::pg_catalog.text AND c.relname = $2::pg_catalog.text";

EDatabaseError Missing(const std::string& What, std::string_view Kind, const TTableInfo& Object) {
  return EDatabaseError(Format("%s: there is no %s '%s' in the database", What, Kind, FullName(Object)),
                        {.Code = TErrorCode::TableMissing});
}

/// A row for each that is there, with its place, from 1, at the end.
TPostgreSQLResult AskAbout(TDescribing& Describing, std::span<const TTableInfo> Relations) {
  std::vector<std::string> Schemas, Names;
  for (const TTableInfo& Relation : Relations) {
    Schemas.push_back(Describing.Dialect().SchemaOf(Relation));
    Names.push_back(Relation.Name);
  }
  TPostgreSQLResult Result =
      Describing.Ask("relations", RelationsStatement, {PostgreSQLArray(Schemas), PostgreSQLArray(Names)});
  std::vector<std::string> Oids;
  for (int Row = 0; Row < Result.RowCount(); ++Row) Oids.push_back(Result.Copy(Row, 0));
  Describing.Begin(std::move(Oids));
  return Result;
}

TPostgreSQLResult AskCounts(TPostgreSQLSession& Session, const std::string& What, const TTableInfo& Sequence) {
  return Session.Query(What, CatalogueStatement(SequenceStatement),
                       {Session.Dialect().SchemaOf(Sequence).c_str(), Sequence.Name.c_str()});
}

std::string WhatOf(std::span<const TTableInfo> Tables) {
  return Tables.size() == 1 ? Format("Cannot describe table '%s'", FullName(Tables.front()))
                            : Format("Cannot describe the tables from '%s' to '%s'", FullName(Tables.front()),
                                     FullName(Tables.back()));
}

void AddWord(std::string& Words, const std::string& Word) { Words += (Words.empty() ? "" : " ") + Word; }

TDicEngineWords TableWords(const TPostgreSQLResult& Rows, int Row) {
  TDicWords Words;
  std::string Text;
  if (Rows.Boolean(Row, 4)) AddWord(Text, "UNLOGGED");
  if (!Rows.Text(Row, 5).empty()) AddWord(Text, "USING " + QuoteStandardName(Rows.Text(Row, 5)));
  if (!Rows.Text(Row, 6).empty()) AddWord(Text, "WITH (" + Rows.Copy(Row, 6) + ")");
  if (!Text.empty()) Words.Text = Text;
  if (!Rows.Text(Row, 7).empty()) Words.Parts["Partition"] = "BY " + Rows.Copy(Row, 7);
  if (!Rows.Text(Row, 8).empty())
    Words.Parts["PartitionOf"] = Rows.Copy(Row, 9) + " " + Rows.Copy(Row, 8);
  else if (!Rows.Text(Row, 9).empty())
    Words.Parts["Inherits"] = Rows.Copy(Row, 9);
  if (Words == TDicWords()) return {};
  return {{"postgresql", std::move(Words)}};
}

TDicTableDescription DescribeTable(TDescribing& Describing, const TTableInfo& Table, const TPostgreSQLResult& Rows,
                                   int Row) {
  TDicTableDescription Result;
  Result.Name = Table.Name;
  Result.Schema = Table.Schema;
  Result.Comment = Rows.Copy(Row, 2);
  Result.Words = TableWords(Rows, Row);
  const TDescribed Described{Describing, Rows.Copy(Row, 0), Table.Name, Rows.Copy(Row, 1)};
  std::vector<TExpressionColumn> Columns;
  Result.Fields = ReadFields(Described, Columns);
  const TPostgreSQLExpressions Expressions(std::move(Columns));
  ReadConstraints(Described, Expressions, Result);
  if (Rows.Boolean(Row, 12)) Result.Indexes = ReadIndexes(Described, Expressions);
  if (Rows.Boolean(Row, 13)) Result.Triggers = ReadTriggers(Described);
  return Result;
}

}  // namespace

TDicTableDescription TPostgreSQLDefinitionReader::Table(const TTableInfo& Table, const TDescribeOptions&) {
  return std::move(DescribeAll({Table}).front());
}

std::vector<TDicTableDescription> TPostgreSQLDefinitionReader::Tables(const std::vector<TTableInfo>& Tables,
                                                                      const TDescribeOptions& Options) {
  if (Tables.empty()) return {};
  const std::string Mark = "velkrund_tables", What = WhatOf(Tables);
  const bool Marks = FSession.InTransaction() && Tables.size() > 1;
  if (Marks) FSession.Query(What, "SAVEPOINT " + Mark);
  try {
    std::vector<TDicTableDescription> Result = DescribeAll(Tables);
    if (Marks) FSession.Query(What, "RELEASE SAVEPOINT " + Mark);
    return Result;
  } catch (const EDatabaseError&) {
    if (Tables.size() == 1) throw;
  }
  // The server does not tell which of them it is.
  if (Marks) FSession.TakePartBack(Mark);
  std::vector<TDicTableDescription> Result;
  for (const TTableInfo& Each : Tables) Result.push_back(Table(Each, Options));
  return Result;
}

std::vector<TDicTableDescription> TPostgreSQLDefinitionReader::DescribeAll(const std::vector<TTableInfo>& Tables) {
  std::vector<TDicTableDescription> Result;
  TDescribing Describing(FSession, WhatOf(Tables));
  const TPostgreSQLResult Rows = AskAbout(Describing, Tables);
  std::map<std::size_t, int> RowOf;  // by the table's place
  for (int Row = 0; Row < Rows.RowCount(); ++Row)
    if (Rows.Text(Row, 3) == "r" || Rows.Text(Row, 3) == "p")
      RowOf.emplace(static_cast<std::size_t>(Rows.Integer(Row, 14)) - 1, Row);
  for (std::size_t Place = 0; Place < Tables.size(); ++Place) {
    const auto Row = RowOf.find(Place);
    if (Row == RowOf.end()) throw Missing(WhatOf({&Tables[Place], 1}), "table", Tables[Place]);
    Result.push_back(DescribeTable(Describing, Tables[Place], Rows, Row->second));
  }
  return Result;
}

TDicViewDescription TPostgreSQLDefinitionReader::View(const TTableInfo& View) {
  const std::string What = Format("Cannot describe view '%s'", FullName(View));
  TDescribing Describing(FSession, What);
  const TPostgreSQLResult Row = AskAbout(Describing, {&View, 1});
  if (Row.RowCount() == 0 || Row.Text(0, 11).empty()) throw Missing(What, "view", View);
  TDicViewDescription Result;
  Result.Name = View.Name;
  Result.Schema = View.Schema;
  Result.Comment = Row.Copy(0, 2);
  Result.Materialized = Row.Text(0, 3) == "m";
  TDicWords& Words = Result.Words["postgresql"];
  std::string_view Text = Row.Text(0, 11);
  while (Text.ends_with(';')) Text.remove_suffix(1);
  while (Text.starts_with(' ')) Text.remove_prefix(1);
  Words.Lines = SplitLines(Text);
  std::string Options;
  if (!Row.Text(0, 5).empty()) AddWord(Options, "USING " + QuoteStandardName(Row.Text(0, 5)));
  if (!Row.Text(0, 6).empty()) AddWord(Options, "WITH (" + Row.Copy(0, 6) + ")");
  if (!Options.empty()) Words.Parts["Options"] = Options;
  if (!Row.Text(0, 10).empty()) Words.Parts["Check"] = Row.Text(0, 10) == "local" ? "Local" : "Cascaded";
  const TDescribed Described{Describing, Row.Copy(0, 0), View.Name, Row.Copy(0, 1)};
  if (Row.Boolean(0, 12)) {
    std::vector<TExpressionColumn> Columns;
    ReadFields(Described, Columns);
    Result.Indexes = ReadIndexes(Described, TPostgreSQLExpressions(std::move(Columns)));
  }
  if (Row.Boolean(0, 13)) Result.Triggers = ReadTriggers(Described);
  return Result;
}

TDicGeneratorDescription TPostgreSQLDefinitionReader::Generator(const TTableInfo& Generator) {
  const std::string What = Format("Cannot describe generator '%s'", FullName(Generator));
  const TPostgreSQLResult Row = AskCounts(FSession, What, Generator);
  if (Row.RowCount() == 0) throw Missing(What, "generator", Generator);
  TDicGeneratorDescription Result;
  Result.Name = Generator.Name;
  Result.Schema = Generator.Schema;
  Result.Comment = Row.Copy(0, 7);
  Result.Counter = CounterOf({Row.Copy(0, 0), Row.Copy(0, 1), Row.Copy(0, 2), Row.Copy(0, 3), Row.Boolean(0, 4)},
                             std::numeric_limits<std::int64_t>::max());
  if (Row.Text(0, 5) != "1") Result.Cache = Row.Copy(0, 5);
  if (Row.Text(0, 6) != "bigint") Result.Words["postgresql"].Text = "AS " + Row.Copy(0, 6);
  return Result;
}

std::int64_t TPostgreSQLDefinitionReader::GeneratorValue(const TTableInfo& Generator) {
  const std::string What = Format("Cannot read generator '%s'", FullName(Generator));
  const TPostgreSQLResult Counts = AskCounts(FSession, What, Generator);
  if (Counts.RowCount() == 0) throw Missing(What, "generator", Generator);
  const TPostgreSQLResult Row =
      FSession.Query(What, Format("SELECT last_value, is_called FROM %s", FSession.Dialect().QualifiedName(Generator)));
  const std::int64_t Next = Row.Integer(0, 0);
  if (Row.Boolean(0, 1)) return Next;
  std::int64_t Result = 0;
  if (__builtin_sub_overflow(Next, Counts.Integer(0, 1), &Result))
    throw EDatabaseError(Format("%s: it was never asked, and no number comes before its first one", What));
  return Result;
}

}  // namespace velkrund
