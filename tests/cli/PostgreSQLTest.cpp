#include <signal.h>

#include "tests/cli/ShopTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

class TPostgreSQLTest : public TShopTest {
 protected:
  /// The address's parts: host, port, name.
  std::string Part(const std::string& Keyword) {
    std::string Rows = Database.Rows(Keyword == "port" ? "SELECT inet_server_port()" : "SELECT current_database()");
    return Rows.substr(0, Rows.find('\n'));
  }

  TPostgreSQLDatabase Database;
};

TEST_F(TPostgreSQLTest, TheShopMovesInAndOut) {
  Database.Run(
      "CREATE TABLE \"A\" (\"ID\" integer PRIMARY KEY, \"NAME\" text, \"PRICE\" numeric(12,2), \"BIN\" bytea, \"AT\" "
      "timestamp); CREATE TABLE \"B\" (\"ID\" serial PRIMARY KEY, \"X\" double precision)");
  Database.Run("CREATE TABLE \"BARE\" (); INSERT INTO \"BARE\" DEFAULT VALUES");
  RunJson({"export", "table", "-d", Database.Url(), "-t", "BARE", "-o", "bare"});
  EXPECT_EQ(RunJson({"import", "table", "-d", Database.Url(), "-i", "bare", "--append"})["rows"], 1);
  Database.Run("DROP TABLE \"BARE\"");
  Query("shop.db", "UPDATE A SET AT = AT || '00' WHERE ID = 3");  // as every engine writes it
  RunJson({"export", "table", "-d", "sqlite:shop.db", "--all", "-o", "F"});
  RunJson({"import", "table", "-d", Database.Url(), "-i", "F"});
  const TOutcome Again = Run({"import", "table", "-d", Database.Url(), "-i", "F"});
  EXPECT_EQ(Again.ExitCode, 1);
  EXPECT_NE(Again.Errors.find("Table 'A' has 3 rows, table 'B' has 2 rows"), std::string::npos) << Again.Errors;

  // Reached as the engine's own tools reach it: by environment, service file, keywords; and by a name of ours.
  Write("services",
        "[shop]\nhost=127.0.0.1\nport=" + Part("port") + "\nuser=postgres\ndbname=" + Part("dbname") + "\n");
  Write("velkrund.toml", "[database.shop]\nurl = \"" + Database.Url() + "\"\n");
  const std::string Here = "PGHOST=127.0.0.1 PGUSER=postgres PGPORT=" + Part("port");
  const std::string Ways[] = {Here + " PGDATABASE=" + Part("dbname") + " $V export table -d postgresql:",
                              Here + " $V export table -d postgres:" + Part("dbname"),
                              "PGSERVICEFILE=services $V export table -d postgresql:service=shop",
                              "PGSERVICEFILE=services $V export table -d 'postgresql://?service=shop'",
                              "$V export table -d shop"};
  for (const std::string& Way : Ways) {
    Query("empty.db", "DELETE FROM A; DELETE FROM B");
    const TOutcome Out = Shell("rm -f G; " + Way + " --all -o G");
    EXPECT_EQ(Out.ExitCode, 0) << Way << Out.Errors;
    EXPECT_EQ(Run(ImportInto("table", {"-i", "G"})).ExitCode, 0);
    for (const char* Table : {"A", "B"}) EXPECT_EQ(Exact("empty.db", Table), Exact("shop.db", Table));
  }
}

TEST_F(TPostgreSQLTest, PasswordsComeFromTheirFileOrAVariableAndAreNotShown) {
  const std::string Role = "clerk_of_" + Part("dbname");
  Database.Run("CREATE ROLE " + Role + " LOGIN PASSWORD 'a:b/c@d?e#f'");
  Database.Run("DO $do$ BEGIN EXECUTE format('COPY (VALUES (%L), (%L)) TO %L', 'host all " + Role +
               " 127.0.0.1/32 md5', 'host all all 127.0.0.1/32 trust', current_setting('hba_file')); END $do$");
  Database.Run("SELECT pg_reload_conf()");
  const std::string Place = "127.0.0.1:" + Part("port") + "/" + Part("dbname");
  const std::string Info = "$V database info -v --json -d ";
  const std::string Url = "postgresql://" + Role + "@" + Place;
  EXPECT_TRUE(WaitUntil([&] { return Shell(Info + Url).ExitCode == 1; })) << "the server has not read its rules";
  Write("passwords", "*:*:*:" + Role + ":a\\:b/c@d?e#f\n");
  Write("velkrund.toml", "[database.shop]\nurl = \"postgresql://" + Role + ":${PW}@" + Place + "\"\n");
  const struct {
    std::string Line;
    int ExitCode;
  } Cases[] = {
      {"PGPASSFILE=passwords " + Info + Url, 0},
      {Info + "'" + Url + "?passfile=passwords'", 0},
      {"PW='a:b/c@d?e#f' " + Info + "shop", 0},
      {"PW='a:b/c@d?e#' " + Info + "shop", 1},
      {Info + "'postgresql://" + Role + ":a:b/c@d?e#f@" + Place + "'", 1},
      {Info + "'postgresql:host=127.0.0.1 password=a:b/c@d?e#f port=1'", 1},
      {Info + "'host=127.0.0.1 password=a:b/c@d?e#f'", 1},
      {Info + "'postgresql:" + Role + ":a:b/c@d?e#f@127.0.0.1'", 1},
      {Info + "'postgresql:/" + Role + ":a:b/c@d?e#f@127.0.0.1'", 1},
      {Info + "'postgresql://127.0.0.1:1/d?p%61ssword=a:b/c@d?e#f'", 1},
      {"$V database info 'postgresql://u:a:b/c@d?e#f@h'", 2},
  };
  for (const auto& [Line, ExitCode] : Cases) {
    const TOutcome Outcome = Shell("chmod 600 passwords; export PW=; " + Line);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Line << Outcome.Errors;
    if (Line.starts_with("PW='a:b/c@d?e#' ")) {
      EXPECT_NE(Outcome.Errors.find("password authentication failed for user \"" + Role), std::string::npos)
          << Outcome.Errors;
    }
    for (const char* Piece : {"b/c", "b%2Fc", "c@d", "e#"})
      EXPECT_EQ((Outcome.Output + Outcome.Errors).find(Piece), std::string::npos) << Outcome.Output << Outcome.Errors;
  }
  // A person is asked, and sees nothing of what is typed.
  Write("velkrund.toml", "");
  const TArguments Asking = {"database", "info", "-d", Url};
  const std::string Wrong = "password authentication failed for user";
  const struct {
    std::string Keys;
    int ExitCode;
    std::string Says;
  } Typed[] = {
      {"a:b/c@d?e#f\n", 0, "PostgreSQL"},
      {"geheim\na:b/c@d?e#f\n", 0, Wrong},
      {"geheim\ngeheim\ngeheim\n", 1, Wrong},
      {"\n", 1, "PGPASSWORD"},
      {"\x03", 3, "ancelled"},
  };
  for (const auto& [Keys, ExitCode, Says] : Typed) {
    SCOPED_TRACE(Keys);
    const TOutcome Outcome = RunOnTerminal(Asking, "Password for '", Keys);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Outcome.Output;
    EXPECT_NE(Outcome.Output.find(Says), std::string::npos) << Outcome.Output;
    for (const char* Piece : {"geheim", "b/c"})
      EXPECT_EQ(Outcome.Output.find(Piece), std::string::npos) << Outcome.Output;
  }
  const TOutcome Nobody = Run(Asking);
  EXPECT_EQ(Nobody.ExitCode, 1);
  EXPECT_NE(Nobody.Errors.find("PGPASSWORD"), std::string::npos) << Nobody.Errors;
}

TEST_F(TPostgreSQLTest, TheMissingIndexOfASlowDeletionIsNamed) {
  Database.Run(
      "CREATE TABLE a (i integer, k integer, PRIMARY KEY (i, k)); INSERT INTO a VALUES (1, 1);"
      "CREATE TABLE b (x integer, y integer, FOREIGN KEY (y, x) REFERENCES a); INSERT INTO b VALUES (1, 1)");
  RunJson({"export", "table", "-d", Database.Url(), "--all", "-o", "F"});
  const struct {
    std::string Index;
    bool IsNamed;
  } Cases[] = {
      {"", true},
      {"CREATE INDEX p ON b (x, y) WHERE x > 0", true},
      {"CREATE INDEX m ON b (x)", true},
      {"CREATE INDEX i ON b (x, y)", false},  // in whatever order
  };
  for (const auto& [Index, IsNamed] : Cases) {
    Database.Run(Index);
    const TOutcome Outcome =
        Run({"import", "table", "-d", Database.Url(), "-i", "F", "--replace", "--progress", "plain"});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_EQ(Outcome.Errors.find("'b', where an index on (y, x) is missing") != std::string::npos, IsNamed)
        << Index << Outcome.Errors;
  }
}

TEST_F(TPostgreSQLTest, DatabaseInfoShowsTablesAndNoPassword) {
  Database.Run(
      "CREATE SCHEMA \"my own\"; CREATE TABLE \"my own\".t AS SELECT 1; CREATE VIEW v AS SELECT 1;"
      "CREATE TABLE p (a integer) PARTITION BY LIST (a); CREATE TABLE q PARTITION OF p DEFAULT;"
      "INSERT INTO p VALUES (1), (2)");
  std::string Url = Database.Url();
  Url.replace(Url.find('@'), 1, ":secret@");
  const auto Info = RunJson({"database", "info", "-d", Url});
  EXPECT_EQ(Info["engine"], "PostgreSQL");
  EXPECT_EQ(Info.dump().find("secret"), std::string::npos) << Info.dump();
  std::string Found;
  for (const auto& Table : Info["tables"])
    Found += Table["name"].get<std::string>() + " " + Table.value("rows", nlohmann::json("?")).dump() + ";";
  EXPECT_EQ(Found, "p 2;v \"?\";my own.t 1;");
}

TEST_F(TPostgreSQLTest, AnImportThatEndsWhileTheServerWorksLeavesTheTable) {
  Database.Run("CREATE TABLE t AS SELECT i, repeat('x', 100000) AS s FROM generate_series(1, 60) AS i");
  RunJson({"export", "table", "-d", Database.Url(), "-t", "t", "-o", "F"});
  // At the last row the server waits, and looks whether the client is still there: it does not see that behind rows
  // that it has not read.
  Database.Run(
      "DO 'BEGIN EXECUTE format($q$ALTER DATABASE %I SET client_connection_check_interval = 10$q$, "
      "current_database()); END'");
  Database.Run(
      "DELETE FROM t; INSERT INTO t VALUES (7, 'before');"
      "CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS $f$ "
      "BEGIN PERFORM pg_sleep(60); RETURN NEW; END $f$");
  const auto Sessions = [&](const std::string& Condition) {
    return Database.Rows(
        "SELECT count(*) FROM pg_stat_activity WHERE application_name = 'velkrund' AND datname = "
        "current_database() " +
        Condition);
  };
  const std::string LastRow = "FOR EACH ROW WHEN (NEW.i = 60) EXECUTE FUNCTION f()";
  const struct {
    std::string Slow;
    int Signal;
    int ExitCode;
  } Cases[] = {
      {"CREATE TRIGGER g BEFORE INSERT ON t " + LastRow, SIGKILL, 128 + SIGKILL},
      {"CREATE TRIGGER g BEFORE INSERT ON t " + LastRow, SIGINT, 3},
      {"CREATE TRIGGER g BEFORE DELETE ON t EXECUTE FUNCTION f()", SIGINT, 3},
      {"CREATE CONSTRAINT TRIGGER g AFTER INSERT ON t DEFERRABLE INITIALLY DEFERRED " + LastRow, SIGINT, 3},
      {"BEGIN; LOCK TABLE t", SIGINT, 3},
  };
  for (const auto& [Slow, Signal, ExitCode] : Cases) {
    SCOPED_TRACE(Slow);
    Database.Run(Slow);
    const pid_t Process = Start({"import", "table", "-d", Database.Url(), "-i", "F", "--replace"});
    EXPECT_TRUE(WaitUntil([&] {
      return Sessions("AND wait_event = 'PgSleep'") == "1\n" ||
             Database.Rows("SELECT count(*) FROM pg_locks WHERE NOT granted") == "1\n";
    }));
    kill(Process, Signal);
    const TOutcome Outcome = Finish(Process);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Outcome.Errors;
    Database.Run("ROLLBACK");
    EXPECT_TRUE(WaitUntil([&] { return Sessions("") == "0\n"; }));
    EXPECT_EQ(Database.Rows("SELECT * FROM t"), "7\tbefore\n");
    Database.Run("DROP TRIGGER IF EXISTS g ON t");
  }
}

}  // namespace
}  // namespace velkrund::tests
