#include "tests/cli/CommandTest.h"

namespace velkrund::tests {
namespace {

using TUsageTest = TCommandTest;
using testing::Test;

struct TWrongLine {
  TArguments Arguments;
  std::string Says;
};

TEST_F(TUsageTest, WrongLinesEndWithTwoAndSayWhatIsWrong) {
  const TWrongLine Lines[] = {
      {{}, "export, import, copy, delete, recreate, dictionary, languages, resources, file, database"},
      {{"exprot", "table", "-d", "sqlite:x", "--all"},
       "there are export, import, copy, delete, recreate, dictionary, languages, resources, file, database; did you "
       "mean 'export'?"},
      {{"table", "export", "--all"}, "did you mean 'export table'?"},
      {{"file", "import"}, "did you mean 'import file'?"},
      {{"list"}, "did you mean 'dictionary list' or 'languages list' or 'resources list' or 'file list'?"},
      {{"frobnicate"},
       "'frobnicate' is not a verb: there are export, import, copy, delete, recreate, dictionary, languages, "
       "resources, file, database\n"},
      {{"-d", "sqlite:x", "export", "table"}, "'-d' has to stand behind the verb and the object"},
      {{"info", "-d", "sqlite:x"}, "did you mean 'database info'?"},
      {{"database", "info", "sqlite:x"}, "here: every value stands behind the name of its option"},
      {{"--jsno", "file", "list", "F"}, "did you mean '--json'?"},
      {{"--config"}, "--config takes exactly one value"},
      {{"--config", "a", "file", "list", "F", "--config", "b"}, "--config takes exactly one value"},
      {{"--json=0", "file", "list", "F"}, "--json takes no value"},
      {{"file", "list", "F", "--help=1"}, "'--help' is not understood here: it takes no value"},
      {{"export"}, "say what to do: table, structure"},
      {{"export", "tabel"}, "did you mean 'table'?"},
      {{"export", "table", "--tabel", "A"}, "did you mean '--table'?"},
      {{"export", "table", "-T", "A"}, "did you mean '-t'?"},
      {{"export", "table", "--zzzzzz"}, "'--zzzzzz' is not understood here\n"},
      {{"file", "list", "F", "--", "--jsno"}, "'--jsno' is not understood here\n"},
      {{"export", "table", "-t", "A"}, "--output is required"},
      {{"export", "table", "-o", "F"}, "--table NAME or --all"},
      {{"export", "table", "-o", "F", "-t"}, "--table takes exactly one value"},
      {{"export", "table", "-o", "F", "-o", "G", "--all"}, "--output takes exactly one value"},
      {{"export", "table", "-o", "F", "--all", "-t", "A"}, "--table and --all contradict"},
      {{"export", "table", "-o", "F", "-t", "A", "--add", "--overwrite", "no"}, "--add and --overwrite contradict"},
      {{"export", "structure", "-o", "F", "--all", "--new", "--overwrite", "yes"}, "--new and --overwrite contradict"},
      {{"export", "table", "-o", "F", "-t", "A", "--new", "--add"}, "--new and --add contradict"},
      {{"export", "table", "-o", "F", "-t", "A", "--overwrite", "maybe"}, "--overwrite takes ask|yes|no, not 'maybe'"},
      {{"export", "table", "-o", "F", "-t", "A", "--overwrite", "yse"}, "not 'yse'; did you mean 'yes'?"},
      {{"export", "table", "-o", "F", "-t", "A", "--encoding", "utf8", "--release", "rv17"}, "--release rv17"},
      {{"export", "table", "-o", "F", "-t", "A", "-t", "B", "--section", "S"}, "--section names one section"},
      {{"export", "table", "-o", "F", "--all", "--fields", "A"}, "--fields names fields of one table"},
      {{"export", "table", "-o", "-", "--all", "--json", "-d", "sqlite:x"}, "--json"},
      {{"export", "table", "-o", "F", "-t", "A"}, "--database is missing"},
      {{"export", "table", "-o", "F", "-t", "A", "-d", "shop.db"}, "sqlite:shop.db"},
      {{"export", "table", "-o", "F", "-t", ""}, "--table needs a value"},
      {{"import", "table", "-i", "F", "--replace", "--append"}, "--replace and --append contradict"},
      {{"export", "structure", "-o", "F"}, "--name NAME, with --type, or --all"},
      {{"export", "structure", "-o", "F", "--all", "--name", "A"}, "--name and --all contradict"},
      {{"export", "structure", "-o", "F", "--name", "A", "--type", "form"}, "--type takes a whole number, not 'form'"},
      {{"export", "structure", "-o", "F", "--all", "--section", "S"}, "but several structures are exported"},
      {{"export", "structure", "-o", "F", "--name", "A", "--name", "B", "--root", "R"}, "--root names a node of one"},
      {{"import", "structure", "-i", "F", "--overwrite", "yes", "--merge", "skip"}, "--overwrite and --merge"},
      {{"import", "structure", "-i", "F", "--no-clear-root"}, "--no-clear-root goes with"},
      {{"import", "structure", "-i", "F", "--type", "0"}, "--type 0 is not a type"},
      {{"dictionary", "show"}, "--name is required"},
      {{"dictionary", "drop", "--type", "12"}, "--name is required"},
      {{"file", "list"}, "FILE is required"},
      {{"file", "remove", "F"}, "INDEX or --name"},
      {{"file", "remove", "F", "-1"}, "'-1' is not an index"},
      {{"file", "remove", "F", "ORDERS"}, "'ORDERS' is not an index"},
      {{"file", "remove", "-", "0"}, "is a pipe"},
  };
  Write("shop.db", "");
  for (const auto& [Arguments, Says] : Lines) {
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, 2) << Joined(Arguments);
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(Arguments) << "\n" << Outcome.Errors;
    EXPECT_EQ(Outcome.Errors.find("velkrund: "), 0U) << Outcome.Errors;
    EXPECT_EQ(Outcome.Output, "") << Joined(Arguments);
  }
  EXPECT_EQ(Files(), TArguments{"shop.db"});
}

TEST_F(TUsageTest, HelpAndVersionGoToStandardOutput) {
  const TWrongLine Lines[] = {
      {{"--help"}, "export table            saves"},
      {{"file", "--help"}, "file remove"},
      {{"export", "table", "--help"}, "--overwrite ask|yes|no"},
      {{"import", "table", "-h"}, "--missing-fields skip|error"},
      {{"-h", "--json", "import", "table", "--zzz"}, "--missing-fields skip|error"},
      {{"import", "-h", "--zzz"}, "import structure"},
      {{"import", "structure", "-h"}, "--merge skip|replace|difference"},
      {{"file", "list", "-h"}, "file list orders.eif"},
      {{"file", "remove", "-h"}, "--name NAME"},
      {{"database", "info", "-h"}, "Examples:"},
      {{"--version"}, "velkrund "},
  };
  for (const auto& [Arguments, Says] : Lines) {
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, 0) << Joined(Arguments);
    EXPECT_NE(Outcome.Output.find(Says), std::string::npos) << Joined(Arguments) << "\n" << Outcome.Output;
    EXPECT_EQ(Outcome.Errors, "") << Joined(Arguments);
  }
}

TEST_F(TUsageTest, GeneralOptionsStandAnywhereAndBehindTheMarkThereAreArguments) {
  ASSERT_EQ(Shell("printf '\\r\\n' > -odd.eif").ExitCode, 0);
  const TArguments Lines[] = {{"file", "list", "--json", "--", "-odd.eif"},
                              {"--json", "file", "list", "--json", "--", "-odd.eif"},
                              {"-vy", "--progress", "none", "file", "--json", "list", "--", "-odd.eif"},
                              {"--progress=none", "file", "-y", "list", "--json", "--", "-odd.eif"}};
  const std::string Expected = Run(Lines[0]).Output;
  EXPECT_EQ(nlohmann::json::parse(Expected)["sections"].size(), 0U);
  for (const TArguments& Line : Lines) EXPECT_EQ(Run(Line).Output, Expected) << Joined(Line);
}

/// Ways to take the standard streams away, and what is left of the command's result then.
TEST_F(TUsageTest, ClosedAndFullStreamsSpoilNothingAndAreSaidOnce) {
  ASSERT_EQ(Query("shop.db", "CREATE TABLE A (ID); INSERT INTO A VALUES (1), (2)"), "");
  ASSERT_EQ(Run({"export", "table", "-d", "sqlite:shop.db", "-t", "A", "-o", "A"}).ExitCode, 0);
  const std::string Import = "$V import table -d sqlite:shop.db -i A --append --progress json ";
  const struct {
    std::string Line;
    int ExitCode;
    std::string Errors;  // a part of them
  } Cases[] = {
      {"$V file check A --progress json 2>&-", 0, ""},
      {"$V file list - <&-", 1, "Cannot read standard input: Bad file descriptor"},
      {"$V file list A >&-", 1, "Cannot write to standard output: Bad file descriptor\n"},
      {"$V file list A --json >/dev/full", 1, "No space left on device; the document is missing"},
      {"$V --version --progress json >/dev/full", 1, R"({"event":"end","exitCode":1)"},
      {"$V exprot --json --progress json >/dev/full", 2, R"({"event":"message","text":"Cannot write)"},
      {"$V --help --progress json", 0, R"({"event":"end","exitCode":0})"},
      // Answers are not read from the file: it takes the number of a standard input that is closed.
      {"echo yes >> A; $V import table -d sqlite:shop.db -i A --progress json <&-", 1,
       R"({"event":"end","exitCode":1,)"},
      {Import + "--json >/dev/full", 1, R"({"event":"end","exitCode":1,)"},
  };
  for (const auto& [Line, ExitCode, Errors] : Cases) {
    const TOutcome Outcome = Shell(Line);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Line << "\n" << Outcome.Errors;
    const std::size_t Place = Outcome.Errors.find(Errors);
    ASSERT_NE(Place, std::string::npos) << Line << "\n" << Outcome.Errors;
    if (Errors.empty()) continue;
    EXPECT_EQ(Outcome.Errors.find(Errors, Place + 1), std::string::npos) << Outcome.Errors;
  }
}

TEST_F(TUsageTest, WrongUsageIsADocumentToo) {
  for (const TArguments& Line : {TArguments{"--json"},
                                 {"exprot", "--json"},
                                 {"--json", "file", "list"},
                                 {"import", "table", "-i", "F", "--json"}}) {
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, 2) << Joined(Line);
    EXPECT_EQ(nlohmann::json::parse(Outcome.Output)["exitCode"], 2) << Joined(Line);
    EXPECT_NE(Outcome.Errors, "") << Joined(Line);
  }
}

}  // namespace
}  // namespace velkrund::tests
