#include "standalone/drivers/postgresql/PostgreSQLResult.h"

#include "standalone/drivers/postgresql/Libpq.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::int64_t MaxStatementInMessage = 300;

struct TStateCode {
  std::string_view State;  // an SQLSTATE, or the class that it begins with
  TErrorCode Code;
};

/// The first that fits counts.
constexpr TStateCode StateCodes[] = {
    {"23503", TErrorCode::References},      {"23", TErrorCode::RowRefused},
    {"3D000", TErrorCode::DatabaseMissing}, {"42501", TErrorCode::DatabaseAccess},
    {"28", TErrorCode::DatabaseAccess},     {"25006", TErrorCode::DatabaseReadOnly},
    {"P0", TErrorCode::TriggerRefused},     {"55P03", TErrorCode::DatabaseBusy},
    {"40", TErrorCode::DatabaseBusy},       {"22", TErrorCode::Value},
    {"53200", TErrorCode::DatabaseLocks},   {"53100", TErrorCode::DiskFull},
    {"53300", TErrorCode::Connection},      {"57P", TErrorCode::Connection},
    {"08", TErrorCode::Connection},         {"42P01", TErrorCode::TableMissing},
    {"42703", TErrorCode::FieldMissing},
};

/// The client library's own messages have several lines, whose ends are ends of sentences.
std::string OneLine(std::string_view Text) {
  std::string Result;
  for (const char C : Trim(Text)) {
    if (C == '\n' && !Result.empty() && std::string_view(".:;,? ").find(Result.back()) == std::string_view::npos)
      Result += '.';
    const bool Blank = C == '\n' || C == '\t' || C == '\r' || C == ' ';
    if (!Blank)
      Result += C;
    else if (!Result.ends_with(' '))
      Result += ' ';
  }
  return Result;
}

/// What to do about an error, where the server does not say it.
std::string_view Advice(const pg_conn* Connection, const TPostgreSQLResult& Error) {
  const std::string_view Code = Error.Diagnostic(PG_DIAG_SQLSTATE);
  if (Code == "55P03") return "another session has held its lock for longer than busy_seconds";
  const char* Encoding = PQparameterStatus(Connection, "server_encoding");
  if (Code == "22021" && Encoding && std::string_view(Encoding) == "SQL_ASCII")
    return "the database has no encoding (SQL_ASCII), and these bytes, of a value or a name, are not UTF-8: rename "
           "what "
           "has such a name, export a view that converts such values, or convert the database";
  // The words are in the server's language, the function's name is not.
  if (Error.Diagnostic(PG_DIAG_SOURCE_FUNCTION) == "check_enable_rls")
    return "connect as the table's owner, or as a role with BYPASSRLS, which see every row";
  return {};
}

void AppendRemark(std::string& Message, std::string_view Remark) {
  while (Remark.ends_with('.')) Remark.remove_suffix(1);
  if (!Remark.empty()) Message += Format("; %s", OneLine(Remark));
}

}  // namespace

void TPostgreSQLResult::TClear::operator()(pg_result* Result) const { PQclear(Result); }

int TPostgreSQLResult::RowCount() const { return PQntuples(FResult.get()); }
int TPostgreSQLResult::ColumnCount() const { return PQnfields(FResult.get()); }

std::string_view TPostgreSQLResult::Text(int Row, int Column) const {
  return {PQgetvalue(FResult.get(), Row, Column), static_cast<std::size_t>(PQgetlength(FResult.get(), Row, Column))};
}

std::int64_t TPostgreSQLResult::Integer(int Row, int Column) const { return StrToInt64(Text(Row, Column)).value_or(0); }

std::string_view TPostgreSQLResult::Tag() const { return FResult ? PQcmdStatus(FResult.get()) : ""; }

std::int64_t TPostgreSQLResult::TagCount() const {
  return FResult ? StrToInt64(PQcmdTuples(FResult.get())).value_or(0) : 0;
}

bool TPostgreSQLResult::IsError() const {
  switch (PQresultStatus(FResult.get())) {
    case PGRES_BAD_RESPONSE:
    case PGRES_FATAL_ERROR:
      return true;
    default:
      return false;
  }
}

std::string_view TPostgreSQLResult::Diagnostic(int Field) const {
  const char* Text = PQresultErrorField(FResult.get(), Field);
  return Text ? Text : "";
}

std::string PostgreSQLErrorText(std::string_view What, const pg_conn* Connection, const TPostgreSQLResult& Result,
                                std::string_view Statement) {
  std::string_view Words = Result.Diagnostic(PG_DIAG_MESSAGE_PRIMARY);
  if (Words.empty()) Words = PQresultErrorMessage(Result.Handle());
  if (Words.empty()) Words = PQerrorMessage(Connection);
  std::string Message = Format("%s: %s", What, OneLine(Words));
  if (const std::string_view Code = Result.Diagnostic(PG_DIAG_SQLSTATE); !Code.empty())
    Message += Format(" (PostgreSQL error %s)", Code);
  AppendRemark(Message, Result.Diagnostic(PG_DIAG_MESSAGE_DETAIL));
  AppendRemark(Message, Result.Diagnostic(PG_DIAG_MESSAGE_HINT));
  AppendRemark(Message, Advice(Connection, Result));
  if (!Statement.empty()) Message += "; statement: " + Shortened(Statement, MaxStatementInMessage);
  return Message;
}

TErrorInfo PostgreSQLErrorInfo(const TPostgreSQLResult& Result, std::string_view Statement) {
  TErrorInfo Info{.Code = TErrorCode::Database,
                  .Table = std::string(Result.Diagnostic(PG_DIAG_TABLE_NAME)),
                  .Column = std::string(Result.Diagnostic(PG_DIAG_COLUMN_NAME)),
                  .EngineCode = std::string(Result.Diagnostic(PG_DIAG_SQLSTATE)),
                  .Statement = Shortened(Statement, MaxStatementInMessage)};
  if (Info.EngineCode.empty()) Info.Code = TErrorCode::Connection;
  for (const auto& [State, Code] : StateCodes) {
    if (!Info.EngineCode.starts_with(State)) continue;
    Info.Code = Code;
    break;
  }
  return Info;
}

std::string PostgreSQLNoticeText(const pg_result* Notice) { return OneLine(PQresultErrorMessage(Notice)); }

}  // namespace velkrund
