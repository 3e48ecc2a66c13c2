#include "tests/cli/ShopTest.h"
#include "tests/roundtrip/TestDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

class TGeneratorTest : public TShopTest, public testing::WithParamInterface<const char*> {
 protected:
  static std::string Generator(const std::string& Name, const std::string& Value) {
    return "[SECTION]\r\nEncoding = UTF8\r\nName = " + Name + "\r\nType = GeneratorData\r\nVersion = 200\r\n" +
           "GeneratorName = " + Name + "\r\nStartValue = " + Value + "\r\n[DATA]\r\n[END]\r\n";
  }
  bool IsServer() const { return GetParam() == std::string("postgresql"); }
  /// The last number of each.
  std::string Stand() {
    std::string Result;
    if (IsServer()) {
      // Of one that has given out nothing yet, the next number stands there.
      for (const char* Name : {"g", "h"})
        if (Database.Text(Format("SELECT to_regclass('%s') IS NULL", Name)) == "f\n")
          Result +=
              Database.Text(Format("SELECT '%s', last_value - CASE WHEN is_called THEN 0 ELSE (SELECT increment_by "
                                   "FROM pg_sequences WHERE sequencename = '%s') END FROM %s",
                                   Name, Name, Name));
    } else {
      Result = Database.Text("SELECT name_key, last_value FROM velkrund_generators ORDER BY 1");
    }
    std::replace(Result.begin(), Result.end(), '\t', ' ');
    std::replace(Result.begin(), Result.end(), '\n', ';');
    return Result;
  }
  TOutcome Import(const std::string& File, TArguments More = {}) {
    More.insert(More.begin(), {"import", "generator", "-d", Database.Url, "-i", File});
    return Run(More);
  }

  TTestDatabase Database = IsServer() ? PostgreSQLDatabase() : SQLiteDatabase(Path("g.db"));
};

INSTANTIATE_TEST_SUITE_P(Engines, TGeneratorTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(TGeneratorTest, GeneratorsGoOnwards) {
  Write("start", Generator("g", "40") + Generator("h", "50"));
  EXPECT_EQ(Import("start").ExitCode, 0) << "those that are missing are made";
  EXPECT_EQ(Stand(), "g 40;h 50;");
  const struct {
    std::string File;
    TArguments Options;
    int ExitCode;
    std::string Stand, Says;
  } Cases[] = {
      {Generator("g", "9000000000000000000"), {}, 0, "g 9000000000000000000;h 50;", "imported generator"},
      {Generator("g", "7"), {}, 0, "g 40;h 50;", "stands further already"},
      {Generator("g", "7"), {"--set-generators"}, 0, "g 7;h 50;", ""},
      {Generator("g", "7") + Generator("g", "60") + Generator("g", "8"), {}, 0, "g 60;h 50;", "stands further already"},
      {Generator("G", "7") + Generator("g", "60"), {}, 1, "g 40;h 50;", "differ in case only"},
      {Generator("g", "7") + Generator("g", "9") + Generator("g", "8"), {"--set-generators"}, 0, "g 9;h 50;", ""},
      {Generator("g", "1") + Generator("h", "0"), {"--set-generators"}, 0, "g 40;h 50;", "below 2 nothing is set"},
      {Generator("g", "60") + Generator("h", "70"), {"--section", "h"}, 0, "g 40;h 70;", ""},
      {Generator("g", "60"), {"--dry-run"}, 0, "g 40;h 50;", "nothing was changed"},
      {Generator("g", "60") + Generator("h", "x"), {"--on-error", "stop"}, 1, "g 40;h 50;", "'x' is not a valid"},
      {Generator("g", "9223372036854775808"), {}, 1, "g 40;h 50;", "is not a valid"},
      {Section("A", {"ID"}, {"1"}), {}, 1, "g 40;h 50;", "generator data"},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Import("start", {"--set-generators"}).ExitCode, 0);
    Write("f", Case.File);
    const TOutcome Outcome = Import("f", Case.Options);
    EXPECT_EQ(Outcome.ExitCode, Case.ExitCode) << Case.File << Outcome.Errors;
    EXPECT_EQ(Stand(), Case.Stand) << Case.File << Joined(Case.Options) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Case.Says), std::string::npos) << Case.File << Outcome.Errors;
  }
}

TEST_P(TGeneratorTest, ComeBackFromAFile) {
  Write("start", Generator("g", "9000000000") + Generator("h", "50"));
  EXPECT_EQ(Import("start").ExitCode, 0);
  const auto All = RunJson({"export", "generator", "-d", Database.Url, "--all", "-o", "all"});
  EXPECT_EQ(All["sections"][0]["value"], 9000000000);
  EXPECT_EQ(Names("all"), "g h");
  RunJson({"export", "generator", "-d", Database.Url, "--name", "H", "-o", "one"});
  EXPECT_EQ(Names("one"), "h");
  const TOutcome None = Run({"export", "generator", "-d", Database.Url, "--name", "NONE", "-o", "none"});
  EXPECT_EQ(None.ExitCode, 1);
  EXPECT_NE(None.Errors.find("no generator 'NONE' in the database"), std::string::npos) << None.Errors;
  EXPECT_FALSE(Exists("none"));
  EXPECT_EQ(Run({"export", "generator", "-d", Database.Url, "-o", "none"}).ExitCode, 2);
  Database.Run(IsServer() ? "DROP SEQUENCE g; DROP SEQUENCE h" : "DELETE FROM velkrund_generators");
  EXPECT_EQ(Import("all").ExitCode, 0);
  EXPECT_EQ(Stand(), "g 9000000000;h 50;");
}

// Whatever the order of the sections, a structure makes the generator that another section moves.
TEST_P(TGeneratorTest, ComeWithWhatDescribesThem) {
  Write("f",
        Generator("g", "41") + Section("t", {"i"}, {"1", "2"}) +
            "[SECTION]\r\nName = g\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 71\r\nObjectName = g\r\n"
            "TableName = \r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n [REMARKS]\r\n  \r\n [TREE]\r\n"
            "  Layout:integer = 1\r\n  Name:string = 'g'\r\n  Step:string = '5'\r\n[END]\r\n");
  Database.Run("CREATE TABLE t (i integer PRIMARY KEY)");
  const TOutcome Outcome = Run({"import", "file", "-d", Database.Url, "-i", "f", "--create-tables", "yes"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Stand(), "g 41;");
  EXPECT_EQ(Database.Text("SELECT count(*) FROM t"), "2\n");
  EXPECT_EQ(
      Database.Text(IsServer() ? "SELECT increment_by FROM pg_sequences" : "SELECT step FROM velkrund_generators"),
      "5\n");
}

}  // namespace
}  // namespace velkrund::tests
