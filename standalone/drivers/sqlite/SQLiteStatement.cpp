#include "standalone/drivers/sqlite/SQLiteStatement.h"

#include <sqlite3.h>

#include "standalone/drivers/sqlite/SQLiteWait.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

constexpr std::int64_t MaxStatementInMessage = 300;

TErrorCode CodeOf(int Code) {
  if (Code == SQLITE_CONSTRAINT_FOREIGNKEY) return TErrorCode::References;
  if (Code == SQLITE_CONSTRAINT_TRIGGER) return TErrorCode::TriggerRefused;
  switch (Code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return TErrorCode::DatabaseBusy;
    case SQLITE_READONLY:
      return TErrorCode::DatabaseReadOnly;
    case SQLITE_FULL:
      return TErrorCode::DiskFull;
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_CANTOPEN:
      return TErrorCode::DatabaseAccess;
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
      return TErrorCode::RowRefused;
    case SQLITE_TOOBIG:
      return TErrorCode::Value;
    default:
      return TErrorCode::Database;
  }
}

std::string_view Hint(int Code) {
  switch (Code & 0xFF) {
    case SQLITE_BUSY:
      return "; another program is using the database, and has done so for longer than busy_seconds";
    case SQLITE_READONLY:
      return "; its file or folder cannot be written";
    default:
      return {};
  }
}

}  // namespace

void RaiseSQLiteError(sqlite3* Database, std::string_view What, TErrorInfo Place, bool ShowStatement) {
  const int Code = sqlite3_extended_errcode(Database);
  const bool Stopped = (Code & 0xFF) == SQLITE_BUSY && TSQLiteWait::TakeStopped(Database);
  if (Stopped || Code == SQLITE_INTERRUPT) throw EAbort(Format("%s: cancelled", What));
  std::string Message = Format("%s: %s (SQLite error %d)%s", What, sqlite3_errmsg(Database), Code, Hint(Code));
  Place.Statement = Shortened(Place.Statement, MaxStatementInMessage);
  if (ShowStatement) Message += "; statement: " + Place.Statement;
  Place.Code = CodeOf(Code);
  Place.EngineCode = std::to_string(Code);
  throw EDatabaseError(Message, std::move(Place));
}

bool IsSQLiteMisunderstanding(const TErrorInfo& Error) {
  return (StrToInt32(Error.EngineCode).value_or(0) & 0xFF) == SQLITE_ERROR;
}

TSQLiteStatement::TSQLiteStatement(const TSQLiteHandle& Database, std::string_view Text, std::string What, TUse Use)
    : FDatabase(Database), FWhat(std::move(What)), FUse(Use) {
  FDatabase.Turn().TakeForStatement();
  if (IsKeptReady()) FHandle = FDatabase.Ready().Take(Text);
  if (FHandle) return;
  const char* Rest = nullptr;
  const unsigned Flags = Use == TUse::Often ? SQLITE_PREPARE_PERSISTENT : 0;
  if (sqlite3_prepare_v3(Database, Text.data(), static_cast<int>(Text.size()), Flags, &FHandle, &Rest) != SQLITE_OK)
    RaiseSQLiteError(Database, FWhat, {.Statement = std::string(Text)}, FUse == TUse::Foreign);
  FRest = Text.substr(static_cast<std::size_t>(Rest - Text.data()));
}

TSQLiteStatement::~TSQLiteStatement() {
  if (IsKeptReady() && FRest.empty() && FHandle)
    FDatabase.Ready().Give(Handle());
  else
    sqlite3_finalize(Handle());
}

TSQLiteStatement& TSQLiteStatement::Again(std::string What) {
  Reset();
  FWhat = std::move(What);
  return *this;
}

void TSQLiteStatement::Reset() { sqlite3_reset(Handle()); }

TSQLiteStatement& TSQLiteStatement::BindText(int Place, std::string_view Text) {
  if (sqlite3_bind_text64(Handle(), Place, Text.empty() ? "" : Text.data(), Text.size(), SQLITE_TRANSIENT,
                          SQLITE_UTF8) != SQLITE_OK)
    RaiseSQLiteError(FDatabase, FWhat);
  return *this;
}

TSQLiteStatement& TSQLiteStatement::BindInteger(int Place, std::int64_t Value) {
  if (sqlite3_bind_int64(FHandle, Place, Value) != SQLITE_OK) RaiseSQLiteError(FDatabase, FWhat);
  return *this;
}

bool TSQLiteStatement::Step() {
  FDatabase.Turn().TakeForStatement();
  const int Code = sqlite3_step(FHandle);
  if (Code == SQLITE_ROW) return true;
  if (Code != SQLITE_DONE)
    RaiseSQLiteError(FDatabase, FWhat, {.Statement = sqlite3_sql(FHandle)}, FUse == TUse::Foreign);
  return false;
}

std::int64_t TSQLiteStatement::Integer(int Column) const { return sqlite3_column_int64(FHandle, Column); }

std::string TSQLiteStatement::Text(int Column) const {
  const unsigned char* Bytes = sqlite3_column_text(FHandle, Column);
  const int Size = sqlite3_column_bytes(FHandle, Column);
  return Bytes ? std::string(reinterpret_cast<const char*>(Bytes), static_cast<std::size_t>(Size)) : std::string();
}

}  // namespace velkrund
