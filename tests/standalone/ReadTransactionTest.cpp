// What is read within one read transaction is of one moment, whoever writes meanwhile.

#include "standalone/databases/ReadTransaction.h"

#include <gtest/gtest.h>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

/// Write: from another connection.
template <typename TWrite>
void CheckOneMoment(const std::string& Url, TWrite Write) {
  TStandaloneManager Manager{TConfiguration()};
  TDatabases& Databases = Manager.Databases();
  Write("CREATE TABLE a (i integer)");
  Write("CREATE TABLE b (i integer)");
  const auto Count = [&](const char* Name) {
    const auto Table = Manager.GetUserTable(Name, Url, false);
    int Rows = 0;
    for (bool Found = Table->First(); Found; Found = Table->Next()) ++Rows;
    return Rows;
  };
  {
    TReadTransaction Moment(Databases, Url);
    EXPECT_EQ(Count("a"), 0);
    Write("INSERT INTO b VALUES (1)");
    EXPECT_EQ(Count("b"), 0);
    EXPECT_ANY_THROW(Databases.Connection(Url).Query("SELECT nothing FROM nowhere")->Next());
    Moment.Renew();
    EXPECT_EQ(Count("b"), 1);
  }
  Write("INSERT INTO b VALUES (2)");
  EXPECT_EQ(Count("b"), 2);
}

TEST(ReadTransaction, OfSQLite) {
  const TTemporaryFolder Folder;
  const auto Other = TSQLiteDriver().Connect({"sqlite", Folder / "a.db"}, {.CreateMissing = true});
  Other->Execute("PRAGMA journal_mode = WAL");  // otherwise the writer waits
  CheckOneMoment("sqlite:" + (Folder / "a.db"), [&](const char* Statement) { Other->Execute(Statement); });
}

TEST(ReadTransaction, OfPostgreSQL) {
  TPostgreSQLDatabase Database;
  CheckOneMoment(Database.Url(), [&](const char* Statement) { Database.Run(Statement); });
}

// The server has room for the locks of a few thousand tables and indexes.
TEST(ReadTransaction, OfPostgreSQLHoldsNoLockOnATableThatWasRead) {
  TPostgreSQLDatabase Database;
  TStandaloneManager Manager{TConfiguration()};
  for (const std::string Name : {"a", "b"})
    Database.Run("CREATE TABLE " + Name + " (i text PRIMARY KEY, j integer UNIQUE)");
  TReadTransaction Moment(Manager.Databases(), Database.Url());
  const auto Walk = [&](const char* Name) {
    const auto Table = Manager.GetUserTable(Name, Database.Url(), false);
    ASSERT_TRUE(Table->OrderByKey());
    EXPECT_EQ(Table->RecordCount(), 0);
    EXPECT_FALSE(Table->First());
  };
  Walk("a");
  Database.Run("INSERT INTO b VALUES ('later', 1)");
  Walk("b");
  EXPECT_EQ(Database.Rows("SELECT DISTINCT relation::regclass::text FROM pg_locks WHERE pid <> pg_backend_pid() "
                          "AND relation::regclass::text LIKE 'a%' AND relation >= 16384"),
            "");
}

}  // namespace
}  // namespace velkrund::tests
