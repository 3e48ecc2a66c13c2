#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
#include <string>

#include "jobs/application/Application.h"
#include "jobs/databases/DatabaseInfo.h"
#include "jobs/sections/ImportFiles.h"
#include "jobs/tables/ExportTables.h"
#include "jobs/tables/ImportTables.h"
#include "tests/support/TemporaryFolder.h"

namespace velkrund::tests {
namespace {

/// What SQLite does for the statements of the connections that are made while it lives, in the steps of its own
/// machine, which are the same in every run.
class TEngineWork {
 public:
  TEngineWork() { sqlite3_auto_extension(Entry()); }
  TEngineWork(const TEngineWork&) = delete;
  TEngineWork& operator=(const TEngineWork&) = delete;
  ~TEngineWork() { sqlite3_cancel_auto_extension(Entry()); }

  static double Of(const std::function<void()>& Work) {
    Steps() = 0;
    Work();
    return static_cast<double>(Steps());
  }

 private:
  static void (*Entry())() { return reinterpret_cast<void (*)()>(&Watch); }
  static std::int64_t& Steps() {
    static std::int64_t Result = 0;
    return Result;
  }
  static int Watch(sqlite3* Database, char**, const void*) {
    return sqlite3_trace_v2(Database, SQLITE_TRACE_PROFILE, &Add, nullptr);
  }
  static int Add(unsigned, void*, void* Statement, void*) {
    Steps() += sqlite3_stmt_status(static_cast<sqlite3_stmt*>(Statement), SQLITE_STMTSTATUS_VM_STEP, 1);
    return 0;
  }
};

class ManyTables : public testing::Test {
 protected:
  std::string At(const char* Name, int Count) const { return FFolder / (Name + std::to_string(Count)); }
  std::string Database(const char* Name, int Count) const { return "sqlite:" + At(Name, Count); }

  /// Of every third table the next one refers to it, some have an index of their own or a trigger.
  void Make(const char* Name, int Count, bool HasRows) const {
    std::string Script = "BEGIN;";
    for (int I = 0; I < Count; ++I) {
      const std::string N = std::to_string(I);
      Script += "CREATE TABLE T" + N + " (ID INTEGER PRIMARY KEY, V TEXT";
      Script += I % 3 == 1 ? ", R INTEGER REFERENCES T" + std::to_string(I - 1) + ");" : ");";
      if (I % 5 == 0) Script += "CREATE INDEX I" + N + " ON T" + N + " (V);";
      if (HasRows) Script += "INSERT INTO T" + N + " (ID, V) VALUES (1, 'a'), (2, 'b');";
    }
    sqlite3* Raw = nullptr;
    ASSERT_EQ(sqlite3_open(At(Name, Count).c_str(), &Raw), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(Raw, (Script + "COMMIT").c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(Raw);
  }

  void Export(int Count, bool Structures) const {
    TJobExportTables Job;
    Job.DatabaseName = Database("source", Count);
    Job.FileName = At(Structures ? "whole" : "rows", Count);
    Job.Structures = Structures;
    EXPECT_EQ(Job.Execute(), 1);
  }
  void ImportRows(int Count) const {
    TJobImportTables Job;
    Job.DatabaseName = Database("empty", Count);
    Job.FileName = At("rows", Count);
    EXPECT_EQ(Job.Execute(), 1);
  }
  void ImportAll(int Count) const {
    TJobImportFiles Job;
    Job.DatabaseName = Database("made", Count);
    Job.CreateDatabase = true;
    Job.FileNames = {At("whole", Count)};
    Job.Policies.CreateTables = TCreateTables::Yes;
    EXPECT_EQ(Job.Execute(), 1);
  }
  void Look(const char* Name, int Count) const {
    TJobDatabaseInfo Job;
    Job.DatabaseName = Database(Name, Count);
    EXPECT_EQ(Job.Execute(), 1);
    std::int64_t Rows = 0;
    for (const auto& Table : Job.Info().Tables) Rows += Table.Rows.value_or(0);
    EXPECT_EQ(Rows, 2 * Count);
  }

  TTemporaryFolder FFolder;
};

// Databases have thousands of tables: what is done for one of them must not look at all the others.
TEST_F(ManyTables, CostTheEngineAsMuchEachAsAFewDo) {
  constexpr int Few = 40, Many = 400;
  const TEngineWork Watching;
  const TApplication Application({.ConfigFile = FFolder.Write("none.toml", "")});
  for (const int Count : {Few, Many}) {
    Make("source", Count, true);
    Make("empty", Count, false);
  }
  const struct {
    const char* Name;
    std::function<void(int)> Run;
  } Jobs[] = {
      {"export of rows", [this](int Count) { Export(Count, false); }},
      {"export with structures", [this](int Count) { Export(Count, true); }},
      {"import of rows", [this](int Count) { ImportRows(Count); }},
      {"import that makes the tables", [this](int Count) { ImportAll(Count); }},
      {"sizes", [this](int Count) { Look("empty", Count); }},
      {"sizes of what was made", [this](int Count) { Look("made", Count); }},
  };
  for (const auto& Job : Jobs) {
    const double OfFew = TEngineWork::Of([&] { Job.Run(Few); }) / Few;
    const double OfMany = TEngineWork::Of([&] { Job.Run(Many); }) / Many;
    EXPECT_GT(OfFew, 0) << Job.Name;
    EXPECT_LT(OfMany, 1.3 * OfFew) << Job.Name << ": steps for a table";
  }
}

}  // namespace
}  // namespace velkrund::tests
