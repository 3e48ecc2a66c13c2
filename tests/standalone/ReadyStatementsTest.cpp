#include <gmock/gmock.h>

#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Statements that come again are prepared once: nothing of an earlier run may be left in them.
class ReadyStatementsTest : public SQLiteFixture {
 protected:
  ReadyStatementsTest() {
    Connection = Connect(Folder / "ready.db");
    Run("CREATE TABLE A (ID INTEGER PRIMARY KEY, V)");
    Run("INSERT INTO A VALUES (1, 'x'), (2, 'y')");
  }

  std::vector<std::string> Asked(const std::string& Statement, std::int64_t Parameter) {
    TKvVariant Value;
    Value.SetInteger(Parameter);
    const auto Cursor = Connection->Query(Statement, {&Value, 1});
    std::vector<std::string> Result;
    for (TKvVariant Cell; Cursor->Next();) Cursor->Read(0, Cell), Result.emplace_back(Cell.AsText());
    return Result;
  }
};

TEST_F(ReadyStatementsTest, EachRunHasItsOwnParametersAndRows) {
  const std::string Statement = "SELECT V FROM A WHERE ID >= ?1 ORDER BY ID";
  EXPECT_THAT(Asked(Statement, 1), ElementsAre("x", "y"));
  EXPECT_THAT(Asked(Statement, 2), ElementsAre("y"));
  TKvVariant One;
  One.SetInteger(1);
  const auto Outer = Connection->Query(Statement, {&One, 1});
  ASSERT_TRUE(Outer->Next());
  // While one stands on a row the same text is another statement.
  EXPECT_THAT(Asked(Statement, 2), ElementsAre("y"));
  ASSERT_TRUE(Outer->Next());
  EXPECT_FALSE(Outer->Next());
  EXPECT_THAT(ErrorOf([&] { Connection->Query(Statement); }), HasSubstr("takes 1 parameters, not 0"));
}

TEST_F(ReadyStatementsTest, OneThatIsLeftOnARowHoldsNothing) {
  const std::string Statement = "SELECT V FROM A WHERE ID > ?1";
  for (int Again = 0; Again < 2; ++Again) {
    TKvVariant None;
    None.SetInteger(0);
    ASSERT_TRUE(Connection->Query(Statement, {&None, 1})->Next());
    const auto Other = Connect(Folder / "ready.db");
    EXPECT_EQ(Other->Execute("UPDATE A SET V = V"), 2);
  }
  Run("DROP TABLE A");
  EXPECT_THAT(ErrorOf([&] { Asked(Statement, 0); }), HasSubstr("no such table: A"));
}

TEST_F(ReadyStatementsTest, TheSchemaOfTheMomentCounts) {
  const std::string Statement = "SELECT V FROM A WHERE ID > ?1", Write = "UPDATE A SET V = 'z'";
  EXPECT_THAT(Asked(Statement, 1), ElementsAre("y"));
  EXPECT_EQ(Connection->Execute(Write), 2);
  const auto Other = Connect(Folder / "ready.db");
  Other->Execute("DROP TABLE A");
  Other->Execute("CREATE TABLE A (W, V, ID)");
  EXPECT_THAT(Asked(Statement, 1), IsEmpty());
  EXPECT_EQ(Connection->Execute(Write), 0);
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Run("INSERT INTO A VALUES (1, 'a', 7)");
  Run("CREATE TEMP TABLE A (ID, V)");
  EXPECT_THAT(Asked(Statement, 1), IsEmpty());
  Connection->Rollback();
  Run("INSERT INTO A VALUES (1, 'b', 7)");
  EXPECT_THAT(Asked(Statement, 1), ElementsAre("b"));
}

// What some statements do, they do while they are prepared.
TEST_F(ReadyStatementsTest, SettingsAreMadeEachTime) {
  for (int Again = 0; Again < 2; ++Again) {
    for (const std::int64_t Size : {77, 99}) {
      Run("PRAGMA cache_size = " + std::to_string(Size));
      TKvVariant Cell;
      const auto Cursor = Connection->Query("PRAGMA cache_size");
      ASSERT_TRUE(Cursor->Next());
      Cursor->Read(0, Cell);
      EXPECT_EQ(Cell.AsInteger(), Size);
    }
  }
}

TEST_F(ReadyStatementsTest, ARefusedOneIsAsGoodAsNew) {
  const std::string Statement = "INSERT INTO A VALUES (?1, 'n')";
  const auto Insert = [&](std::int64_t Id) {
    TKvVariant Value;
    Value.SetInteger(Id);
    return Connection->Execute(Statement, {&Value, 1});
  };
  EXPECT_EQ(Insert(3), 1);
  EXPECT_THAT(ErrorOf([&] { Insert(3); }), AllOf(HasSubstr("UNIQUE constraint failed: A.ID"), HasSubstr(Statement)));
  EXPECT_EQ(Insert(4), 1);
  for (int I = 0; I < 200; ++I) Run("INSERT INTO A VALUES (" + std::to_string(100 + I) + ", 'm')");
  EXPECT_EQ(Insert(5), 1);
  EXPECT_THAT(Asked("SELECT count(*) || '' FROM A WHERE ID > ?1", 0), ElementsAre("205"));
}

}  // namespace
}  // namespace velkrund::tests
