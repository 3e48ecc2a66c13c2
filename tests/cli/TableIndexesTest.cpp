#include "tests/cli/CommandTest.h"
#include "tests/roundtrip/TestDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

/// A table with indexes of every kind on either engine, and files with rows for it. What was made behind the table
/// "last" was made by the command.
class TTableIndexesTest : public TCommandTest, public testing::WithParamInterface<const char*> {
 protected:
  bool IsServer() const { return GetParam() == std::string("postgresql"); }
  TTestDatabase Open(const std::string& Name) { return IsServer() ? PostgreSQLDatabase() : SQLiteDatabase(Path(Name)); }

  /// Rows: 20,000 are many.
  static std::string Filled(int Rows) {
    return Format(
        "INSERT INTO t SELECT n, n %% 7, 'Name ' || n, 'a text that makes a row of about a hundred bytes, "
        "or a few more than that, so that the file becomes large' FROM (WITH RECURSIVE r(n) AS (SELECT 1 "
        "UNION ALL SELECT n + 1 FROM r WHERE n < %d) SELECT n FROM r) q;",
        Rows);
  }
  void Make(const TTestDatabase& Database, const std::string& More) const {
    Database.Run(
        "DROP TABLE IF EXISTS t; DROP TABLE IF EXISTS last;"
        "CREATE TABLE t (i integer PRIMARY KEY, a integer, b text, c text);"
        "CREATE INDEX early ON t (c, a); CREATE UNIQUE INDEX single ON t (i, a);" +
        std::string(IsServer() ? "CREATE INDEX said ON t (c); COMMENT ON INDEX said IS 'why';"
                                 "CREATE INDEX marked ON t (a); ALTER TABLE t CLUSTER ON marked;"
                                 "CREATE INDEX aimed ON t ((a + 1)); ALTER INDEX aimed ALTER 1 SET STATISTICS 7;"
                                 "CREATE INDEX one ON t (a DESC NULLS LAST, b COLLATE \"C\") INCLUDE (c) WITH "
                                 "(fillfactor = 70) WHERE a > 1; CREATE INDEX \"Two \"\"2\"\"\" ON t USING "
                                 "hash (b); CREATE INDEX three ON t (lower(b) text_pattern_ops);"
                               : "CREATE INDEX one ON t (a DESC, b COLLATE NOCASE) /* why */ WHERE a > 1;"
                                 "CREATE INDEX \"Two \"\"2\"\"\" ON t (b); CREATE INDEX three ON t (lower(b));"
                                 "INSERT INTO t VALUES (1, 2, 'x', 'y'); ANALYZE; DELETE FROM t;") +
        "CREATE TABLE last (i integer);" + More);
  }
  /// All that is known of the indexes, the values that the planner has found in them among it.
  std::string Indexes() const {
    return IsServer() ? Target.Text(
                            "SELECT pg_get_indexdef(indexrelid), indisclustered, obj_description(indexrelid), "
                            "(SELECT string_agg(attstattarget::text, ' ' ORDER BY attnum) FROM pg_attribute "
                            "WHERE attrelid = indexrelid) FROM pg_index WHERE indrelid = 't'::regclass ORDER BY 1")
                      : Target.Text("SELECT name, sql FROM sqlite_schema WHERE type = 'index' ORDER BY 1") +
                            Target.Text("SELECT * FROM sqlite_stat1 ORDER BY 1, 2");
  }
  std::string Made() const {
    std::string Result =
        Target.Text(IsServer() ? "SELECT relname FROM pg_class WHERE relkind = 'i' AND relnamespace = "
                                 "'public'::regnamespace AND oid > 'last'::regclass ORDER BY oid"
                               : "SELECT name FROM sqlite_schema WHERE type = 'index' AND rowid > (SELECT rowid FROM "
                                 "sqlite_schema WHERE name = 'last') ORDER BY rowid");
    std::replace(Result.begin(), Result.end(), '\n', ' ');
    return Result;
  }
  std::string Count() const { return Target.Text("SELECT count(*) FROM t"); }
  void Export(const std::string& File, int Rows) {
    Make(Source, Filled(Rows));
    const TOutcome Outcome = Run({"export", "table", "-d", Source.Url, "-t", "t", "-o", File});
    ASSERT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  }
  TOutcome Import(const std::string& File, const TArguments& Options) {
    TArguments Line = {"import", "table", "-d", Target.Url, "-i", File};
    Line.insert(Line.end(), Options.begin(), Options.end());
    return Run(Line);
  }

  TTestDatabase Source = Open("source.db"), Target = Open("target.db");
};

INSTANTIATE_TEST_SUITE_P(Engines, TTableIndexesTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

constexpr const char* All = "one Two \"2\" three ";

TEST_P(TTableIndexesTest, AreMadeAgainJustAsTheyWereWhereThatPays) {
  const std::string Trigger = IsServer() ? "CREATE OR REPLACE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN "
                                           "RETURN NEW; END'; CREATE TRIGGER g BEFORE INSERT ON t FOR EACH ROW EXECUTE "
                                           "FUNCTION f();"
                                         : "CREATE TRIGGER g AFTER INSERT ON t BEGIN SELECT 1; END;";
  const std::string Row = "INSERT INTO t VALUES (0, 0, '', '');";
  const struct {
    std::string InTarget, File;
    TArguments Options;
    std::string Made, Says;
  } Cases[] = {
      {"", "many.eif", {}, All, ""},
      {"", "few.eif", {}, "", ""},
      {"", "few.eif", {"--indexes", "rebuild"}, All, ""},
      {"", "many.eif", {"--indexes", "keep"}, "", ""},
      {Row, "many.eif", {"--append"}, "", ""},
      {Row, "many.eif", {"--replace"}, "", ""},
      {Row, "many.eif", {"--append", "--indexes", "rebuild"}, All, ""},
      {Trigger, "many.eif", {}, "", ""},
      {Trigger, "many.eif", {"--indexes", "rebuild"}, "", "kept up row by row: triggers fire"},
      {Trigger, "many.eif", {"--triggers", "off"}, All, ""},
  };
  Export("many.eif", 20'000);
  Export("few.eif", 20);
  for (const auto& [InTarget, File, Options, Expected, Says] : Cases) {
    Make(Target, InTarget);
    const std::string Before = Indexes();
    const TOutcome Outcome = Import(File, Options);
    EXPECT_EQ(Outcome.ExitCode, 0) << File << Joined(Options) << Outcome.Errors;
    EXPECT_EQ(Made(), Expected) << File << Joined(Options) << InTarget;
    EXPECT_EQ(Indexes(), Before) << File << Joined(Options);
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
  }
  Make(Target, "");
  const TOutcome Copied = Run({"copy", "table", "--from", Source.Url, "--to", Target.Url, "-t", "t"});
  EXPECT_EQ(Copied.ExitCode, 0) << Copied.Errors;
  EXPECT_EQ(Made(), "") << "few rows";
}

TEST_P(TTableIndexesTest, ComeWithACopyOfManyRows) {
  Make(Source, Filled(20'000));
  Make(Target, "");
  const std::string Before = Indexes();
  const TOutcome Copied = Run({"copy", "table", "--from", Source.Url, "--to", Target.Url, "-t", "t"});
  EXPECT_EQ(Copied.ExitCode, 0) << Copied.Errors;
  EXPECT_EQ(Made(), All);
  EXPECT_EQ(Indexes(), Before);
  EXPECT_EQ(Count(), "20000\n");
}

TEST_P(TTableIndexesTest, AreThereAfterAFailure) {
  Export("many.eif", 20'000);
  // The last record's value; an expression that cannot be computed of it.
  const std::string Check = "CHECK (b <> 'Name 20000')";
  const std::string Division = IsServer() ? "CREATE INDEX four ON t ((10 / (i - 20000)));"
                                          : "CREATE INDEX four ON t (json_extract(CASE i WHEN 20000 THEN '{' ELSE '1' "
                                            "END, '$'));";
  Make(Target, "DROP TABLE t; CREATE TABLE t (i integer PRIMARY KEY, a integer, b text " + Check +
                   ", c text); CREATE INDEX one ON t (a);");
  EXPECT_NE(Import("many.eif", {}).Errors.find("record 20000"), std::string::npos);
  EXPECT_EQ(Target.Text("SELECT count(*) FROM t"), "0\n");
  Make(Target, Division);
  const std::string Before = Indexes();
  const TOutcome Outcome = Import("many.eif", {});
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_NE(Outcome.Errors.find("four"), std::string::npos) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("again behind"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Indexes(), Before);
  EXPECT_EQ(Count(), "0\n");
}

class TTableIndexesPostgreSQLTest : public TTableIndexesTest {};
INSTANTIATE_TEST_SUITE_P(Engines, TTableIndexesPostgreSQLTest, testing::Values("postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(TTableIndexesPostgreSQLTest, StayWhereOthersWouldWaitOrTheRightIsMissing) {
  Export("many.eif", 20'000);
  const std::string Role = "loader_" + Target.Text("SELECT current_database()").substr(0, 40);
  const std::string Name = Role.substr(0, Role.find('\n'));
  const struct {
    std::string Before, After, Url;
    TArguments Options;
    std::string Says;
  } Cases[] = {
      {"BEGIN; LOCK TABLE t IN ACCESS SHARE MODE", "COMMIT", "", {}, ""},
      {"CREATE ROLE " + Name + "; GRANT ALL ON TABLE t TO " + Name, "", "options=-c%20role%3D" + Name, {}, ""},
      {"GRANT ALL ON TABLE t TO " + Name,
       "",
       "options=-c%20role%3D" + Name,
       {"--indexes", "rebuild"},
       "only its owner can drop them"},
      {"CREATE OR REPLACE FUNCTION e() RETURNS event_trigger LANGUAGE plpgsql AS 'BEGIN END'; CREATE EVENT TRIGGER v "
       "ON "
       "ddl_command_end EXECUTE FUNCTION e()",
       "DROP EVENT TRIGGER v",
       "",
       {"--indexes", "rebuild"},
       "event triggers watch"},
  };
  for (const auto& [Before, After, Url, Options, Says] : Cases) {
    Make(Target, "");
    Target.Run(Before);
    TArguments Line = {
        "import",
        "table",
        "-i",
        "many.eif",
        "-d",
        Url.empty() ? Target.Url : Target.Url + (Target.Url.find('?') == std::string::npos ? "?" : "&") + Url};
    Line.insert(Line.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, 0) << Before << Outcome.Errors;
    EXPECT_EQ(Made(), "") << Before;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Outcome.Errors;
    if (!After.empty()) Target.Run(After);
    EXPECT_EQ(Count(), "20000\n");
  }
  Target.Run("DROP OWNED BY " + Name + "; DROP ROLE " + Name);
}

}  // namespace
}  // namespace velkrund::tests
