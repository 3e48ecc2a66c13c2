// Rows that a thread reads ahead while its caller does something else with the connection.

#include <gmock/gmock.h>

#include "tests/ahead/AheadFixture.h"

namespace velkrund::tests {
namespace {

class ReadingTest : public AheadFixture {
 protected:
  void Fill(int Rows) {
    Run("CREATE TABLE A (N BIGINT, T TEXT)");
    Run("INSERT INTO A " + Numbers(Rows) + "SELECT N, 'row ' || N FROM S");
    Run("CREATE TABLE B (N BIGINT)");
    Run("INSERT INTO B VALUES (0)");
  }
  /// Expects that the row is that of the number.
  static void ExpectRow(TDriverTable& Table, std::int64_t Number) {
    ASSERT_EQ(Table.FieldByName("N").Value().AsInteger(), Number);
    ASSERT_EQ(Table.FieldByName("T").Value().AsText(), "row " + std::to_string(Number));
  }
};

TEST_F(ReadingTest, OtherUsesOfTheConnectionTakeNothingFromAWalk) {
  constexpr int Count = 20'000;
  Fill(Count);
  for (const TOtherUse& Other : OtherUses())
    for (const int At : {33, 34, 2500, 15'000}) {
      SCOPED_TRACE(Other.Name + (" at " + std::to_string(At)));
      Connection->Begin(TIsolationLevel::RepeatableRead);
      TDriverTable Table = Open("A");
      std::int64_t Row = 0;
      for (bool Has = Table.First(); Has; Has = Table.Next()) {
        if (++Row == At) Other.Use(*Connection);
        ASSERT_NO_FATAL_FAILURE(ExpectRow(Table, Row));
      }
      EXPECT_EQ(Row, Count);
      Connection->Rollback();
    }
}

TEST_F(ReadingTest, TwoWalksAtOnceAndOneWithinTheOther) {
  Fill(3000);
  TDriverTable Outer = Open("A"), Inner = Open("A");
  std::int64_t Row = 0;
  for (bool Has = Outer.First(); Has; Has = Outer.Next()) {
    ASSERT_NO_FATAL_FAILURE(ExpectRow(Outer, ++Row));
    if (Row % 500 != 40) continue;
    std::int64_t Within = 0;
    for (bool More = Inner.First(); More; More = Inner.Next()) ASSERT_NO_FATAL_FAILURE(ExpectRow(Inner, ++Within));
    EXPECT_EQ(Within, 3000);
    ASSERT_NO_FATAL_FAILURE(ExpectRow(Outer, Row));
  }
  EXPECT_EQ(Row, 3000);
}

TEST_F(ReadingTest, RowsThatAreChangedFromTheBeginningComeAsTheyAreThen) {
  Fill(1000);
  Connection->Begin(TIsolationLevel::RepeatableRead);
  TDriverTable Table = Open("A");
  std::vector<std::int64_t> Seen;
  for (bool Has = Table.First(); Has; Has = Table.Next()) {
    Seen.push_back(Table.FieldByName("N").Value().AsInteger());
    static_cast<void>(Table.FieldByName("T").Value());
    Run("DELETE FROM A WHERE N = " + std::to_string(Seen.back() + 1));
  }
  EXPECT_EQ(Seen.size(), 500U);
  EXPECT_EQ(Seen.back(), 999);
}

TEST_F(ReadingTest, AThreadIsWorthItForManyRowsThatAreReadWhole) {
  Fill(20'000);  // more than is read ahead: the thread is still there when it is counted
  Run("CREATE TABLE SMALL (N BIGINT, T TEXT)");
  Run("INSERT INTO SMALL " + Numbers(32) + "SELECT N, 'row ' || N FROM S");
  const auto MostThreads = [&](const char* Name, bool Whole) {
    const std::ptrdiff_t Before = Threads();
    std::ptrdiff_t Most = 0;
    TDriverTable Table = Open(Name);
    for (bool Has = Table.First(); Has; Has = Table.Next()) {
      static_cast<void>(Table.FieldByName("N").Value());
      if (Whole) static_cast<void>(Table.FieldByName("T").Value());
      Most = std::max(Most, Threads() - Before);
    }
    ExpectThreads(Before);
    return Most;
  };
  cpu_set_t All, One;
  CPU_ZERO(&One);
  ASSERT_EQ(sched_getaffinity(0, sizeof All, &All), 0);
  EXPECT_EQ(MostThreads("SMALL", true), 0);
  EXPECT_EQ(MostThreads("A", false), 0) << "the other column may be large";
  EXPECT_EQ(MostThreads("A", true), CPU_COUNT(&All) > 1 ? 1 : 0);
  for (std::size_t Processor = 0; CPU_COUNT(&One) == 0; ++Processor)
    if (CPU_ISSET(Processor, &All)) CPU_SET(Processor, &One);
  ASSERT_EQ(sched_setaffinity(0, sizeof One, &One), 0);
  EXPECT_EQ(MostThreads("A", true), 0) << "one processor";
  ASSERT_EQ(sched_setaffinity(0, sizeof All, &All), 0);
}

TEST_F(ReadingTest, LargeRowsComeBetweenOthers) {
  constexpr int Count = 300;
  const auto SizeOf = [](std::int64_t Row) { return Row % 50 < 3 ? 200'000 + Row * 1000 : Row; };
  Run("CREATE TABLE A (N BIGINT, T TEXT)");
  Run("INSERT INTO A " + Numbers(Count) +
      "SELECT N, printf('%.*c', CASE WHEN N % 50 < 3 THEN 200000 + N * 1000 ELSE N END, 'x') FROM S");
  TDriverTable Table = Open("A");
  std::int64_t Row = 0;
  for (bool Has = Table.First(); Has; Has = Table.Next()) {
    ++Row;
    ASSERT_EQ(Table.FieldByName("N").Value().AsInteger(), Row);
    ASSERT_EQ(Table.FieldByName("T").Value().AsText(), std::string(static_cast<std::size_t>(SizeOf(Row)), 'x'));
  }
  EXPECT_EQ(Row, Count);
}

TEST_F(ReadingTest, AnUnfinishedWalkIsNoneOfTheClosing) {
  Fill(20'000);
  TDriverTable Table = Open("A");
  bool Has = Table.First();
  for (int Row = 1; Row < 100 && Has; ++Row) Has = Table.Next();
  EXPECT_TRUE(Has);
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Run("DELETE FROM B");
  Connection->Commit();
  EXPECT_EQ(Number("SELECT count(*) FROM B"), 0);
}

}  // namespace
}  // namespace velkrund::tests
