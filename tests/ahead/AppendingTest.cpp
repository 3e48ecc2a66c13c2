// Rows that a thread puts in while its caller goes on, or does something else with the connection.

#include <gmock/gmock.h>

#include <chrono>
#include <set>
#include <thread>

#include "standalone/drivers/ahead/AppendAhead.h"
#include "tests/ahead/AheadFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using TClock = std::chrono::steady_clock;

class AppendingTest : public AheadFixture {
 protected:
  void SetUp() override {
    Run("CREATE TABLE A (N INTEGER PRIMARY KEY, T TEXT)");
    Run("CREATE TABLE B (N BIGINT)");
    Run("INSERT INTO B VALUES (0)");
  }
  static void AppendRow(TDriverTable& Table, std::int64_t Number) {
    Table.ClearData();
    Table.Record().Fields(0).Buffer().SetInteger(Number);
    Table.Record().Fields(1).Buffer().SetText("row " + std::to_string(Number));
    Table.AppendRecord();
  }
  /// Numbers from First to Last.
  static void AppendRows(TDriverTable& Table, std::int64_t First, std::int64_t Last) {
    for (std::int64_t Number = First; Number <= Last; ++Number) AppendRow(Table, Number);
  }
  /// Expects the rows from 1 to Count, and no others.
  void ExpectRows(std::int64_t Count) {
    EXPECT_EQ(Number("SELECT count(*) FROM A"), Count);
    EXPECT_EQ(Number("SELECT count(*) FROM A WHERE N BETWEEN 1 AND " + std::to_string(Count) + " AND T = 'row ' || N"),
              Count);
  }
};

TEST_F(AppendingTest, AllRowsAreInAtTheEndWhateverTheirNumber) {
  // Without a thread, the first rows of one, a batch and one more, many.
  for (const int Count : {0, 32, 33, 34, 32 + 2048, 33 + 2048, 100'000}) {
    SCOPED_TRACE(Count);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    TDriverTable Table = Open("A");
    Table.BeginAppend();
    AppendRows(Table, 1, Count);
    Table.EndAppend();
    ExpectRows(Count);
    Connection->Rollback();
  }
}

TEST_F(AppendingTest, ARowThatIsRefusedIsNamedAsWithoutAThread) {
  constexpr int Count = 60'000;
  Run("CREATE TABLE STRICTER (N INTEGER PRIMARY KEY, T TEXT CHECK (T <> 'no'))");
  const auto Failure = [](TBulkAppender& Appender, int At, const char* Why) {
    TKvVariant Values[2];
    const std::vector<const TKvVariant*> Row = {&Values[0], &Values[1]};
    try {
      for (int Number = 1; Number <= Count; ++Number) {
        Values[0].SetInteger(Number);
        Values[1].SetText("row");
        if (Number == At && *Why == 'k') Values[0].SetInteger(At - 1);
        if (Number == At && *Why == 'c') Values[1].SetText("no");
        if (Number == At && *Why == 'v') Values[0].SetText("many");
        Appender.Append(Row);
      }
      Appender.Finish();
    } catch (const EDatabaseError& Error) {
      return std::to_string(Error.Info().Record) + " " + Error.what();
    }
    return std::string("no error");
  };
  for (const char* Why : {"key", "check", "value"})
    for (const int At : {2, 33, 3000, 40'001, Count}) {
      SCOPED_TRACE(Why + (" at " + std::to_string(At)));
      const TTableDescription Table = Connection->Schema().Describe(*Connection->Schema().FindTable("STRICTER"));
      const auto Opened = [&] { return Connection->Rows().OpenAppender(Table, std::vector{0, 1}, {}); };
      Connection->Begin(TIsolationLevel::RepeatableRead);
      const std::string Here = Failure(*Opened(), At, Why);
      Connection->Rollback();
      Connection->Begin(TIsolationLevel::RepeatableRead);
      TAppendAhead Ahead(Opened(), 2, *Connection->Turn());
      EXPECT_EQ(Failure(Ahead, At, Why), Here);
      EXPECT_THAT(Here, StartsWith(std::to_string(At) + " Cannot append record " + std::to_string(At)));
      Connection->Rollback();
      EXPECT_EQ(Number("SELECT count(*) FROM STRICTER"), 0);
    }
}

TEST_F(AppendingTest, NobodyGoesOnBehindARowThatIsRefused) {
  if (Processors() < 2) GTEST_SKIP() << "no thread works ahead on one processor";
  Connection->Begin(TIsolationLevel::RepeatableRead);
  TDriverTable Table = Open("A");
  Table.BeginAppend();
  AppendRows(Table, 1, 5000);
  const std::string Refused = "EDatabaseError: Cannot append record 5001 ";
  std::string Error = ErrorOf([&] { AppendRow(Table, 5000); });
  for (std::int64_t Number = 5001; Error == "no error" && Number < 100'000; ++Number)
    Error = ErrorOf([&] { AppendRow(Table, Number); });
  EXPECT_THAT(Error, StartsWith(Refused));
  EXPECT_THAT(ErrorOf([&] { AppendRow(Table, 200'000); }), StartsWith(Refused));
  EXPECT_THAT(ErrorOf([&] { Table.EndAppend(); }), StartsWith(Refused));
  ExpectRows(5000);
  Connection->Rollback();
  ExpectRows(0);
}

TEST_F(AppendingTest, OtherUsesOfTheConnectionTakeNothingFromAnAppend) {
  constexpr int Count = 10'000;
  for (const TOtherUse& Other : OtherUses())
    for (const int At : {33, 34, 2500, Count}) {
      SCOPED_TRACE(Other.Name + (" at " + std::to_string(At)));
      Connection->Begin(TIsolationLevel::RepeatableRead);
      TDriverTable Table = Open("A");
      Table.BeginAppend();
      AppendRows(Table, 1, At);
      Other.Use(*Connection);
      AppendRows(Table, At + 1, Count);
      Table.EndAppend();
      ExpectRows(Count);
      Connection->Rollback();
    }
}

TEST_F(AppendingTest, AWalkAndTwoAppendsTakeTurns) {
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Run("CREATE TABLE C (N BIGINT, T TEXT)");
  Run("INSERT INTO C " + Numbers(5000) + "SELECT N, 'row ' || N FROM S");
  Run("CREATE TABLE D (N BIGINT, T TEXT)");
  TDriverTable Source = Open("C"), First = Open("A"), Second = Open("D");
  First.BeginAppend();
  Second.BeginAppend();
  std::int64_t Row = 0;
  for (bool Has = Source.First(); Has; Has = Source.Next()) {
    AppendRow(First, Source.FieldByName("N").Value().AsInteger());
    if (++Row > 100) AppendRow(Second, Row);
    ASSERT_EQ(Source.FieldByName("T").Value().AsText(), "row " + std::to_string(Row));
  }
  First.EndAppend();
  Second.EndAppend();
  ExpectRows(5000);
  EXPECT_EQ(Number("SELECT count(*) FROM D WHERE T = 'row ' || N AND N > 100"), 4900);
  Connection->Rollback();
}

TEST_F(AppendingTest, ALargeRowGoesInBetweenOthers) {
  Run("CREATE TABLE C (N BIGINT, T TEXT)");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  TDriverTable Table = Open("C");
  Table.BeginAppend();
  for (int Number = 1; Number <= 300; ++Number) {
    Table.ClearData();
    Table.Record().Fields(0).Buffer().SetInteger(Number);
    const std::string Text(static_cast<std::size_t>(Number % 50 < 3 ? 200'000 + Number * 1000 : Number), 'x');
    Table.Record().Fields(1).Buffer().BorrowText(Text);
    Table.AppendRecord();
  }
  Table.EndAppend();
  EXPECT_EQ(Number("SELECT count(*) FROM C WHERE N = rowid AND replace(T, 'x', '') = '' AND "
                   "length(T) = CASE WHEN N % 50 < 3 THEN 200000 + N * 1000 ELSE N END"),
            300);
  Connection->Commit();
}

TEST_F(AppendingTest, WhatIsDroppedLeavesTheConnectionToOthers) {
  for (const int Count : {33, 1000, 50'000}) {
    Connection->Begin(TIsolationLevel::RepeatableRead);
    const std::ptrdiff_t Before = Threads();
    {
      TDriverTable Table = Open("A");
      Table.BeginAppend();
      AppendRows(Table, 1, Count);
    }
    ExpectThreads(Before);
    Run("INSERT INTO B VALUES (1)");
    Connection->Rollback();
    ExpectRows(0);
    EXPECT_EQ(Number("SELECT count(*) FROM B"), 1);
  }
}

TEST_F(AppendingTest, ARollBackDoesNotWaitForRowsThatItUndoes) {
  if (Processors() < 2) GTEST_SKIP() << "no thread works ahead on one processor";
  Run("CREATE TRIGGER SLOW AFTER INSERT ON A BEGIN UPDATE B SET N = (" + Numbers(20'000) +
      "SELECT max(N) FROM S); END");
  for (const bool ToMark : {false, true}) {
    Connection->Begin(TIsolationLevel::RepeatableRead);
    if (ToMark) Connection->SetSavepoint(1);
    TDriverTable Table = Open("A");
    Table.BeginAppend();
    AppendRows(Table, 1, 5000);
    const TClock::time_point Start = TClock::now();
    if (ToMark)
      Connection->RollbackToSavepoint(1);
    else
      Connection->Rollback();
    EXPECT_LT(TClock::now() - Start, std::chrono::seconds(4));
    EXPECT_EQ(Number("SELECT N FROM B"), 0);
    ExpectRows(0);
    EXPECT_THAT(ErrorOf([&] { Table.EndAppend(); }), HasSubstr("was rolled back meanwhile"));
    if (ToMark) Connection->Rollback();
  }
}

/// A row that takes the engine for ever.
constexpr const char* Endless =
    "CREATE TRIGGER SLOW AFTER INSERT ON A WHEN NEW.N = 3000 BEGIN "
    "INSERT INTO B SELECT count(*) FROM A X, A Y, A Z, A U WHERE X.N + Y.N + Z.N + U.N < 0; END";

TEST_F(AppendingTest, TheWishToStopIsHeededByTheCallersThreadAlone) {
  Run(Endless);
  std::set<std::thread::id> Asked;
  std::atomic<bool> Wish = false;
  Connection = Connect({.Canceled = [&] { return Asked.insert(std::this_thread::get_id()), Wish.load(); }});
  const struct {
    const char* Name;
    std::function<void(TDriverTable& Table)> Wait;
    bool MayPass = false;  // a thread that has not come to that row never does
  } Waits[] = {
      {"next row", [](TDriverTable& Table) { AppendRows(Table, 4201, 1'000'000); }},
      {"end", [](TDriverTable& Table) { Table.EndAppend(); }},
      // A thread that is stopped between two rows leaves the transaction as it is, and what happened for the end.
      {"statement", [this](TDriverTable& Table) { Run("INSERT INTO B VALUES (5)"), Table.EndAppend(); }},
      {"begin again", [](TDriverTable& Table) { Table.BeginAppend(); }, true},
  };
  for (const auto& Case : Waits) {
    SCOPED_TRACE(Case.Name);
    Wish = false;
    Connection->Begin(TIsolationLevel::RepeatableRead);
    std::thread Wishing([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      Wish = true;
    });
    TClock::time_point Start;
    {
      TDriverTable Table = Open("A");
      Table.BeginAppend();
      Start = TClock::now();
      const std::string Error = ErrorOf([&] {
        AppendRows(Table, 1, 4200);
        Case.Wait(Table);
      });
      if (!Case.MayPass || Error != "no error") {
        EXPECT_THAT(Error, StartsWith("EAbort: Cannot append record "));
      }
    }
    EXPECT_LT(TClock::now() - Start, std::chrono::seconds(3));
    Wishing.join();
    Connection->Rollback();
    ExpectRows(0);
    EXPECT_EQ(Number("SELECT count(*) FROM B"), 1) << "what was executed when the transaction was gone has stayed";
  }
  EXPECT_THAT(Asked, ElementsAre(std::this_thread::get_id()));
}

TEST_F(AppendingTest, NothingIsExecutedBehindATransactionThatIsLost) {
  if (Processors() < 2) GTEST_SKIP() << "no thread works ahead on one processor";
  // It takes its time, so that the caller has gone on by then.
  Run("CREATE TRIGGER LOST AFTER INSERT ON A WHEN NEW.N = 1000 BEGIN SELECT CASE WHEN (" + Numbers(1'000'000) +
      "SELECT max(N) FROM S) > 0 THEN RAISE(ROLLBACK, 'lost') END; END");
  for (const bool Dropped : {false, true}) {
    SCOPED_TRACE(Dropped);
    Connection->Begin(TIsolationLevel::RepeatableRead);
    const std::ptrdiff_t Before = Threads();
    auto Table = std::make_unique<TDriverTable>(*Connection, Connection->Schema().FindTable("A").value(), true);
    Table->BeginAppend();
    AppendRows(*Table, 1, 3000);
    for (int Wait = 0; Threads() != Before && Wait < 1000; ++Wait)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (Dropped) Table.reset();
    EXPECT_THAT(ErrorOf([&] { Run("INSERT INTO B VALUES (1)"); }), HasSubstr("record 1000 to table 'A': lost"));
    if (Table) {
      EXPECT_THAT(ErrorOf([&] { Table->EndAppend(); }), HasSubstr("record 1000 to table 'A': lost"));
    }
    Connection->Rollback();
    EXPECT_EQ(Number("SELECT count(*) FROM B"), 1);
    ExpectRows(0);
  }
}

}  // namespace
}  // namespace velkrund::tests
