#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "tests/cli/ShopTest.h"

namespace velkrund::tests {
namespace {

class TSharingTest : public TShopTest {
 protected:
  struct TPair {
    TOutcome First, Second;
  };
  /// Both at once.
  TPair RunBoth(const std::string& First, const std::string& Second) {
    const TOutcome Both =
        Shell("$V " + First + " 2>first & P=$!; $V " + Second + " 2>second; B=$?; wait $P; echo $? $B");
    TPair Result{{Both.Output[0] - '0', "", Read("first")}, {Both.Output[2] - '0', "", Read("second")}};
    for (const char* Name : {"first", "second"}) unlink(Path(Name).c_str());
    return Result;
  }
};

std::string Sorted(std::string Names) {
  std::sort(Names.begin(), Names.end());
  return Names;
}

// Two that write one file: what says it is done is done, and what is refused says why and has changed nothing.
TEST_F(TSharingTest, TwoWritersOfAFileLoseNothing) {
  const std::string Section1 = Section("X", {"ID"}, {"1"}), Section2 = Section("Y", {"ID"}, {"2"});
  const struct {
    const char *First, *Second;
    std::string Before;       // sections X and Y, or no file
    const char* Names[2][2];  // of the sections afterwards, sorted, by success of first and second
  } Cases[] = {
      {"export table -d sqlite:shop.db -t A -o F",
       "export table -d sqlite:shop.db -t B -o F",
       "",
       {{"", "B"}, {"A", " AB"}}},
      {"export table -d sqlite:shop.db -t A -o F",
       "export table -d sqlite:shop.db -t B -o F",
       Section1,
       {{"X", " BX"}, {" AX", "  ABX"}}},
      {"export table -d sqlite:shop.db -t A -o F",
       "file remove F --name X",
       Section1 + Section2,
       {{" XY", "Y"}, {"  AXY", " AY"}}},
      {"file remove F --name X", "file remove F --name Y", Section1 + Section2, {{" XY", "X"}, {"Y", ""}}},
  };
  int Refused = 0;
  for (const auto& [First, Second, Before, Expected] : Cases)
    for (int Times = 0; Times < 10; ++Times) {
      unlink(Path("F").c_str());
      if (!Before.empty()) Write("F", Before);
      const TPair Pair = RunBoth(First, Second);
      for (const TOutcome& Outcome : {Pair.First, Pair.Second}) {
        if (Outcome.ExitCode == 0) continue;
        ++Refused;
        EXPECT_EQ(Outcome.ExitCode, 1);
        EXPECT_TRUE(Outcome.Errors.find("'F': it is in use by another program") != std::string::npos ||
                    Outcome.Errors.find("'F': another program has made it meanwhile") != std::string::npos)
            << Outcome.Errors;
      }
      const char* Names = Expected[Pair.First.ExitCode == 0][Pair.Second.ExitCode == 0];
      EXPECT_EQ(Exists("F") ? Sorted(this->Names("F")) : "", Names) << First << " and " << Second << "\n"
                                                                    << Pair.First.Errors << Pair.Second.Errors;
      for (const std::string& File : Files()) EXPECT_FALSE(File.starts_with(".velkrund-")) << File;
    }
  EXPECT_GT(Refused, 0);
}

TEST_F(TSharingTest, TwoImportsIntoADatabaseWaitForEachOther) {
  Write("F", Section("B", {"X"}, {"1.5", "2.5"}));
  for (int Times = 1; Times <= 10; ++Times) {
    const std::string Import = "import table -d sqlite:empty.db -i F --append";
    const TPair Pair = RunBoth(Import, Import);
    EXPECT_EQ(Pair.First.ExitCode + Pair.Second.ExitCode, 0) << Pair.First.Errors << Pair.Second.Errors;
    EXPECT_EQ(Counts("empty.db"), "0|" + std::to_string(4 * Times));
  }
}

// Another program's transaction is waited for, and when that takes too long it is told.
TEST_F(TSharingTest, AnImportWaitsForAnotherProgramsTransaction) {
  Write("F", Section("B", {"X"}, {"1.5"}));
  Write("velkrund.toml", "busy_seconds = 1\n");
  sqlite3* Handle = nullptr;
  ASSERT_EQ(sqlite3_open(Path("empty.db").c_str(), &Handle), SQLITE_OK);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> Other(Handle, &sqlite3_close);
  const auto Execute = [&](const char* Sql) { ASSERT_EQ(sqlite3_exec(Handle, Sql, nullptr, nullptr, nullptr), 0); };
  Execute("BEGIN IMMEDIATE; INSERT INTO B VALUES (9, 9.5)");
  const TOutcome Refused = Run(ImportInto("table", {"-i", "F", "--append"}));
  EXPECT_EQ(Refused.ExitCode, 1);
  EXPECT_NE(
      Refused.Errors.find("empty.db': database is locked (SQLite error 5); another program is using the database, and "
                          "has done so for longer than busy_seconds"),
      std::string::npos)
      << Refused.Errors;
  Write("velkrund.toml", "busy_seconds = 60\ntrace = { level = \"detail\", file = \"trace.log\" }\n");
  const pid_t Stopped = Start(ImportInto("table", {"-i", "F", "--append"}));
  EXPECT_TRUE(WaitUntil(
      [&] { return Exists("trace.log") && Read("trace.log").find("Starting a transaction") != std::string::npos; }));
  kill(Stopped, SIGINT);
  EXPECT_EQ(Finish(Stopped).ExitCode, 3);
  const pid_t Waiting = Start(ImportInto("table", {"-i", "F", "--append"}));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  Execute("COMMIT");
  EXPECT_EQ(Finish(Waiting).ExitCode, 0);
  EXPECT_EQ(Counts("empty.db"), "0|2");
}

// What is written into a file meanwhile may be of a later moment than what was read before; what is added behind is not
// read, and another file in its place is another file.
TEST_F(TSharingTest, AFileThatChangesWhileItIsRead) {
  Write("velkrund.toml", "busy_seconds = 60\ntrace = { level = \"detail\", file = \"trace.log\" }\n");
  const std::string Old = Section("B", {"X"}, {"1.5"}), New = Section("B", {"X"}, {"2.5"});
  const struct {
    const char* What;
    std::function<void()> Change;
    int ExitCode;
    std::string Behind = {};
  } Cases[] = {
      {"other bytes", [&] { std::ofstream(Path("F"), std::ios::in) << New; }, 1},
      {"fewer bytes", [&] { std::filesystem::resize_file(Path("F"), Old.size() - 20); }, 1},
      {"none", [&] { std::ofstream(Path("F"), std::ios::trunc).flush(); }, 1},
      {"the same bytes again", [&] { std::ofstream(Path("F"), std::ios::in) << Old; }, 0},
      {"another section behind", [&] { std::ofstream(Path("F"), std::ios::app) << New; }, 0},
      {"another section behind other bytes", [&] { std::ofstream(Path("F"), std::ios::in) << New << New; }, 1},
      {"an unfinished section behind becomes whole",
       [&] {
         std::fstream File(Path("F"), std::ios::in | std::ios::out);
         File.seekp(static_cast<std::streamoff>(Old.size())) << "[";
         File.seekp(0, std::ios::end) << New;
       },
       0, ";" + New.substr(1)},
      {"another file", [&] { Write("G", New), std::filesystem::rename(Path("G"), Path("F")); }, 0},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.What);
    Write("F", Old + Case.Behind);
    sqlite3* Handle = nullptr;
    ASSERT_EQ(sqlite3_open(Path("empty.db").c_str(), &Handle), SQLITE_OK);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> Other(Handle, &sqlite3_close);
    ASSERT_EQ(sqlite3_exec(Handle, "DELETE FROM B; BEGIN IMMEDIATE", nullptr, nullptr, nullptr), 0);
    remove(Path("trace.log").c_str());
    const pid_t Reading = Start(ImportInto("table", {"-i", "F", "--append", "--unfinished", "skip"}));
    EXPECT_TRUE(WaitUntil(
        [&] { return Exists("trace.log") && Read("trace.log").find("Starting a transaction") != std::string::npos; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    Case.Change();
    EXPECT_EQ(sqlite3_exec(Handle, "COMMIT", nullptr, nullptr, nullptr), 0);
    const TOutcome Outcome = Finish(Reading);
    EXPECT_EQ(Outcome.ExitCode, Case.ExitCode) << Outcome.Errors;
    const bool IsTold = Outcome.Errors.find("'F' was written to while it was read") != std::string::npos;
    EXPECT_EQ(IsTold, Case.ExitCode == 1) << Outcome.Errors;
    EXPECT_EQ(Query("empty.db", "SELECT group_concat(X) FROM B"), Case.ExitCode == 1 ? "NULL" : "1.5");
  }
}

TEST_F(TSharingTest, ADatabaseThatWasMadeForNothingIsRemoved) {
  Write("F", Section("B", {"X"}, {"1.5"}));
  for (const char* Object : {"table", "file"}) {
    const TOutcome Outcome = Run({"import", Object, "-d", "sqlite:new.db", "-i", "F", "--create"});
    EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
    EXPECT_FALSE(Exists("new.db")) << Object;
  }
  // A link to nothing stays one.
  ASSERT_EQ(symlink("new.db", Path("link.db").c_str()), 0);
  EXPECT_EQ(Run({"import", "table", "-d", "sqlite:link.db", "-i", "F", "--create"}).ExitCode, 1);
  EXPECT_FALSE(Exists("new.db"));
  std::error_code Error;
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link.db"), Error));
  // One that was there, empty as it is, is somebody else's.
  Write("mine.db", "");
  EXPECT_EQ(Run({"import", "table", "-d", "sqlite:mine.db", "-i", "F", "--create"}).ExitCode, 1);
  EXPECT_TRUE(Exists("mine.db"));
}

// On a real file system, small enough to be filled, that nobody but the job sees.
TEST_F(TSharingTest, AFullDiskIsAnErrorAndLeavesAllAsItWas) {
  const std::string OnSmallDisk = "export V; unshare -rm sh -c 'mkdir -p disk; mount -t tmpfs -o size=360k none disk";
  if (Shell(OnSmallDisk + "'").ExitCode != 0) GTEST_SKIP() << "no right to mount a small file system";
  Write("F", Section("X", {"ID"}, {std::string(130'000, '1')}) + Section("Y", {"ID"}, {"2"}));
  Write("BROKEN", "[SECTION]\r\n" + std::string(130'000, 'x'));
  Query("shop.db", "INSERT INTO A (NAME) VALUES (hex(zeroblob(200000)))");
  Write("BIG", Section("A", {"ID", "NAME"}, {"7|'" + std::string(200'000, 'x') + "'"}));
  const struct {
    const char* Job;
    const char* Error;
  } Cases[] = {{"export table -d sqlite:../shop.db -t A -o F", "'F': No space left on device"},
               {"file remove F --name Y", "'F': No space left on device"},
               {"file repair BROKEN", "BROKEN.cut': No space left on device"},
               {"import table -d sqlite:empty.db -i ../BIG --replace", "database or disk is full"}};
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Job);
    const TOutcome Outcome =
        Shell(OnSmallDisk + " && cp F BROKEN empty.db disk && cd disk && { $V " + Case.Job +
              "; Code=$?; cmp F ../F && cmp BROKEN ../BROKEN && cmp empty.db ../empty.db && ls; exit $Code; }'");
    EXPECT_EQ(Outcome.ExitCode, 1);
    EXPECT_NE(Outcome.Errors.find(Case.Error), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Outcome.Output, "BROKEN\nF\nempty.db\n");
  }
}

// A limit of a file's size comes as a signal first, which the shell here does not take away.
TEST_F(TSharingTest, ASizeLimitIsAnErrorAndLeavesTheFileAsItWas) {
  const std::string Before = Section("X", {"ID"}, {std::string(30'000, '1')}) + Section("Y", {"ID"}, {"2"});
  Query("shop.db", "INSERT INTO A (NAME) VALUES (hex(zeroblob(40000)))");
  for (const char* Job : {"export table -d sqlite:shop.db -t A -o F", "file remove F --name Y"}) {
    Write("F", Before);
    const TOutcome Outcome = Shell(std::string("ulimit -f ") + (Job[0] == 'e' ? "80" : "40") + "; $V " + Job);
    EXPECT_EQ(Outcome.ExitCode, 1) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find("'F': File too large"), std::string::npos) << Outcome.Errors;
    EXPECT_EQ(Read("F"), Before);
    EXPECT_EQ(Files(), (TArguments{"F", "empty.db", "shop.db"}));
  }
}

}  // namespace
}  // namespace velkrund::tests
