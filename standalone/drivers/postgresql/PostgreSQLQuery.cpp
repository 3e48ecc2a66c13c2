// A COPY takes no parameters, and it is what reads quickest: values stand in the text as literals, with the types that
// such values have where a person writes them. The text of a query is read alone first, for its columns and for its
// own errors; its rows are then those of a table that it is in the FROM of, so that columns can go through functions
// that make texts of them, and whatever is no query is refused.

#include "standalone/drivers/postgresql/PostgreSQLQuery.h"

#include <algorithm>

#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLCursor.h"
#include "standalone/drivers/postgresql/PostgreSQLNames.h"
#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr const char* OnlyQueries = "only SELECT, VALUES, TABLE, and WITH before a SELECT are queries";

/// Empty: the engine takes it for what its place needs.
std::string_view TypeOfInteger(const TKvVariant& Value) {
  if (Value.IsNull() || (Value.Kind() != TKvKind::UInt64 && HoldsInteger(TKvKind::Integer, Value.AsInteger())))
    return "int4";
  if (Value.Kind() != TKvKind::UInt64 || Value.AsInteger() >= 0) return "int8";
  return "numeric";
}

std::string_view TypeOf(TKvKind Kind, const TKvVariant& Value) {
  if (IsIntegerKind(Kind) || Kind == TKvKind::UInt64) return TypeOfInteger(Value);
  if (IsRealKind(Kind)) return "float8";
  if (IsBooleanKind(Kind)) return "bool";
  switch (Kind) {
    case TKvKind::SysDate:
      return "date";
    case TKvKind::SysTime:
      return "time";
    case TKvKind::DateTime:
      return "timestamp";
    case TKvKind::Currency:
      return "numeric";
    case TKvKind::Bytes:
      return "bytea";
    default:
      return {};
  }
}

/// Between brackets, so that it stays by itself whatever stands beside it.
std::string LiteralOf(const TQueryParameter& Parameter, const TCodePage& CodePage, const std::string& What) {
  const TKvVariant& Value = Parameter.Value;
  std::string Text;
  if (IsAnsiKind(Value.Kind())) {
    CodePage.Decode(Value.AsText(), Text);
  } else if (Value.Kind() == TKvKind::Bytes) {
    Text = "\\x";
    AppendHex(Text, Value.AsText());
  } else {
    Value.AppendAsText(Text);
  }
  if (Text.find('\0') != std::string::npos)
    throw EDatabaseError(Format("%s: its parameter '%s': the engine has no character U+0000", What, Parameter.Name));
  const std::string_view Type = TypeOf(Value.IsNull() ? Parameter.DataType : Value.Kind(), Value);
  std::string Result = "(" + (Value.IsNull() ? "NULL" : QuotePostgreSQLText(Text));
  if (!Type.empty()) Result += Format("::pg_catalog.%s", Type);
  return Result += ')';
}

void CheckIsQuery(const TQueryText& Text) {
  const std::string_view First = Text.FirstWord();
  for (const std::string_view Word : {"SELECT", "VALUES", "TABLE", "WITH", "("})
    if (SameAsciiWord(First, Word)) return;
  throw EDatabaseError(Format("%s: %s", Text.Failed(), OnlyQueries));
}

std::vector<TPostgreSQLQueryColumn> ColumnsOf(const TPostgreSQLResult& Described, const std::string& What) {
  std::vector<TPostgreSQLQueryColumn> Result;
  const PGresult* const Answer = Described.Handle();
  for (int Column = 0; Column < PQnfields(Answer); ++Column)
    Result.push_back({PQfname(Answer, Column), PQftype(Answer, Column), PQfmod(Answer, Column)});
  if (Result.empty()) throw EDatabaseError(What + ": it yields no rows with columns");
  return Result;
}

std::string SelectText(const std::string& Statement, const std::vector<TPostgreSQLColumn>& Columns) {
  std::string Values, Names;
  for (const TPostgreSQLColumn& Column : Columns) {
    const char* const Separator = Names.empty() ? "" : ", ";
    Values += Separator + PostgreSQLValueOf(Column);
    Names += Separator + QuoteStandardName(Column.Info.Name);
  }
  // The line ends a comment behind the statement.
  return "SELECT " + Values + " FROM (" + Statement + "\n) AS T (" + Names + ")";
}

std::unique_ptr<TCursor> OpenCursor(TPostgreSQLSource Source) {
  if (!Source.OnlyReads) {
    Source.Statement = "COPY (" + Source.Statement + ") TO STDOUT (FORMAT binary)";
    return std::make_unique<TPostgreSQLCopyCursor>(std::move(Source));
  }
  const std::unique_ptr<TPostgreSQLReadOnly> Part = std::move(Source.Reading);
  auto Result = std::make_unique<TPostgreSQLFetchCursor>(std::move(Source));
  Part->Keep();
  return Result;
}

}  // namespace

TQueryRows OpenPostgreSQLQuery(TPostgreSQLSession& Session, const TQueryText& Text,
                               std::span<const TQueryParameter> Parameters) {
  const std::string What = Text.Failed();
  CheckIsQuery(Text);
  const std::string Statement =
      Text.With([&](std::size_t Index) { return LiteralOf(Parameters[Index], Session.CodePage(), What); });
  TPostgreSQLSource Source{Session, What, "a query", {}, {}};
  // Beside a COPY nothing can be written, which the caller may want to do in its own transaction.
  Source.OnlyReads = Session.InTransaction() && !Session.OnlyReads();
  if (!Source.OnlyReads) Session.LetGoOfLocks(What);
  Source.Reading = std::make_unique<TPostgreSQLReadOnly>(Session, What);
  const std::vector<TPostgreSQLQueryColumn> Answer = ColumnsOf(Session.Describe(What, Statement), What);
  const std::vector<TPostgreSQLColumn> Columns = ReadPostgreSQLColumns(Session, Answer, What);
  const TPostgreSQLMoney Money = ReadPostgreSQLMoney(Session, Columns);
  for (const TPostgreSQLColumn& Column : Columns) Source.Decoders.emplace_back(Column, Money);
  Source.Statement = SelectText(Statement, Columns);
  TQueryRows Result;
  for (std::size_t I = 0; I < Columns.size(); ++I) {
    Result.Columns.push_back(Columns[I].Info);
    Result.Columns.back().Name = Answer[I].Name;
  }
  try {
    Result.Cursor = OpenCursor(std::move(Source));
  } catch (const EDatabaseError& Error) {
    // The server has read it alone without complaint.
    const std::string& Code = Error.Info().EngineCode;
    if (Code != "42601" && Code != "0A000") throw;
    throw EDatabaseError(Format("%s; %s", Error.what(), OnlyQueries), Error.Info());
  }
  return Result;
}

}  // namespace velkrund
