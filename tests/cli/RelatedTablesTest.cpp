#include "tests/cli/ShopTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

/// O is referred to by L, which comes before it in the file F: two rows and three.
class TRelatedTablesTest : public TShopTest {
 protected:
  TRelatedTablesTest() {
    Query("full.db", Tables + "INSERT INTO \"O\" VALUES (1), (2); INSERT INTO \"L\" VALUES (1, 1), (2, 2), (3, 2)");
    RunJson({"export", "table", "-d", "sqlite:full.db", "--all", "-o", "F"});
  }

  struct TCase {
    std::string Before;  // statements; "O" and "L" are empty
    TArguments Options;
    int ExitCode;
    std::string Counts;  // rows of O and L afterwards
    std::string Says;
  };

  template <typename TExecute, typename TAsk>
  void Check(const std::string& Url, const std::vector<TCase>& Cases, TExecute Execute, TAsk Ask) {
    for (const auto& [Before, Options, ExitCode, Counts, Says] : Cases) {
      Execute("DROP TABLE IF EXISTS \"L\"; DROP TABLE IF EXISTS \"O\"; " + Tables + Before);
      for (const char* Object : {"table", "file"}) {
        TArguments All = {"import", Object, "-d", Url, "-i", "F"};
        if (Object == std::string("file") && Joined(Options).find("--section") != std::string::npos) continue;
        All.insert(All.end(), Options.begin(), Options.end());
        const TOutcome Outcome = Run(All);
        EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(All) << "\n" << Outcome.Errors;
        EXPECT_EQ(Ask("SELECT (SELECT count(*) FROM \"O\") || '|' || (SELECT count(*) FROM \"L\")"), Counts)
            << Joined(All);
        EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(All) << "\n" << Outcome.Errors;
        if (ExitCode == 0) Execute("DELETE FROM \"L\"; DELETE FROM \"O\"; " + Before);
      }
    }
  }

  std::string Tables =
      "CREATE TABLE \"O\" (\"I\" integer PRIMARY KEY);"
      "CREATE TABLE \"L\" (\"I\" integer PRIMARY KEY, \"P\" integer REFERENCES \"O\");";
  const std::string Rows = "INSERT INTO \"O\" VALUES (7); INSERT INTO \"L\" VALUES (8, 7), (9, NULL);";
};

TEST_F(TRelatedTablesTest, WhereSQLiteEnforcesNothing) {
  const std::string Broken = "INSERT INTO \"L\" VALUES (8, 70), (9, 70);";
  const std::vector<TCase> Cases = {
      {"", {}, 0, "2|3", "imported"},
      {Rows, {"--replace"}, 0, "2|3", "imported"},
      {"", {"--section", "L"}, 1, "0|0", "3 values refer to rows that are not there (before: 0), for example row 1 to"},
      {Rows, {"--section", "O", "--replace"}, 1, "1|2", "failed table O"},
      {Rows, {"--section", "L", "--append"}, 1, "1|2", "--broken-references allow"},
      // What was broken before may stay so.
      {Broken, {"--section", "O"}, 0, "2|2", "imported"},
      {Broken, {"--section", "L", "--append"}, 1, "0|2", "5 values refer to rows that are not there (before: 2)"},
      // A record that fails takes everything back.
      {"CREATE TRIGGER G BEFORE INSERT ON L WHEN NEW.I = 3 BEGIN SELECT RAISE(ABORT, 'no third'); END;" + Rows,
       {"--replace", "--on-error", "continue"},
       1,
       "1|2",
       "taken back table O"},
      {"CREATE TRIGGER G BEFORE DELETE ON L BEGIN SELECT RAISE(IGNORE); END;" + Rows,
       {"--replace"},
       1,
       "1|2",
       "Cannot empty the table 'L': 2 of its rows stay"},
  };
  const auto Ask = [this](const std::string& Text) { return Query("other.db", Text); };
  Query("other.db", Tables);
  Check("sqlite:other.db", Cases, Ask, Ask);
}

TEST_F(TRelatedTablesTest, WherePostgreSQLEnforcesKeys) {
  TPostgreSQLDatabase Database;
  const auto Execute = [&](const std::string& Text) {
    Database.Run("ALTER TABLE IF EXISTS \"O\" DROP CONSTRAINT IF EXISTS circle; " + Text);
  };
  const auto Ask = [&](const std::string& Text) {
    const std::string Lines = Database.Rows(Text);
    return Lines.substr(0, Lines.find('\n'));
  };
  std::vector<TCase> Cases = {
      {"", {}, 0, "2|3", "imported"},
      {Rows, {"--replace"}, 0, "2|3", "imported"},
      {Rows, {"--append"}, 0, "3|5", "imported"},
      {"", {"--section", "L"}, 1, "0|0", "violates foreign key constraint"},
      {"ALTER TABLE \"O\" ADD CONSTRAINT circle FOREIGN KEY (\"I\") REFERENCES \"L\" INITIALLY DEFERRED",
       {},
       0,
       "2|3",
       "imported"},
      {Rows, {"--section", "O", "--replace"}, 1, "1|2", "still referenced from table"},
      {Rows + "ALTER TABLE \"L\" ADD CHECK (\"I\" <> 3)",
       {"--replace", "--on-error", "continue"},
       1,
       "1|2",
       "taken back table O"},
  };
  Check(Database.Url(), Cases, Execute, Ask);
  Tables.insert(Tables.rfind(')'), " ON DELETE SET NULL");
  Cases = {
      {Rows, {"--replace"}, 0, "2|3", "imported"},
      {Rows, {"--section", "O", "--replace"}, 1, "1|2", "also delete or change rows of 'L', which has 2 rows"},
      {"", {"--section", "O", "--replace"}, 0, "2|0", "imported"},
  };
  Check(Database.Url(), Cases, Execute, Ask);
  Tables.insert(Tables.rfind(';'), " PARTITION BY LIST (\"I\"); CREATE TABLE \"LP\" PARTITION OF \"L\" DEFAULT");
  Cases.resize(2);
  Check(Database.Url(), Cases, Execute, Ask);
}

}  // namespace
}  // namespace velkrund::tests
