#include "standalone/drivers/sqlite/SQLiteScriptCheck.h"

#include <sqlite3.h>

#include <algorithm>
#include <iterator>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

constexpr const char* What = "Cannot read the statements of a script";

/// While it lives, statements that begin or end transactions, reach other databases or set something of the engine are
/// refused when they are read.
class TOnlyWithinTransaction {
 public:
  explicit TOnlyWithinTransaction(sqlite3* Database) : FDatabase(Database) {
    sqlite3_set_authorizer(FDatabase, &Decide, this);
  }
  TOnlyWithinTransaction(const TOnlyWithinTransaction&) = delete;
  TOnlyWithinTransaction& operator=(const TOnlyWithinTransaction&) = delete;
  ~TOnlyWithinTransaction() { sqlite3_set_authorizer(FDatabase, nullptr, nullptr); }

  bool HasRefused() const { return FRefused; }

 private:
  static int Decide(void* Self, int Action, const char* Name, const char*, const char*, const char*) {
    const bool Refuses = Action == SQLITE_TRANSACTION || Action == SQLITE_SAVEPOINT || Action == SQLITE_ATTACH ||
                         Action == SQLITE_DETACH || (Action == SQLITE_PRAGMA && !OnlyAsks(Name)) ||
                         // The one table of a PRAGMA that does something when it is read.
                         (Action == SQLITE_READ && sqlite3_stricmp(Name, "pragma_optimize") == 0);
    if (Refuses) static_cast<TOnlyWithinTransaction*>(Self)->FRefused = true;
    return Refuses ? SQLITE_DENY : SQLITE_OK;
  }

  /// Many others change the connection as soon as they are read, and some the file past the transaction.
  static bool OnlyAsks(std::string_view Pragma) {
    constexpr std::string_view Asking[] = {"foreign_key_check", "foreign_key_list", "index_info",  "index_list",
                                           "index_xinfo",       "integrity_check",  "quick_check", "table_info",
                                           "table_list",        "table_xinfo"};
    return std::find(std::begin(Asking), std::end(Asking), Pragma) != std::end(Asking);
  }

  sqlite3* const FDatabase;
  bool FRefused = false;
};

void TakeParameters(const TSQLiteStatement& Statement, std::vector<std::string>& Names) {
  for (int Place = 1; Place <= sqlite3_bind_parameter_count(Statement.Handle()); ++Place) {
    const char* const Name = sqlite3_bind_parameter_name(Statement.Handle(), Place);
    if (!Name || *Name == '?')
      throw EDatabaseError(std::string(What) +
                           ": a parameter needs a name, such as :A; statement: " + sqlite3_sql(Statement.Handle()));
    if (std::find(Names.begin(), Names.end(), Name + 1) == Names.end()) Names.emplace_back(Name + 1);
  }
}

}  // namespace

std::unique_ptr<TSQLiteStatement> NextSQLiteStatement(const TSQLiteHandle& Database, std::string_view& Script,
                                                      const std::string& Task, TSQLiteStatement::TUse Use) {
  const TOnlyWithinTransaction Refusals(Database);
  try {
    while (!Script.empty()) {
      auto Statement = std::make_unique<TSQLiteStatement>(Database, Script, Task, Use);
      if (Statement->Rest().size() == Script.size())  // the engine reads no further
        throw EDatabaseError(Task + ": there is a character U+0000 in it");
      Script = Statement->Rest();
      if (Statement->Handle()) return Statement;  // otherwise blanks and comments
    }
  } catch (const EDatabaseError& Error) {
    if (!Refusals.HasRefused()) throw;
    throw EDatabaseError(Task +
                             ": it runs in a transaction of its caller, and can neither begin nor end one, nor reach "
                             "other databases, nor set what a PRAGMA sets",
                         Error.Info());
  }
  return nullptr;
}

std::vector<std::string> CheckSQLiteScript(const TSQLiteHandle& Database, std::string_view Script) {
  std::vector<std::string> Names;
  bool IsEmpty = true;
  while (const auto Statement = NextSQLiteStatement(Database, Script, What)) {
    IsEmpty = false;
    TakeParameters(*Statement, Names);
  }
  if (IsEmpty) throw EDatabaseError(std::string(What) + ": there are none");
  return Names;
}

}  // namespace velkrund
