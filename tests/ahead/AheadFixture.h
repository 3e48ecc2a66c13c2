#pragma once

#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {

/// A database whose tables a thread of its own may work on ahead.
class AheadFixture : public testing::Test {
 protected:
  AheadFixture() {
    Run("PRAGMA synchronous = OFF");
    // A sanitizer begins a thread of its own with the first, and threads are counted.
    std::thread([] {}).join();
  }

  std::unique_ptr<TConnection> Connect(TConnectOptions Options) const {
    Options.CreateMissing = true;
    return TSQLiteDriver().Connect({"sqlite", Folder / "ahead.db"}, Options);
  }
  void Run(const std::string& Statement) { Connection->Execute(Statement); }
  TDriverTable Open(const std::string& Name) {
    return {*Connection, Connection->Schema().FindTable(Name).value(), true};
  }
  /// One cell of an answer.
  std::int64_t Number(const std::string& Statement) {
    TKvVariant Value;
    const std::unique_ptr<TCursor> Cursor = Connection->Query(Statement, {});
    EXPECT_TRUE(Cursor->Next());
    Cursor->Read(0, Value);
    return Value.AsInteger();
  }
  /// Numbers from 1 to Last.
  static std::string Numbers(int Last) {
    return "WITH RECURSIVE S (N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM S WHERE N < " + std::to_string(Last) + ") ";
  }
  static std::ptrdiff_t Threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
  }

  /// One that has ended is listed for a moment more.
  static void ExpectThreads(std::ptrdiff_t Count) {
    for (int Wait = 0; Threads() != Count && Wait < 500; ++Wait)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(Threads(), Count);
  }
  static int Processors() {
    cpu_set_t All;
    return sched_getaffinity(0, sizeof All, &All) == 0 ? CPU_COUNT(&All) : 0;
  }

  TTemporaryFolder Folder;
  std::atomic<bool> Canceled = false;
  std::unique_ptr<TConnection> Connection = Connect({.Canceled = [this] { return Canceled.load(); }});
};

/// What else than a walk or an append can be asked of a connection, inside a transaction.
struct TOtherUse {
  const char* Name;
  void (*Use)(TConnection& Connection);
};

inline const std::vector<TOtherUse>& OtherUses() {
  static const auto TableB = [](TConnection& Connection) {
    return Connection.Schema().Describe(Connection.Schema().FindTable("B").value());
  };
  static const std::vector<TOtherUse> Result = {
      {"execute", [](TConnection& C) { C.Execute("UPDATE B SET N = N + 1"); }},
      {"query", [](TConnection& C) { EXPECT_TRUE(C.Query("SELECT count(*) FROM A", {})->Next()); }},
      {"schema", [](TConnection& C) { EXPECT_EQ(TableB(C).Columns.size(), 1U); }},
      {"count", [](TConnection& C) { EXPECT_EQ(C.Schema().RowCount(TableB(C).Table), 1); }},
      {"cursor", [](TConnection& C) { EXPECT_TRUE(C.Rows().OpenCursor(TableB(C), std::vector{0}, {})->Next()); }},
      {"savepoint",
       [](TConnection& C) {
         C.SetSavepoint(1);
         C.Execute("DELETE FROM B");
         C.RollbackToSavepoint(1);
       }},
      {"appender",
       [](TConnection& C) {
         TKvVariant Value;
         Value.SetInteger(7);
         const std::vector<const TKvVariant*> Row = {&Value};
         const auto Appender = C.Rows().OpenAppender(TableB(C), std::vector{0}, {});
         Appender->Append(Row);
         Appender->Finish();
         C.Execute("DELETE FROM B WHERE N = 7");
       }},
      {"safeguards",
       [](TConnection& C) {
         const auto Safeguards = C.Safeguards({{{TableB(C).Table}}, {}, true, false});
         Safeguards->SetAside();
         Safeguards->PutBack();
       }},
      {"definition", [](TConnection& C) { EXPECT_FALSE(C.Schema().Triggers().size() > 1); }},
      {"script", [](TConnection& C) { EXPECT_EQ(C.CheckScript("SELECT :A FROM B").size(), 1U); }},
  };
  return Result;
}

}  // namespace velkrund::tests
