#include <gmock/gmock.h>

#include "standalone/tables/DriverBaseManager.h"
#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

class SQLiteRowCopyTest : public SQLiteFixture {
 protected:
  TDriverBaseManager Manager() { return TDriverBaseManager(*Connection); }
  /// The first column of every row of an answer.
  std::string AskFor(const std::string& Statement) {
    const auto Cursor = Connection->Query(Statement, {});
    std::string Result;
    for (TKvVariant Value; Cursor->Next();) {
      Cursor->Read(0, Value);
      Result += (Result.empty() ? "" : ";") + std::string(Value.AsText());
    }
    return Result;
  }
};

TEST_F(SQLiteRowCopyTest, RowsStandAsTheyStoodAndKeepTheirNumbersWhereNoFieldShowsThem) {
  const std::string Numbered =
      "INSERT INTO \"s \"\"t\" (oid, a, b) VALUES (7, 'y', 'q'), (-3, 'x', 'p'), (9, 'z', 'r')";
  const std::string Plain = "INSERT INTO \"s \"\"t\" (a, b) VALUES ('y', 'q'), ('x', 'p'), ('z', 'r')";
  const struct {
    std::string Source, Rows, Target, Shown, Result;
  } Cases[] = {
      {"(a, b)", Numbered, "(b, a)", "rowid || a || b", "-3xp;7yq;9zr"},
      // In an index that holds all fields the rows stand otherwise.
      {"(a, b, UNIQUE (b DESC, a))", Numbered, "(a, b)", "rowid || a || b", "-3xp;7yq;9zr"},
      {"(a, b, rowid)", Numbered, "(a, _ROWID_, b, rowid)", "oid || a || b", "-3xp;7yq;9zr"},
      {"(a, b)", Numbered, "(a, b, rowid, oid, _rowid_)", "a || b", "xp;yq;zr"},
      {"(a, b)", Numbered, "(a, b, n INTEGER PRIMARY KEY)", "n || a || b", "1xp;2yq;3zr"},
      {"(a, b, n INTEGER PRIMARY KEY)", Numbered, "(a, b)", "rowid || a || b", "1xp;2yq;3zr"},
      {"(a, b)", Numbered, "(a, b PRIMARY KEY) WITHOUT ROWID", "a || b", "xp;yq;zr"},
      {"(a, b, PRIMARY KEY (a DESC)) WITHOUT ROWID", Plain, "(a, b)", "rowid || a || b", "1zr;2yq;3xp"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Source + " > " + Case.Target);
    Run("CREATE TABLE \"s \"\"t\" " + Case.Source);
    Run("CREATE TABLE \"main.x\" " + Case.Target);
    Run(Case.Rows);
    EXPECT_EQ(Manager().CopyFields("", "s \"t", "main.x", {{"a", "a"}, {"b", "b"}}, false), 3);
    EXPECT_EQ(AskFor("SELECT " + Case.Shown + " FROM \"main.x\" NOT INDEXED"), Case.Result);
    for (const char* Name : {"s \"t", "main.x"}) Manager().DropTable(Name);
  }
}

TEST_F(SQLiteRowCopyTest, RowsThatAreThereStayAndNoneIsDroppedWithoutAWord) {
  Run("CREATE TABLE S (A)");
  Run("INSERT INTO S VALUES (1), (2)");
  Run("CREATE TABLE T (A UNIQUE ON CONFLICT REPLACE)");
  Run("INSERT INTO T VALUES (7)");
  EXPECT_EQ(Manager().CopyTableData("S", "T", false), 2);
  EXPECT_EQ(AskFor("SELECT rowid || '=' || A FROM T"), "1=7;2=1;3=2");
  EXPECT_THAT(ErrorOf([&] { Manager().CopyTableData("S", "T", false); }),
              testing::HasSubstr("Cannot copy the rows of table 'S' into table 'T': UNIQUE constraint failed: T.A"));
  EXPECT_EQ(AskFor("SELECT rowid || '=' || A FROM T"), "1=7;2=1;3=2");
}

TEST_F(SQLiteRowCopyTest, NothingIsCertainInADatabaseOfOtherTexts) {
  Connection = Connect(Folder / "wide.db");
  Run("PRAGMA encoding = 'UTF-16le'");
  Run("CREATE TABLE S (A)");
  Run("CREATE TABLE T (A)");
  Connection = Connect(Folder / "wide.db");
  EXPECT_FALSE(Manager().CopyFields("", "S", "T", {{"A", "A"}}, false));
}

}  // namespace
}  // namespace velkrund::tests
