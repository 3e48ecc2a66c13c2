#pragma once

#include <exception>
#include <string>
#include <vector>

#include "velkrund/dictionary/CopyTable.h"
#include "velkrund/operations/AskObjects.h"

namespace velkrund {

/// Copies several tables, one after the other, each as TUOCustomCopyTable does, in a transaction of its own. After an
/// error a person is asked whether to go on; No raises it.
class TUOCustomCopyTables : public TCopyDatabaseUtilOperation {
 public:
  TUOCustomCopyTables() { OverWrite.FYes = true; }

  /// 1; 0: cancelled, or ended by an answer; tables that were copied by then stay so.
  int Execute() override;

  TStringList TableNames;     // of the source; empty ones are passed over
  TStringPairs TableMapping;  // source table, target table; all others go into those of their names
  TStringPairs FieldMapping;  // source field, target field, of tables that have it; the table may stand before it:
                              // "ORDERS.SUM", "TOTAL"
  TStringList ExcludedBLOBTableFields;
  bool Append = false;
  bool Update = false;
  TYesNoCancelAsk OverWrite;  // whether a target that has rows is emptied, unless they stay; yes unless it is told or
                              // asked otherwise; No leaves the table out, and answers for all are kept

  /// What became of the tables of the last run that it has come to.
  struct TResult {
    std::string TableName;
    bool LeftAlone = false;  // by an answer
    TUOCustomCopyTable::TReport Report = {};
    std::exception_ptr Error = nullptr;
  };
  const std::vector<TResult>& Results() const { return FResults; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  int CopyAll();
  bool CopyOne(const std::string& Name, int Index);
  bool MayEmpty(const std::string& Target);
  void SetUp(TUOCustomCopyTable& Operation, const std::string& Name, int Index);
  std::string TargetOf(const std::string& Name) const;

  std::vector<TResult> FResults;
  TYesNoCancelAsk FOverWrite;  // with what was answered in this run
};

}  // namespace velkrund
