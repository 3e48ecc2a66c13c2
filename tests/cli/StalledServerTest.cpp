#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <thread>

#include "tests/cli/CommandTest.h"
#include "tests/support/Proxy.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

using namespace std::chrono_literals;
using TFault = TProxy::TFault;

/// A command, and where it is when the server falls silent: "$" is the database's address, through the proxy.
struct TMoment {
  std::string Name;
  TArguments Command;
  std::string At = {};     // the statement that the server does not get
  std::int64_t After = 0;  // or after how many bytes
  int WhenCut = 1;         // what it ends with when the connection is cut there
};

void PrintTo(const TMoment& Moment, std::ostream* Output) { *Output << Moment.Name; }

/// Rows enough that they do not fit into what systems and libraries hold between two programs.
constexpr const char* Tables =
    "CREATE TABLE t (i integer PRIMARY KEY, s text); "
    "INSERT INTO t SELECT n, repeat(md5(n::text), 30) FROM generate_series(1, 20000) AS n; "
    "CREATE TABLE u (i integer PRIMARY KEY, s text); "
    "CREATE FUNCTION f() RETURNS SETOF t LANGUAGE sql AS 'SELECT * FROM t';";

class TStalledServerTest : public TCommandTest {
 protected:
  TStalledServerTest() { Database.Run(Tables); }

  int ServerPort() { return std::stoi(Database.Rows("SELECT inet_server_port()")); }
  std::string Address(int Port) const {
    std::string Result = Database.Url();
    const std::size_t Colon = Result.rfind(':');
    return Result.replace(Colon + 1, Result.find('/', Colon) - Colon - 1, std::to_string(Port));
  }
  static TArguments With(TArguments Command, const std::string& Address) {
    for (std::string& Word : Command)
      if (Word == "$") Word = Address;
    return Command;
  }
  /// All that is in the database.
  std::string State() {
    return Database.Rows(
        "SELECT (SELECT md5(string_agg(t::text, ',' ORDER BY i)) FROM t), (SELECT count(*) FROM u), "
        "(SELECT string_agg(concat(relname, oid), ',' ORDER BY oid) FROM pg_class WHERE relnamespace = "
        "'public'::regnamespace)");
  }
  bool SessionsEnd() {
    return WaitUntil([&] {
      return Database.Rows(
                 "SELECT count(*) FROM pg_stat_activity WHERE application_name = 'velkrund' AND datname = "
                 "current_database()") == "0\n";
    });
  }
  /// Sends the signal; what became of the process, which may take two seconds.
  TOutcome Stopped(pid_t Process, int Signal = SIGINT) {
    const auto Start = std::chrono::steady_clock::now();
    kill(Process, Signal);
    const TOutcome Result = Finish(Process);
    EXPECT_LT(std::chrono::steady_clock::now() - Start, 2s) << Result.Errors;
    return Result;
  }
  /// What the commands need: files, and a table to be made anew.
  void Prepare() {
    const std::string Url = Database.Url();
    RunJson({"export", "table", "-d", Url, "-t", "t", "-o", "F"});
    Query("shop.db", "CREATE TABLE u (i INTEGER PRIMARY KEY, s TEXT); INSERT INTO u VALUES (1, 'x')");
  }

  TPostgreSQLDatabase Database;
};

class TStalledServerPostgreSQLTest : public TStalledServerTest, public testing::WithParamInterface<TMoment> {};

const TMoment Moments[] = {
    {"Connecting", {"database", "info", "-d", "$"}, "", 0},
    {"Settings", {"database", "info", "-d", "$"}, "set_config"},
    {"Info", {"database", "info", "-d", "$"}, "count(*)", 0, 0},  // it tells what it knows, and the error beside
    {"ExportByCopy", {"export", "table", "-d", "$", "-t", "t", "-o", "G"}, "", 2'000'000},
    {"ExportByQuery", {"export", "query", "-d", "$", "--sql", "SELECT * FROM t", "-o", "G"}, "", 2'000'000},
    {"ImportByCopy", {"import", "table", "-d", "$", "-i", "F", "-t", "u"}, "", 2'000'000},
    {"Emptying", {"import", "table", "-d", "$", "-i", "F", "--replace"}, "DELETE FROM"},
    {"Locking", {"import", "table", "-d", "$", "-i", "F", "--replace"}, "LOCK TABLE"},
    {"CopyInto", {"copy", "table", "--from", "sqlite:shop.db", "--to", "$", "-t", "u"}, "COPY "},
    {"CopyOutOf",
     {"copy", "table", "--from", "$", "--to", "sqlite:shop.db", "-t", "t", "--to-table", "u", "--replace"},
     "",
     2'000'000},
    {"Adopt", {"dictionary", "adopt", "-d", "$", "--all"}, "velkrund_structures"},
    {"Languages", {"languages", "add", "-d", "$", "German"}, "CREATE TABLE"},
    {"Resources", {"resources", "list", "-d", "$"}, "velkrund_"},
    {"Procedure", {"database", "run-procedure", "-d", "$", "f"}, "", 2'000'000},
};

INSTANTIATE_TEST_SUITE_P(Each, TStalledServerPostgreSQLTest, testing::ValuesIn(Moments),
                         [](const auto& Case) { return Case.param.Name; });

TEST_P(TStalledServerPostgreSQLTest, IsLetGoWithinTwoSecondsOfASignalAndLeavesTheDatabase) {
  const TMoment& Moment = GetParam();
  Prepare();
  const std::string Before = State();
  {
    TProxy Proxy(ServerPort(), {TFault::Stall, Moment.At, Moment.After});
    const pid_t Process = Start(With(Moment.Command, Address(Proxy.Port())));
    ASSERT_TRUE(WaitUntil([&] { return Proxy.Happened(); }));
    std::this_thread::sleep_for(200ms);
    const TOutcome Outcome = Stopped(Process);
    EXPECT_EQ(Outcome.ExitCode, 3) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find("ancelled"), std::string::npos) << Outcome.Errors;
  }
  EXPECT_TRUE(SessionsEnd());
  EXPECT_EQ(State(), Before);
}

TEST_P(TStalledServerPostgreSQLTest, ThatCutsTheConnectionIsAnErrorAndLeavesTheDatabase) {
  const TMoment& Moment = GetParam();
  Prepare();
  const std::string Before = State();
  const TProxy Proxy(ServerPort(), {TFault::Cut, Moment.At, Moment.After});
  const TOutcome Outcome = Run(With(Moment.Command, Address(Proxy.Port())));
  EXPECT_TRUE(Proxy.Happened());
  EXPECT_EQ(Outcome.ExitCode, Moment.WhenCut) << Outcome.Errors;
  EXPECT_TRUE(SessionsEnd());
  EXPECT_EQ(State(), Before);
}

TEST_F(TStalledServerTest, PostgreSQLIsWaitedForWithinLimitsWithoutASignal) {
  for (const char* const At : {"", "set_config"}) {
    const TProxy Proxy(ServerPort(), {TFault::Stall, At, 0});
    const auto Start = std::chrono::steady_clock::now();
    const TOutcome Outcome = Run({"database", "info", "-d", Address(Proxy.Port()) + "?connect_timeout=2"});
    EXPECT_EQ(Outcome.ExitCode, 1) << At << Outcome.Errors;
    EXPECT_LT(std::chrono::steady_clock::now() - Start, 5s) << At;
  }
  // One that is only slow is no fault.
  const TProxy Slow(ServerPort(), {TFault::Delay, "", 0});
  EXPECT_EQ(Run({"database", "info", "-d", Address(Slow.Port())}).ExitCode, 0);
  EXPECT_TRUE(Slow.Happened());
}

TEST_F(TStalledServerTest, PostgreSQLIsAskedWhatBecameOfACommitUntilTheSecondSignal) {
  Prepare();
  const std::string Before = State();
  {
    const TProxy Proxy(ServerPort(), {TFault::Stall, "COMMIT", 0});
    const pid_t Process =
        Start({"import", "table", "-d", Address(Proxy.Port()), "-i", "F", "--replace", "--progress", "plain"});
    ASSERT_TRUE(WaitUntil([&] { return Proxy.Happened(); }));
    kill(Process, SIGINT);
    EXPECT_TRUE(WaitUntil([&] { return Read(".captured/err").find("answer the commit") != std::string::npos; }));
    EXPECT_EQ(Stopped(Process).ExitCode, 128 + SIGINT);
  }
  EXPECT_TRUE(SessionsEnd());
  EXPECT_EQ(State(), Before);
}

// The server's system still answers, the process that works for us does not.
TEST_F(TStalledServerTest, PostgreSQLWhoseProcessStandsStillIsLetGo) {
  Prepare();
  Database.Run("CREATE FUNCTION g() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN PERFORM pg_sleep(60); RETURN new; END'");
  Database.Run("CREATE TRIGGER g BEFORE INSERT ON u FOR EACH STATEMENT EXECUTE FUNCTION g()");
  const std::string Before = State();
  std::string Worker;
  const pid_t Process = Start({"import", "table", "-d", Database.Url(), "-i", "F", "-t", "u"});
  ASSERT_TRUE(WaitUntil([&] {
    Worker = Database.Rows(
        "SELECT pid FROM pg_stat_activity WHERE wait_event = 'PgSleep' AND datname = "
        "current_database()");
    return !Worker.empty();
  }));
  kill(std::stoi(Worker), SIGSTOP);
  EXPECT_EQ(Stopped(Process).ExitCode, 3);
  kill(std::stoi(Worker), SIGCONT);
  EXPECT_TRUE(SessionsEnd());
  EXPECT_EQ(State(), Before);
}

}  // namespace
}  // namespace velkrund::tests
