// Procedures that are tried by the command.

#include <gmock/gmock.h>
#include <signal.h>

#include "tests/cli/CommandTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

class TRunProcedureTest : public TCommandTest {
 protected:
  /// A database of SQLite with procedures in its catalogue.
  TRunProcedureTest() {
    Query("p.db",
          "CREATE TABLE T (N INTEGER PRIMARY KEY, S TEXT); INSERT INTO T VALUES (1, 'a'), (2, NULL), (3, '');"
          "CREATE TABLE velkrund_catalogue (version INTEGER NOT NULL, PRIMARY KEY (version));"
          "INSERT INTO velkrund_catalogue VALUES (1);"
          "CREATE TABLE velkrund_procedures (name_key TEXT NOT NULL, name TEXT NOT NULL, kind INTEGER NOT NULL, "
          "parameters TEXT NOT NULL, body TEXT NOT NULL, PRIMARY KEY (name_key))");
    Add("ROWS_FROM", true, "0 3 - - FIRST\n", "SELECT N, S AS \"a\tb\" FROM T WHERE N >= :FIRST ORDER BY N");
    Add("ADD_AND_LIST", true, "0 3 - - N\n0 10 - - S\n=''none''\n",
        "INSERT INTO T VALUES (:N, :S); SELECT count(*) AS C FROM T; UPDATE T SET S = ''x'' WHERE N < 3");
    Add("RAISE", false, "0 3 - - BY\n", "UPDATE T SET S = ''gone''; UPDATE T SET N = N + :BY");
    Add("TWICE", true, "", "SELECT 1 AS A; SELECT 2 AS B");
    Add("ENDS", false, "", "DELETE FROM T; COMMIT");
    Add("MANY", true, "",
        "WITH RECURSIVE R(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM R WHERE N < 300000) SELECT N FROM R");
    Add("ENDLESS", true, "", "WITH RECURSIVE R(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM R) SELECT N FROM R");
  }

  void Add(const std::string& Name, bool Selects, const std::string& Parameters, const std::string& Body) {
    Query("p.db", "INSERT INTO velkrund_procedures VALUES (lower('" + Name + "'), '" + Name + "', " +
                      (Selects ? "74" : "73") + ", '" + Parameters + "', '" + Body + "')");
  }

  TOutcome RunProcedure(TArguments More, const std::string& Url = "sqlite:p.db") {
    More.insert(More.begin(), {"database", "run-procedure", "-d", Url});
    return Run(More);
  }
  std::string Table() { return Query("p.db", "SELECT * FROM T"); }

  struct TMistake {
    TArguments Line;
    int ExitCode;
    const char* Says;
  };
  void CheckMistakes(const std::vector<TMistake>& Mistakes, const std::string& Url = "sqlite:p.db") {
    for (const auto& [Line, ExitCode, Says] : Mistakes) {
      const TOutcome Outcome = RunProcedure(Line, Url);
      EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Line);
      EXPECT_THAT(Outcome.Errors, HasSubstr(Says)) << Joined(Line);
    }
  }
};

TEST_F(TRunProcedureTest, RowsAreLinesWhateverIsInThem) {
  Query("p.db",
        "UPDATE T SET S = char(9, 92, 10, 13, 27) || 'Ж' || CAST(x'FF' AS TEXT) WHERE N = 1;"
        "INSERT INTO T VALUES (4, x'00FF')");
  const TOutcome Outcome = RunProcedure({"rows_from", "--param", "first=1"});
  EXPECT_EQ(Outcome.ExitCode, 0);
  EXPECT_EQ(Outcome.Output, "N\ta\\tb\n1\t\\t\\\\\\n\\r\\x1BЖ\\xFF\n2\t\\N\n3\t\n4\t\\x00\\xFF\n");
  EXPECT_THAT(Outcome.Errors, HasSubstr("ran ROWS_FROM: 4 rows, 0 rows changed"));
}

TEST_F(TRunProcedureTest, WhatItChangesIsCommittedOrTakenBackAsAWhole) {
  const std::string Before = Table();
  const TOutcome Dry = RunProcedure({"ADD_AND_LIST", "--param", "N=7", "--dry-run"});
  EXPECT_EQ(Dry.Output, "C\n4\n");
  EXPECT_THAT(Dry.Errors, HasSubstr("ran ADD_AND_LIST: 1 row, 3 rows changed\nnothing was changed"));
  EXPECT_EQ(Table(), Before);
  EXPECT_EQ(RunProcedure({"RAISE", "--param", "BY=1"}).ExitCode, 1) << "two rows with one key";
  EXPECT_EQ(Table(), Before);
  const TOutcome Done = RunProcedure({"RAISE", "--param", "BY=10"});
  EXPECT_EQ(Done.Output, "");
  EXPECT_THAT(Done.Errors, HasSubstr("ran RAISE: 6 rows changed"));
  EXPECT_EQ(RunProcedure({"ADD_AND_LIST", "--param", "N=1", "--null", "S"}).ExitCode, 0);
  EXPECT_EQ(Query("p.db", "SELECT * FROM T"), "1|x\n11|gone\n12|gone\n13|gone");
}

TEST_F(TRunProcedureTest, DocumentsHoldTheRowsAsValues) {
  const nlohmann::json Document =
      RunJson({"database", "run-procedure", "-d", "sqlite:p.db", "ROWS_FROM", "--param", "FIRST=2", "--json"});
  EXPECT_EQ(Document["columns"], nlohmann::json({"N", "a\tb"}));
  EXPECT_EQ(Document["rows"], nlohmann::json::parse(R"([[2, null], [3, ""]])"));
  EXPECT_EQ(Document["rowCount"], 2);
}

TEST_F(TRunProcedureTest, MistakesSayWhatThereIs) {
  const std::string Before = Table();
  CheckMistakes({
      {{"ROW_FROM"}, 1, "There is no procedure 'ROW_FROM'"},
      {{"ROW_FROM"}, 1, "did you mean 'ROWS_FROM'?"},
      {{"ROWS_FROM"}, 1, "no value is given for 'FIRST'; it takes FIRST"},
      {{"ROWS_FROM", "--param", "FRIST=1"}, 1, "it has no parameter 'FRIST': it takes FIRST; did you mean 'FIRST'?"},
      {{"ROWS_FROM", "--param", "FIRST=1", "--param", "first=2"}, 1, "its parameter 'FIRST' is given twice"},
      {{"ROWS_FROM", "--param", "FIRST=1", "--null", "FIRST"}, 1, "its parameter 'FIRST' is given twice"},
      {{"ROWS_FROM", "--param", "FIRST=one"}, 1, "'one' is no value for its parameter 'FIRST', which takes a whole"},
      {{"ROWS_FROM", "--param", "FIRST"}, 2, "--param 'FIRST' gives no value"},
      {{"TWICE", "--param", "A=1"}, 1, "it has no parameter 'A'; it takes none"},
      {{"TWICE"}, 1, "several of its statements yield rows"},
      {{"ENDS"}, 1, "can neither begin nor end one"},
      {{}, 2, "NAME"},
  });
  EXPECT_EQ(Table(), Before);
}

TEST_F(TRunProcedureTest, ManyRowsComeWholeAndAnEndlessOneCanBeStopped) {
  const TOutcome Many = RunProcedure({"MANY"});
  EXPECT_EQ(std::count(Many.Output.begin(), Many.Output.end(), '\n'), 300001);
  EXPECT_TRUE(Many.Output.ends_with("\n300000\n"));
  EXPECT_EQ(Shell("$V database run-procedure -d sqlite:p.db ENDLESS | head -n 1").Output, "N\n");
  const pid_t Process = Start({"database", "run-procedure", "-d", "sqlite:p.db", "ENDLESS"});
  usleep(500'000);
  kill(Process, SIGINT);
  EXPECT_EQ(Finish(Process).ExitCode, 3);
}

TEST_F(TRunProcedureTest, PostgreSQLRunsItsOwn) {
  TPostgreSQLDatabase Database;
  Database.Run(
      "CREATE TABLE t (n int PRIMARY KEY, s text); INSERT INTO t VALUES (1, 'a'), (2, NULL);"
      "CREATE FUNCTION rows_from(first int, plus numeric DEFAULT 0.5) RETURNS TABLE (n bigint, s text, b bytea, d "
      "numeric, r float8, k boolean) LANGUAGE sql AS 'SELECT t.n, t.s, ''\\x00ff''::bytea, t.n + plus, 1.5::float8, "
      "true FROM t WHERE t.n >= first ORDER BY t.n';"
      "CREATE FUNCTION many() RETURNS SETOF int LANGUAGE sql AS 'SELECT generate_series(1, 100000)';"
      "CREATE FUNCTION twice(int) RETURNS int LANGUAGE sql AS 'SELECT 2 * $1';"
      "CREATE FUNCTION clear() RETURNS void LANGUAGE sql AS 'DELETE FROM t';"
      "CREATE FUNCTION later(d date, u uuid) RETURNS date LANGUAGE sql AS 'SELECT d + 1';"
      "CREATE PROCEDURE put(n int, s text, OUT c bigint, INOUT e text DEFAULT 'e') LANGUAGE plpgsql AS "
      "'BEGIN INSERT INTO t VALUES (n, s); SELECT count(*) FROM t INTO c; e = e || ''!''; END';"
      "CREATE FUNCTION fires() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END'");
  const struct {
    TArguments Line;
    const char* Output;
    const char* Says;
  } Cases[] = {
      {{"ROWS_FROM", "--param", "first=1"},
       "n\ts\tb\td\tr\tk\n1\ta\t\\x00\\xFF\t1.5\t1.5\tTRUE\n2\t\\N\t\\x00\\xFF\t2.5\t1.5\tTRUE\n",
       "ran rows_from: 2 rows, 0 rows changed"},
      {{"rows_from", "--param", "plus=12345678901234567890.5", "--param", "first=2"},
       "n\ts\tb\td\tr\tk\n2\t\\N\t\\x00\\xFF\t12345678901234567892.5\t1.5\tTRUE\n",
       "1 row"},
      {{"twice", "--param", "1=21"}, "twice\n42\n", "1 row"},
      {{"later", "--param", "d=2024-02-28", "--null", "u"}, "later\n2024-02-29\n", "1 row"},
      {{"put", "--param", "n=3", "--null", "s", "--dry-run"}, "c\te\n3\te!\n", "1 row, 1 row changed"},
      {{"clear", "--dry-run"}, "", "ran clear: 2 rows changed"},
      {{"put", "--param", "n=3", "--param", "s=x\ty", "--param", "E="}, "c\te\n3\t!\n", "1 row changed"},
  };
  for (const auto& [Line, Output, Says] : Cases) {
    const TOutcome Outcome = RunProcedure(Line, Database.Url());
    EXPECT_EQ(Outcome.Output, Output) << Joined(Line) << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, HasSubstr(Says)) << Joined(Line);
  }
  EXPECT_EQ(Database.Rows("SELECT * FROM t ORDER BY n"), "1\ta\n2\t\\N\n3\tx\\ty\n");
  EXPECT_TRUE(RunProcedure({"many"}, Database.Url()).Output.ends_with("\n99999\n100000\n"));
  CheckMistakes(
      {
          {{"fires"}, 1, "it is a trigger function"},
          {{"row_from"}, 1, "did you mean 'rows_from'?"},
          {{"put", "--param", "c=1"}, 1, "it has no parameter 'c': it takes n, s, e"},
          {{"later", "--param", "d=2024-02-30", "--null", "u"}, 1, "'2024-02-30' is no value for its parameter 'd'"},
          {{"later", "--param", "d=2024-02-28", "--param", "u=x"}, 1, "its parameter 'u': invalid input syntax"},
          {{"put", "--param", "n=1", "--param", "s=x"}, 1, "Cannot run procedure 'put'"},
      },
      Database.Url());
}

}  // namespace
}  // namespace velkrund::tests
