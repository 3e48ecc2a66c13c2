#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/roundtrip/SchemaTest.h"

namespace velkrund::tests {
namespace {

const std::string EveryKind =
    "checks,collations,computed,defaults,indexes,keys,options,references,schemas,triggers,types";

/// What a report says of the run as a whole, without what depends on the clock.
std::string WithoutTimes(const std::string& Report) {
  std::istringstream Lines(Report);
  std::string Result;
  for (std::string Line; std::getline(Lines, Line);)
    if (!Line.starts_with("imported ") && !Line.starts_with("in all ")) Result += Line + "\n";
  return Result;
}

/// Tables that are made from structures, in databases that have none. The parameter: engine and schema.
class TMadeSchemasTest : public TSchemaTest, public testing::WithParamInterface<std::string> {
 protected:
  TMadeSchemasTest() : Engine(GetParam().substr(0, GetParam().find('/'))), Name(GetParam().substr(Engine.size() + 1)) {}

  TTestDatabase MadeSource() {
    if (Name != "traits") {
      Schema = ReadSchema(Name, Engine);
      return Made(Engine, "source", Schema, Schema.Rows);
    }
    std::ifstream File(VELKRUND_SOURCE_DIR "/tests/standalone/traits." + Engine + ".sql");
    const TTestDatabase Result = Made(Engine, "source", std::string(std::istreambuf_iterator<char>(File), {}));
    if (Engine == "sqlite") return Result;
    // A name that a field line cannot hold, and a table that SQLite cannot have.
    Result.Run("DROP TABLE referring, \"select\"; DROP PROCEDURE \"Sales Dept\".other; DROP TABLE empty");
    Schema.Before =
        "CREATE SCHEMA \"Sales Dept\"; CREATE SEQUENCE counting; CREATE SEQUENCE \"Sales Dept\".numbers START 1000;"
        "CREATE FUNCTION note_change() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END'";
    return Result;
  }
  /// Every table with its structure, as it would be described where no structure was ever stored.
  std::string Described(const TTestDatabase& Database, const std::string& File, const TArguments& More = {}) {
    for (const char* Table : {"structures", "generators", "procedures", "catalogue"})
      Database.Run(std::string("DROP TABLE IF EXISTS velkrund_") + Table);
    remove(Path(File).c_str());
    const TOutcome Outcome =
        Run(TArguments{"export", "table", "-d", Database.Url, "--all", "--structures", "-o", File} + More);
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    std::string Result = Read(File);
    // Keys that rows of the source break are made for rows to come alone.
    const std::string NotChecked = "      NotChecked:boolean = TRUE\r\n";
    if (Schema.Options.size() < 2 || Schema.Options[0] != "--broken-references") return Result;
    for (std::size_t At = 0; (At = Result.find(NotChecked)) != std::string::npos;) Result.erase(At, NotChecked.size());
    return Result;
  }
  TOutcome Make(const TTestDatabase& Target, const std::string& File, const TArguments& More) {
    return Run(TArguments{"import", "file", "-d", Target.Url, "-i", File, "--create-tables", "yes"} + Schema.Options +
               More);
  }

  const std::string Engine, Name;
  TSchema Schema;
};

TEST_P(TMadeSchemasTest, AreTheVerySame) {
  const TTestDatabase Source = MadeSource();
  const std::string Original = Described(Source, "F");
  const TTestDatabase Target = Made(Engine, "target", Schema.Before);
  const TOutcome Outcome = Make(Target, "F", {"--allow-missing", "references"});
  ASSERT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Outcome.Errors.find("not made"), std::string::npos) << Outcome.Errors;
  const TOutcome Adopted = Run({"dictionary", "adopt", "-d", Target.Url, "--all", "--overwrite", "no"});
  // Keys that rows break are other keys than they were.
  if (Name != "broken_references") {
    EXPECT_NE(Adopted.Errors.find(" 0 replaced"), std::string::npos) << Adopted.Errors;
    EXPECT_NE(Adopted.Errors.find(" 0 left out"), std::string::npos) << Adopted.Errors;
  }
  EXPECT_EQ(Described(Target, "G"), Original);
}

TEST_P(TMadeSchemasTest, ComeBackFromTheOtherEngine) {
  const TTestDatabase Source = MadeSource();
  // Values of several classes in one column, which a column of PostgreSQL refuses or makes its own of.
  if (GetParam() == "sqlite/odd_tables")
    for (const std::string Table : {"no_key", "no_rowid", "strict_one", "strict_two", "rules"})
      Source.Run("DROP TABLE " + Table);
  const std::string Original = Described(Source, "F");
  Described(Source, "S", {"--columns", "scanned"});
  const TTestDatabase Middle = Made(Engine == "sqlite" ? "postgresql" : "sqlite", "middle", "");
  const TOutcome There = Make(Middle, "S", {"--allow-missing", EveryKind});
  ASSERT_EQ(There.ExitCode, 0) << There.Errors;
  if (Name == "traits") {
    std::ifstream Report(VELKRUND_SOURCE_DIR "/tests/roundtrip/traits." + Engine + ".report");
    EXPECT_EQ(WithoutTimes(There.Errors), std::string(std::istreambuf_iterator<char>(Report), {}));
  }
  ASSERT_EQ(Run({"export", "table", "-d", Middle.Url, "--all", "--structures", "-o", "M"}).ExitCode, 0);
  const TTestDatabase Target = Made(Engine, "target", Schema.Before);
  const TOutcome Back = Make(Target, "M", {"--allow-missing", "references"});
  ASSERT_EQ(Back.ExitCode, 0) << Back.Errors;
  EXPECT_EQ(Described(Target, "G"), Original);
}

std::vector<std::string> All() {
  std::vector<std::string> Result;
  for (const std::string Engine : {"sqlite", "postgresql"}) {
    for (const std::string& Name : SchemaNames(Engine)) Result.push_back(Engine + "/" + Name);
    // Two of its names differ in case only, which structures do not tell apart.
    std::erase(Result, "postgresql/odd_tables");
    Result.push_back(Engine + "/traits");
  }
  return Result;
}

std::string Readable(const testing::TestParamInfo<std::string>& Info) {
  std::string Result = Info.param;
  std::replace(Result.begin(), Result.end(), '/', '_');
  return Result;
}

INSTANTIATE_TEST_SUITE_P(PostgreSQLToo, TMadeSchemasTest, testing::ValuesIn(All()), Readable);

}  // namespace
}  // namespace velkrund::tests
