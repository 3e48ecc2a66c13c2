#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class SQLiteConnectionTest : public SQLiteFixture {};

TEST_F(SQLiteConnectionTest, OpeningSaysWhatIsWrong) {
  Folder.Write("text.db", std::string(5000, 'x'));
  Folder.Write("empty.db", "");
  const TConnectOptions Plain;
  struct TCase {
    std::string Path;
    std::string Error;
  };
  const TCase Cases[] = {
      {"", "EDatabaseError: The database address 'sqlite:' names no file"},
      {Folder / "missing.db", "EDatabaseError: The database file '" + Folder / "missing.db" + "' does not exist"},
      {Folder / "", "EDatabaseError: The database '" + Folder / "" + "' is a folder"},
      {Folder / "text.db", "EDatabaseError: Cannot open the database '" + Folder / "text.db" +
                               "': file is not a database (SQLite error 26)"},
      {Folder / "empty.db", "no error"},
  };
  for (const TCase& Case : Cases) EXPECT_THAT(ErrorOf([&] { Connect(Case.Path, Plain); }), StartsWith(Case.Error));
  EXPECT_FALSE(std::filesystem::exists(Folder / "missing.db"));
  Connect(Folder / "100%41 file:x?mode=ro.db")->Execute("CREATE TABLE T (C)");
  EXPECT_TRUE(std::filesystem::exists(Folder / "100%41 file:x?mode=ro.db"));
}

// Each time that pages have to make room for others the engine asks for the file anew.
TEST_F(SQLiteConnectionTest, AReaderThatStaysIsWaitedForOnceBeforeTheCommit) {
  const std::string Path = Folder / "read.db";
  Connection = Connect(Path, {.CreateMissing = true, .BusyTime = std::chrono::milliseconds(200)});
  Run("CREATE TABLE T (C)");
  Run("INSERT INTO T VALUES (0)");
  Run("PRAGMA cache_size = 5");
  const auto Reader = Connect(Path);
  Reader->BeginReading();
  EXPECT_THAT(Rows(*Reader, "T"), ElementsAre("18 0"));
  const auto Start = std::chrono::steady_clock::now();
  Connection->Begin(TIsolationLevel::RepeatableRead);
  for (int I = 0; I < 50; ++I) Run("INSERT INTO T SELECT zeroblob(20000) FROM T LIMIT 3");
  EXPECT_THAT(ErrorOf([&] { Connection->Commit(); }), HasSubstr("busy_seconds"));
  EXPECT_LT(std::chrono::steady_clock::now() - Start, std::chrono::seconds(3));
  Reader->Rollback();
  Connection->Commit();
  EXPECT_EQ(Rows(*Reader, "T").size(), 148U);
}

TEST_F(SQLiteConnectionTest, AFileWithoutWriteRightsIsReadAndNotWritten) {
  const std::string Path = Folder / "fixed.db";
  {
    auto Made = Connect(Path);
    Made->Execute("CREATE TABLE T (C)");
    Made->Execute("INSERT INTO T VALUES (1)");
  }
  std::filesystem::permissions(Path, std::filesystem::perms(0444));
  std::filesystem::permissions(Folder / "", std::filesystem::perms(0755));
  // Rights do not bind the superuser.
  const uid_t User = geteuid();
  ASSERT_EQ(seteuid(User == 0 ? 65534 : User), 0);
  const std::string Refused = ErrorOf([&] {
    Connection = Connect(Path, {});
    EXPECT_TRUE(Connection->Capabilities().ReadOnly);
    EXPECT_THAT(Rows(*Connection, "T"), ElementsAre("18 1"));
    EXPECT_THAT(ErrorOf([&] { Run("DELETE FROM T"); }), HasSubstr("its file or folder cannot be written"));
    Connection->Begin(TIsolationLevel::RepeatableRead);
    Open("T").BeginAppend();
  });
  ASSERT_EQ(seteuid(User), 0);
  EXPECT_EQ(Refused, "EDatabaseError: Cannot append to table 'T': the database is opened for reading only");
}

TEST_F(SQLiteConnectionTest, ARolledBackStatementOfTheEngineEndsTheTransaction) {
  Run("CREATE TABLE T (C UNIQUE)");
  Run("INSERT INTO T VALUES (1)");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Run("INSERT INTO T VALUES (2)");
  EXPECT_THAT(ErrorOf([&] { Run("INSERT OR ROLLBACK INTO T VALUES (1)"); }), HasSubstr("UNIQUE"));
  EXPECT_THAT(ErrorOf([&] { Connection->Commit(); }), HasSubstr("the engine has rolled it back"));
  Connection->Rollback();
  EXPECT_EQ(Rows(*Connection, "T").size(), 1U);
}

TEST_F(SQLiteConnectionTest, ALongStatementIsStopped) {
  int Asked = 0;
  Connection = Connect(Folder / "stopped.db", {.CreateMissing = true, .Canceled = [&] { return ++Asked == 3; }});
  Run("CREATE TABLE T (C)");
  EXPECT_THAT(ErrorOf([&] {
                Run("WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL SELECT I + 1 FROM N LIMIT 100000000) "
                    "INSERT INTO T SELECT I FROM N WHERE I < 0");
              }),
              StartsWith("EAbort: "));
  Run("INSERT INTO T VALUES (1)");
  EXPECT_EQ(Rows(*Connection, "T").size(), 1U);
}

TEST_F(SQLiteConnectionTest, AStatementIsNotCutOffAtACharacterZero) {
  for (const std::string Behind : {"", " FROM nowhere"})
    EXPECT_THAT(ErrorOf([&] { Run(std::string("SELECT 1") + '\0' + Behind); }), HasSubstr("U+0000"));
}

}  // namespace
}  // namespace velkrund::tests
