#include "standalone/drivers/postgresql/PostgreSQLConnecting.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "standalone/drivers/AddressSecrets.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLResult.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {
namespace {

using namespace std::chrono_literals;

constexpr auto BetweenLooks = 50ms;
constexpr int MostPasswords = 3;

struct TDefault {
  const char* Keyword;
  const char* Value;
};

/// What holds where nobody says otherwise: the client library would wait for minutes, or for ever.
constexpr TDefault Defaults[] = {
    {"connect_timeout", "30"},
    {"keepalives_idle", "60"},
    {"keepalives_interval", "10"},
    {"keepalives_count", "6"},
};
/// How long the server's system may leave what was sent unanswered. It counts too while the server itself takes nothing
/// because it waits for a lock: never shorter than that.
constexpr auto LeastUserTimeout = 300s;

std::string UserTimeout(const TConnectOptions& Options) {
  const auto Longest = std::clamp<std::chrono::milliseconds>(Options.BusyTime + 60s, LeastUserTimeout, 24h);
  return std::to_string(Longest.count());
}

/// A connection that is being made, on a thread of its own: looking a name up, for one, can neither be limited nor be
/// stopped. The thread has all that it needs, and may outlive whoever waits.
class TAttempt {
 public:
  static std::shared_ptr<TAttempt> Begin(std::vector<std::pair<std::string, std::string>> Parameters) {
    auto Result = std::make_shared<TAttempt>();
    std::thread([Result, Parameters = std::move(Parameters)] { Result->Run(Parameters); }).detach();
    return Result;
  }

  /// Null as long as it is being made.
  TPostgreSQLHandle WaitFor(std::chrono::milliseconds Time) {
    std::unique_lock Lock(FMutex);
    FEnd.wait_for(Lock, Time, [this] { return FConnection != nullptr; });
    return std::move(FConnection);
  }

 private:
  void Run(const std::vector<std::pair<std::string, std::string>>& Parameters) {
    std::vector<const char*> Keywords, Values;
    for (const auto& [Keyword, Value] : Parameters) {
      Keywords.push_back(Keyword.c_str());
      Values.push_back(Value.c_str());
    }
    Keywords.push_back(nullptr);
    Values.push_back(nullptr);
    TPostgreSQLHandle Made(PQconnectdbParams(Keywords.data(), Values.data(), 1));
    const std::lock_guard Lock(FMutex);
    FConnection = std::move(Made);
    FEnd.notify_all();
  }

  std::mutex FMutex;
  std::condition_variable FEnd;
  TPostgreSQLHandle FConnection;
};

/// What the client library goes by, where it has a value.
TConnectionParameters ParametersOf(pg_conn* Connection) {
  TConnectionParameters Result;
  const std::unique_ptr<PQconninfoOption, void (*)(PQconninfoOption*)> Options(PQconninfo(Connection),
                                                                               PQconninfoFree.Found());
  for (const PQconninfoOption* Option = Options.get(); Option && Option->keyword; ++Option)
    if (Option->val && *Option->val) Result[Option->keyword] = Option->val;
  return Result;
}

TPostgreSQLHandle Connect(const TPostgreSQLAddress& Address, const TConnectOptions& Options) {
  std::vector<std::pair<std::string, std::string>> Parameters = {
      {"dbname", Address.Info}, {"client_encoding", "UTF8"}, {"fallback_application_name", "velkrund"}};
  const TConnectionParameters Meant = MeantPostgreSQLParameters(Address.Info);
  for (const auto& [Keyword, Value] : Defaults)
    if (!Meant.contains(Keyword)) Parameters.emplace_back(Keyword, Value);
  if (!Meant.contains("tcp_user_timeout")) Parameters.emplace_back("tcp_user_timeout", UserTimeout(Options));
  if (!Address.Password.empty()) Parameters.emplace_back("password", Address.Password);
  const std::shared_ptr<TAttempt> Attempt = TAttempt::Begin(std::move(Parameters));
  for (;;) {
    if (TPostgreSQLHandle Made = Attempt->WaitFor(BetweenLooks)) return Made;
    if (Options.Canceled && Options.Canceled())
      throw EAbort(Format("Cannot open the database '%s': cancelled while connecting", Address.ShownName));
  }
}

/// The server's words, in whatever language, name the user.
bool IsWrongPassword(const pg_conn* Connection) {
  const char* const User = PQuser(Connection);
  return PQconnectionUsedPassword(Connection) != 0 && User &&
         std::string_view(PQerrorMessage(Connection)).find(User) != std::string_view::npos;
}

/// Whether there is another one to try.
bool AskForPassword(const pg_conn* Connection, TPostgreSQLAddress& Address, const TConnectOptions& Options) {
  const bool IsWrong = IsWrongPassword(Connection);
  // One that was not typed is somebody's mistake in a file, which typing does not put right.
  if (!Options.AskPassword || (PQconnectionNeedsPassword(Connection) == 0 && (!IsWrong || Address.Password.empty())))
    return false;
  const std::string Error = IsWrong
                                ? WithSecretsMasked(PostgreSQLErrorText("", Connection, TPostgreSQLResult()).substr(2),
                                                    Address.Info, Address.Password)
                                : "";
  const std::optional<std::string> Typed = Options.AskPassword(Address.ShownName, Error);
  if (!Typed || Typed->empty()) return false;
  Address.Password = *Typed;
  return true;
}

}  // namespace

void TFinishPostgreSQL::operator()(pg_conn* Connection) const { PQfinish(Connection); }

std::chrono::seconds PostgreSQLConnectTimeout(pg_conn* Connection) {
  const TConnectionParameters Parameters = ParametersOf(Connection);
  const auto Found = Parameters.find("connect_timeout");
  return std::chrono::seconds(Found == Parameters.end() ? 0 : StrToInt32(Found->second).value_or(0));
}

TConnectionParameters MeantPostgreSQLParameters(const std::string& Info) {
  // The library tells it of a connection alone; one that it refuses to make, for this word, is enough.
  const char* const Keywords[] = {"dbname", "sslmode", nullptr};
  const char* const Values[] = {Info.c_str(), "not to be made", nullptr};
  const TPostgreSQLHandle Unmade(PQconnectStartParams(Keywords, Values, 1));
  TConnectionParameters Result = ParametersOf(Unmade.get());
  Result.erase("sslmode");
  return Result;
}

TPostgreSQLHandle ConnectToPostgreSQL(TPostgreSQLAddress& Address, const TConnectOptions& Options) {
  TPostgreSQLHandle Made = Connect(Address, Options);
  for (int Asked = 0; PQstatus(Made.get()) != CONNECTION_OK; ++Asked) {
    if (Asked < MostPasswords && AskForPassword(Made.get(), Address, Options)) {
      Made = Connect(Address, Options);
      continue;
    }
    const bool NeedsPassword = PQconnectionNeedsPassword(Made.get()) != 0;
    std::string Message = Format(
        "Cannot open the database '%s'%s", Address.ShownName,
        WithSecretsMasked(PostgreSQLErrorText("", Made.get(), TPostgreSQLResult()), Address.Info, Address.Password));
    if (NeedsPassword)
      Message += "; give it in the variable PGPASSWORD, in the password file (~/.pgpass) or in the configuration";
    const bool OfLogin = NeedsPassword || IsWrongPassword(Made.get());
    throw EDatabaseError(Message, {.Code = OfLogin ? TErrorCode::DatabaseAccess : TErrorCode::Connection});
  }
  PQsetnonblocking(Made.get(), 1);
  return Made;
}

}  // namespace velkrund
