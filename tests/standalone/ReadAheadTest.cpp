// Rows that a thread of its own reads while the caller uses those before them.

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include "tests/standalone/DriverFixture.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using TClock = std::chrono::steady_clock;

class ReadAheadTest : public DriverFixture {
 protected:
  bool IsSQLite() const { return GetParam().Name == "sqlite"; }
  static std::vector<std::string> Walked(TDriverTable& Table) {
    std::vector<std::string> Result;
    for (bool Row = Table.First(); Row; Row = Table.Next()) {
      std::string& Line = Result.emplace_back();
      for (int I = 0; I < Table.Record().FieldCount(); ++I) Line += Shown(Table.Record().Fields(I).Value()) + "|";
    }
    return Result;
  }
  static std::string Numbers(int Last) {
    return "WITH RECURSIVE S (N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM S WHERE N < " + std::to_string(Last) + ") ";
  }
  static void FillNumbers(TConnection& Database, int Last) {
    Database.Execute("CREATE TABLE A (N BIGINT)");
    Database.Execute("INSERT INTO A " + Numbers(Last) + "SELECT N FROM S");
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, ReadAheadTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(ReadAheadTest, TheSameRowsComeInTheSameOrder) {
  const std::string Bytes = IsSQLite() ? "CAST(X.T AS BLOB)" : "X.T::bytea";
  const std::string Repeat = IsSQLite() ? "printf('%.*c', N * 997 % 400000, 'x')" : "repeat('x', N * 997 % 400000)";
  const struct {
    int Rows;
    std::string Text;  // from N
  } Cases[] = {{0, "''"}, {1, "''"}, {682, "'ä' || N"}, {683, "'ä' || N"}, {5000, "'row ' || N"}, {60, Repeat}};
  for (const auto& [Count, Text] : Cases) {
    SCOPED_TRACE(Text + " " + std::to_string(Count));
    Run("CREATE TABLE T (I BIGINT, R " + Type(TKvKind::Double) + ", C " + Type(TKvKind::Currency) + ", S " +
        (IsSQLite() ? "CLOB" : "TEXT") + ", B " + Type(TKvKind::Bytes) + ", D " + Type(TKvKind::SysDate) + ")");
    if (Count > 0)
      Run("INSERT INTO T SELECT X.N, X.N / 7.0, X.N * 0.25, X.T, " + Bytes + ", CASE X.N % 3 WHEN 0 THEN '2024-02-29'" +
          (IsSQLite() ? "" : "::date") + " END FROM (" + Numbers(Count) + "SELECT N, " + Text + " AS T FROM S) X");
    TDriverTable Plain = Open("T"), Ahead = Open("T");
    Ahead.SetReadAhead(true);
    for (const bool InTransaction : {false, true}) {
      if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
      const std::vector<std::string> Expected = Walked(Plain);
      EXPECT_EQ(Expected.size(), static_cast<std::size_t>(Count));
      EXPECT_TRUE(Walked(Ahead) == Expected);
      EXPECT_TRUE(Walked(Ahead) == Expected) << "a second time";
      if (InTransaction) Connection->Rollback();
    }
    Run("DROP TABLE T");
  }
}

TEST_P(ReadAheadTest, AWalkEndsWhereTheCallerLeavesIt) {
  FillNumbers(*Connection, 100'000);
  for (const int Rows : {1, 3000, 20'000})
    for (const bool InTransaction : {false, true}) {
      if (InTransaction) Connection->Begin(TIsolationLevel::RepeatableRead);
      {
        TDriverTable Table = Open("A");
        Table.SetReadAhead(true);
        ASSERT_TRUE(Table.First());
        for (int I = 1; I < Rows; ++I) ASSERT_TRUE(Table.Next());
        EXPECT_EQ(Table.FieldByName("N").Value().AsInteger(), Rows);
      }
      Connection->Execute("DELETE FROM A WHERE N < 0");
      EXPECT_EQ(Open("A").RecordCount(), 100'000);
      if (InTransaction) Connection->Commit();
    }
}

TEST_P(ReadAheadTest, WhatFailsInTheMiddleIsToldAtItsRow) {
  FillNumbers(*Connection, 40'000);
  // The second row of a later batch.
  Run(std::string("CREATE VIEW \"V\" AS SELECT N, CASE WHEN N = 20002 THEN ") +
      (IsSQLite() ? "abs(-9223372036854775807 - 1)" : "N / (N - 20002)") + " ELSE N END AS M FROM A");
  TDriverTable Table = Open("V");
  Table.SetReadAhead(true);
  std::int64_t Rows = 0;
  const auto Walk = [&] {
    Rows = 0;
    for (bool Row = Table.First(); Row; Row = Table.Next())
      EXPECT_EQ(Table.FieldByName("M").Value().AsInteger(), ++Rows);
  };
  const TErrorInfo Info = InfoOf(Walk);
  EXPECT_EQ(Rows, IsSQLite() ? 20'001 : Rows);
  EXPECT_EQ(Info.EngineCode, IsSQLite() ? "1" : "22012");
  EXPECT_THAT(ErrorOf(Walk), StartsWith("EDatabaseError: Cannot read table 'V': "));
  EXPECT_THAT(ErrorOf([&] { Table.FieldByName("N").Value(); }), HasSubstr("stands on no row"));
  EXPECT_FALSE(Table.Next());
  EXPECT_EQ(Open("A").RecordCount(), 40'000);
}

TEST_P(ReadAheadTest, TheHostIsCalledByTheCallersThreadAlone) {
  std::set<std::thread::id> Threads;
  std::atomic<bool> Wish = false;
  int Lines = 0;
  const auto Here = [&] { Threads.insert(std::this_thread::get_id()); };
  TConnected Other = GetParam().Connect(Folder, {.Canceled = [&] { return Here(), Wish.load(); },
                                                 .Trace = [&](TTraceLevel, const std::string&) { Here(), ++Lines; }});
  FillNumbers(*Other.Connection, 10'000);
  if (!IsSQLite())
    Other.Connection->Execute(
        "CREATE FUNCTION TELL(bigint) RETURNS bigint LANGUAGE plpgsql AS "
        "$$BEGIN IF $1 = 9999 THEN RAISE WARNING 'nearly'; END IF; RETURN $1; END$$");
  // The last row takes for ever.
  Other.Connection->Execute(std::string("CREATE VIEW \"V\" AS SELECT ") + (IsSQLite() ? "N" : "TELL(N) AS N") +
                            " FROM A UNION ALL SELECT count(*) FROM A X, A Y, A Z WHERE X.N + Y.N + Z.N < 0");
  TDriverTable Table(*Other.Connection, *Other.Connection->Schema().FindTable("V"), false);
  Table.SetReadAhead(true);
  ASSERT_TRUE(Table.First());
  std::thread Wishing([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    Wish = true;
  });
  const TClock::time_point Start = TClock::now();
  const std::string Error = ErrorOf([&] {
    while (Table.Next()) {
    }
  });
  Wishing.join();
  EXPECT_THAT(Error, StartsWith("EAbort: Cannot read table 'V'"));
  EXPECT_LT(TClock::now() - Start, std::chrono::seconds(3));
  EXPECT_THAT(Threads, ElementsAre(std::this_thread::get_id()));
  EXPECT_EQ(Lines, IsSQLite() ? 0 : 1);

  // Left instead of cancelled.
  Wish = false;
  ASSERT_TRUE(Table.First());
  for (int I = 1; I < 40; ++I) ASSERT_TRUE(Table.Next());
  const TClock::time_point Left = TClock::now();
  ASSERT_TRUE(Table.First());
  EXPECT_LT(TClock::now() - Left, std::chrono::seconds(2));
}

}  // namespace
}  // namespace velkrund::tests
