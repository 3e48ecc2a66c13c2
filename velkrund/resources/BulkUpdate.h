#pragma once

#include "velkrund/platform/localization/LocalizatorTable.h"

namespace velkrund {

/// A bulk update of a database's strings, ended in any case: what is deleted meanwhile takes few statements.
class TBulkUpdate {
 public:
  /// Table: borrowed.
  explicit TBulkUpdate(TLocalizatorTable& Table) : FTable(Table) { FTable.BeginUpdate(); }
  TBulkUpdate(const TBulkUpdate&) = delete;
  TBulkUpdate& operator=(const TBulkUpdate&) = delete;
  /// An error that comes then goes to the trace.
  ~TBulkUpdate();

  void End();

 private:
  TLocalizatorTable& FTable;
  bool FEnded = false;
};

}  // namespace velkrund
