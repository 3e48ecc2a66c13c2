#include "standalone/drivers/TextLines.h"
#include "standalone/drivers/postgresql/PostgreSQLDefinitionReader.h"
#include "standalone/drivers/postgresql/PostgreSQLDescribed.h"
#include "standalone/drivers/postgresql/PostgreSQLFieldTypes.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

/// The routine $2 in the schema $1, with what stands before its options in the engine's statement that makes it.
constexpr const char* RoutineStatement =
    "SELECT p.oid, p.prokind, p.proretset, l.lanname, pg_catalog.obj_description(p.oid, 'pg_proc'), "
    "pg_catalog.pg_get_functiondef(p.oid), pg_catalog.concat('CREATE OR REPLACE ', "
    "CASE WHEN p.prokind = 'p' THEN 'PROCEDURE ' ELSE 'FUNCTION ' END, pg_catalog.quote_ident(n.nspname), '.', "
    "pg_catalog.quote_ident(p.proname), '(', pg_catalog.pg_get_function_arguments(p.oid), ')', pg_catalog.chr(10)), "
    "pg_catalog.pg_get_function_result(p.oid), p.prosrc, t.typtype <> 'p', p.prorettype, "
    "pg_catalog.format_type(p.prorettype, NULL), pg_catalog.quote_ident(l.lanname) "
    "FROM pg_catalog.pg_proc p JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace "
    "JOIN pg_catalog.pg_language l ON l.oid = p.prolang JOIN pg_catalog.pg_type t ON t.oid = p.prorettype "
    "WHERE n.nspname = $1::pg_catalog.text AND p.proname = $2::pg_catalog.text";

/// A row per parameter, and column of what is returned, of the routine $1.
constexpr const char* ParametersStatement =
    "SELECT p.proargnames[k.place], coalesce(p.proargmodes[k.place], 'i'), k.type, "
    "pg_catalog.format_type(k.type, NULL), pg_catalog.pg_get_function_arg_default(p.oid, k.place::pg_catalog.int4), "
    "t.typtype = 'e' OR t.typcategory = 'S' "
    "FROM pg_catalog.pg_proc p CROSS JOIN LATERAL pg_catalog.unnest(coalesce(p.proallargtypes, "
    "p.proargtypes::pg_catalog.oid[])) WITH ORDINALITY AS k (type, place) "
    "JOIN pg_catalog.pg_type t ON t.oid = k.type WHERE p.oid = $1::pg_catalog.oid ORDER BY k.place";

TDicParameter ParameterOf(std::string Name, std::int64_t Type, std::string Declared, bool IsText) {
  TDicParameter Result;
  Result.Name = std::move(Name);
  Result.Type = NeutralTypeOf(Type, -1, IsText).Type;
  Result.Words["postgresql"].Text = std::move(Declared);
  return Result;
}

void ReadParameters(TDescribing& Describing, const std::string& Oid, TDicProcedureDescription& Result) {
  const TPostgreSQLExpressions Expressions({});
  const TPostgreSQLResult Rows = Describing.Ask("parameters", ParametersStatement, {Oid});
  for (int Row = 0; Row < Rows.RowCount(); ++Row) {
    const std::string_view Mode = Rows.Text(Row, 1);
    TDicParameter Parameter =
        ParameterOf(Rows.Copy(Row, 0), Rows.Integer(Row, 2), Rows.Copy(Row, 3), Rows.Boolean(Row, 5));
    TDicWords& Words = Parameter.Words["postgresql"];
    if (Mode == "v") Words.Text = "VARIADIC " + *Words.Text;
    if (Mode == "o") Parameter.Mode = TDicParameterMode::Out;
    if (Mode == "b") Parameter.Mode = TDicParameterMode::InOut;
    if (const std::string Default = Rows.Copy(Row, 4); !Default.empty()) {
      Parameter.Default = Expressions.Default(Default, Rows.Copy(Row, 3), {.Type = Parameter.Type});
      if (!Parameter.Default) Words.Parts["Default"] = Default;
    }
    (Mode == "t" ? Result.Result : Result.Parameters).push_back(std::move(Parameter));
  }
}

struct TOptionsAndBody {
  std::string_view Options, Body;
};

/// What the engine's statement says behind the language. Source: the body, empty also for one in the standard's form,
/// of which the engine keeps what it has understood.
TOptionsAndBody PartsOf(std::string_view Definition, const std::string& Head, std::string_view Source, bool IsProcedure,
                        const std::string& What) {
  if (!Definition.starts_with(Head))
    throw EDatabaseError(What + ": what the server says of it has another form than is known");
  Definition.remove_prefix(Head.size());
  std::string Quote = IsProcedure ? "$procedure" : "$function";
  while (Source.find(Quote) != std::string_view::npos) Quote += 'x';
  Quote += '$';
  const std::string Quoted = "AS " + Quote + std::string(Source) + Quote + "\n";
  TOptionsAndBody Result;
  if (Definition.ends_with(Quoted)) {
    Result = {Definition.substr(0, Definition.size() - Quoted.size()), Source};
  } else {
    std::size_t Begin = 0;
    while (Begin < Definition.size() && Definition[Begin] == ' ') Begin = Definition.find('\n', Begin) + 1;
    Result = {Definition.substr(0, Begin), Definition.substr(Begin)};
    while (Result.Body.ends_with('\n')) Result.Body.remove_suffix(1);
  }
  while (Result.Options.ends_with('\n')) Result.Options.remove_suffix(1);
  while (Result.Options.starts_with(' ')) Result.Options.remove_prefix(1);
  return Result;
}

}  // namespace

TDicProcedureDescription TPostgreSQLDefinitionReader::Procedure(const TTableInfo& Procedure) {
  const std::string What = Format("Cannot describe procedure '%s'", FullName(Procedure));
  TDescribing Describing(FSession, What);
  const TPostgreSQLResult Row =
      Describing.Ask("routine", RoutineStatement, {FSession.Dialect().SchemaOf(Procedure), Procedure.Name});
  if (Row.RowCount() != 1)
    throw EDatabaseError(
        Format("%s: %s", What, Row.RowCount() == 0 ? "there is none of that name" : "there are several of that name"));
  TDicProcedureDescription Result;
  Result.Name = Procedure.Name;
  Result.Schema = Procedure.Schema;
  Result.Comment = Row.Copy(0, 4);
  Result.Selects = Row.Boolean(0, 2);
  Result.Language = Row.Copy(0, 3);
  ReadParameters(Describing, Row.Copy(0, 0), Result);
  const bool IsProcedure = Row.Text(0, 1) == "p";
  std::string Head = Row.Copy(0, 6);
  if (!IsProcedure) Head += " RETURNS " + Row.Copy(0, 7) + "\n";
  Head += " LANGUAGE " + Row.Copy(0, 12) + "\n";
  const TOptionsAndBody Parts = PartsOf(Row.Text(0, 5), Head, Row.Text(0, 8), IsProcedure, What);
  std::string Options;
  if (!IsProcedure && Result.Result.empty()) Options = "RETURNS " + Row.Copy(0, 7);
  if (Result.Selects && Result.Result.empty() && Row.Boolean(0, 9))
    Result.Result.push_back(ParameterOf(Procedure.Name, Row.Integer(0, 10), Row.Copy(0, 11), false));
  if (!Parts.Options.empty()) Options.append(Options.empty() ? "" : " ").append(Parts.Options);
  TDicWords& Words = Result.Words["postgresql"];
  if (!Options.empty()) Words.Parts["Options"] = Options;
  Words.Lines = SplitLines(Parts.Body);
  return Result;
}

}  // namespace velkrund
