#include <gmock/gmock.h>

#include <random>

#include "tests/standalone/DriverFixture.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

/// Parts of a transaction, whose marks the engine may be told of later than they are set.
class SavepointsTest : public DriverFixture {
 protected:
  SavepointsTest() { Run("CREATE TABLE A (N BIGINT PRIMARY KEY)"); }

  void Insert(int N) { Run("INSERT INTO A VALUES (" + std::to_string(N) + ")"); }
  void Append(TDriverTable& Table, int N) {
    Table.ClearData();
    Table.Record().Fields(0).Buffer().SetInteger(N);
    Table.AppendRecord();
  }
  /// The numbers, each with a space behind it.
  std::string Kept() {
    std::string Result;
    TKvVariant Value;
    for (const auto Cursor = Connection->Query("SELECT N FROM A ORDER BY N"); Cursor->Next();) {
      Cursor->Read(0, Value);
      Result += std::to_string(Value.AsInteger()) + " ";
    }
    return Result;
  }
};

TEST_P(SavepointsTest, WhatIsUndoneIsThePartAndNothingElse) {
  constexpr int Runs = 100, StepsOfEach = 20;
  std::mt19937 Random(20);
  for (int Each = 0; Each < Runs; ++Each) {
    std::string Steps, Rows;          // what was done, and the rows that there are
    std::vector<std::string> Before;  // when each open part began
    const auto Depth = [&] { return static_cast<int>(Before.size()); };
    Connection->Begin(TIsolationLevel::RepeatableRead);
    for (int Step = 0; Step < StepsOfEach; ++Step) {
      const auto Choice = Random() % 5;
      if (Choice < 2) {
        Before.push_back(Rows);
        Connection->SetSavepoint(Depth());
        Steps += "(";
      } else if (Choice == 2) {
        Insert(Step);
        Rows += std::to_string(Step) + " ";
        Steps += "+";
      } else if (!Before.empty()) {
        Choice == 3 ? Connection->ReleaseSavepoint(Depth()) : Connection->RollbackToSavepoint(Depth());
        if (Choice == 4) Rows = Before.back();
        Before.pop_back();
        Steps += Choice == 3 ? ")" : "!";
      }
    }
    for (; !Before.empty(); Before.pop_back()) Connection->ReleaseSavepoint(Depth());
    Connection->Commit();
    EXPECT_EQ(Kept(), Rows) << Steps;
    Run("DELETE FROM A");
  }
}

TEST_P(SavepointsTest, AnErrorIsUndoneWithItsPart) {
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Insert(1);
  for (int Again = 0; Again < 3; ++Again) {
    Connection->SetSavepoint(1);
    Connection->SetSavepoint(2);
    Insert(2 + Again);
    Connection->ReleaseSavepoint(2);
    Connection->SetSavepoint(2);
    EXPECT_THAT(ErrorOf([&] { Insert(1); }), HasSubstr("constraint"));
    Connection->RollbackToSavepoint(2);
    Connection->ReleaseSavepoint(1);
  }
  Connection->Commit();
  EXPECT_EQ(Kept(), "1 2 3 4 ");
}

TEST_P(SavepointsTest, RowsOnTheirWayBelongToWhereTheyWereAppended) {
  Connection->Begin(TIsolationLevel::RepeatableRead);
  {
    TDriverTable Table = Open("A");
    Table.BeginAppend();
    Append(Table, 1);
    Connection->SetSavepoint(1);
    Append(Table, 2);
    Connection->SetSavepoint(2);
    Table.EndAppend();
  }
  Connection->ReleaseSavepoint(2);
  Connection->ReleaseSavepoint(1);
  Connection->SetSavepoint(1);
  {
    TDriverTable Table = Open("A");
    Table.BeginAppend();
    Append(Table, 3);
    Table.EndAppend();
  }
  Connection->RollbackToSavepoint(1);
  Connection->Commit();
  EXPECT_EQ(Kept(), "1 2 ");
}

TEST_P(SavepointsTest, NothingOfOneTransactionComesIntoTheNext) {
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Connection->SetSavepoint(1);
  Insert(1);
  Connection->ReleaseSavepoint(1);
  Connection->Rollback();
  EXPECT_EQ(Kept(), "");
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Connection->SetSavepoint(1);
  Connection->SetSavepoint(2);
  Connection->Rollback();
  Insert(2);
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Connection->SetSavepoint(1);
  Insert(3);
  Connection->RollbackToSavepoint(1);
  Connection->Commit();
  EXPECT_EQ(Kept(), "2 ");
}

INSTANTIATE_TEST_SUITE_P(Engines, SavepointsTest, testing::ValuesIn(Engines()),
                         [](const auto& Tested) { return Tested.param.Name; });

}  // namespace
}  // namespace velkrund::tests
