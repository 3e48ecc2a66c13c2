#pragma once

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "velkrund/dictionary/RecreateTable.h"

namespace velkrund {

/// Makes several tables anew, one after the other, each in a transaction of its own, so that what fails with one leaves
/// it as it was. After an error a person is asked whether to go on; No raises it.
class TUORecreateTables : public TDatabaseUtilOperation {
 public:
  TUORecreateTables();

  /// 1; 0: cancelled, or ended by an answer; tables that were made by then stay so.
  int Execute() override;

  TStringList TableNames;     // empty ones are passed over
  TYesNoCancelAsk OverWrite;  // as of TUORecreateTable; answers for all are kept
  TYesNoCancelAsk SaveData;
  TStringPairs FieldMapping;  // of tables that have the old field; it may stand behind the table: "ORDERS.SUM", "TOTAL"
  TTableScriptPart TableScriptPart = TTableScriptPart::All;
  bool TakesLongNames = false;

  /// What became of the tables of the last run that it has come to.
  struct TResult {
    std::string TableName;
    TUORecreateTable::TEnd End = TUORecreateTable::TEnd::LeftAlone;
    std::int64_t Rows = 0;
    std::exception_ptr Error = nullptr;
  };
  const std::vector<TResult>& Results() const { return FResults; }

  static const TUtilOperationDescriptor Descriptor;

 protected:
  /// Runs the operation of one table, in its transaction.
  virtual void RecreateOne(TUORecreateTable& Operation) { Operation.Execute(); }
  /// Within the handler of Error: returns when the others are gone on with, otherwise raises it; by default a person is
  /// asked. Report: the error in words.
  virtual void GoOn(const std::exception& Error, const std::string& Report);

 private:
  class TOne;

  int RecreateAll();
  /// False: an answer ends the list.
  bool Recreate(const std::string& Name, int Index);
  bool MayGoOnWithout(const std::string& Name);
  std::unique_ptr<TUORecreateTable> OperationOf(const std::string& Name, int Index);
  void Run(TUORecreateTable& Operation);

  std::vector<TResult> FResults;
  TYesNoCancelAsk FOverWrite, FSaveData;  // with what was answered in this run
};

}  // namespace velkrund
