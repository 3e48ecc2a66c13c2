#pragma once

#include <string>

#include "standalone/drivers/Connection.h"
#include "velkrund/platform/dictionary/Dictionary.h"

namespace velkrund {

/// Which tables of a database were made and wait for their indexes, keys and triggers, until their rows are in: in the
/// catalogue table velkrund_unfinished, so that a run that ends between the two, where each step is committed by
/// itself, is completed by a later one. In the caller's transaction. Borrows the connection.
class TUnfinishedTables {
 public:
  explicit TUnfinishedTables(TConnection& Connection) : FConnection(Connection) {}

  /// Table: its full name, in any case.
  TTableStage StageOf(const std::string& Table);
  /// TTableStage::Complete takes it out.
  void SetStage(const std::string& Table, TTableStage Stage);

 private:
  TConnection& FConnection;
};

}  // namespace velkrund
