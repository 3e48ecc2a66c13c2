#include <gtest/gtest.h>

#include "tests/dictionary/TableFixture.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

/// Notes what is asked of it. S has a row.
class TNotingPlatform : public TTestPlatform {
 public:
  std::unique_ptr<TTable> GetUserTable(const std::string& Name, const std::string& Database, bool ReadWrite) override {
    Log.push_back(Format("open %s in %s%s", Name, Database, ReadWrite ? "" : " to read"));
    if (Name == "GONE") return nullptr;
    auto Result = std::make_unique<TMemoryTable>(Name, TMemoryTable::TColumns{{"A", TKvKind::Int64}});
    if (Name == "S") AppendRow(*Result, {Integer(1)});
    return Result;
  }
  void StartTransaction(const std::string& Database, TIsolationLevel Level) override {
    Log.push_back(Format("start %s %d", Database, static_cast<int>(Level)));
  }
  std::int64_t ExecuteSQL(const std::string& Statement, const std::string& Database) override {
    if (Fails) throw EDatabaseError("no");
    Log.push_back(Format("%s in '%s'", Statement, Database));
    return 0;
  }

  bool Fails = false;
};

TEST(CopyTable, OpensBothTablesBeforeItDeletesInTheDefaultDatabase) {
  using TLog = std::vector<std::string>;
  const TLog Opened = {"start to 2", "open T in to", "open S in from"};
  const struct {
    const char* Source;
    bool Append, Fails, IsCanceled;
    std::string Outcome;
    TLog Behind;  // what comes after the tables are open
  } Cases[] = {
      {"S", false, false, false, "1", {"DELETE * FROM T in ''", "commit"}},
      {"S", true, false, false, "1", {"commit"}},
      {"S", false, false, true, "0", {"DELETE * FROM T in ''", "rollback"}},
      {"S", false, true, false, "EDatabaseError: no", {"rollback"}},
      {"GONE", false, false, false, "0", {"rollback"}},
  };
  for (const auto& Case : Cases) {
    TNotingPlatform Platform;
    Platform.Fails = Case.Fails;
    TUOCustomCopyTable Operation;
    Operation.DatabaseName = "from";
    Operation.TargetDatabaseName = "to";
    Operation.SourceTableName = Case.Source;
    Operation.TargetTableName = "T";
    Operation.Append = Case.Append;
    Operation.SetCanceled(Case.IsCanceled);
    std::string Result;
    const std::string Error = ErrorOf([&] { Result = std::to_string(Operation.Execute()); });
    EXPECT_EQ(Error == "no error" ? Result : Error, Case.Outcome);
    TLog Expected = Opened;
    Expected.back() = std::string("open ") + Case.Source + " in from";
    Expected.insert(Expected.end(), Case.Behind.begin(), Case.Behind.end());
    EXPECT_EQ(Platform.Log, Expected);
  }
}

}  // namespace
}  // namespace velkrund::tests
