#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jobs/databases/RowLines.h"
#include "jobs/run/JobInterface.h"
#include "standalone/dictionary/Procedures.h"

namespace velkrund {

/// Runs a procedure of a database, to try it, in one transaction: committed when all of it has succeeded, taken back
/// when it fails, when it is cancelled, and by a dry run.
class TJobRunProcedure final : public TPolicyJob {
 public:
  std::string ProcedureName;                // in any case, with its schema where that is not the usual one
  TStringPairs Parameters;                  // names, in any case, and values as texts
  std::vector<std::string> NullParameters;  // those that are to be NULL
  bool KeepRows = false;                    // for the document; memory then grows with their number
  TRowLines::TTake TakeLines;               // the rows as they come, below a line of their columns; may be left out

  const std::string& ProcedureFound() const { return FFound; }
  /// Of the rows; empty: the procedure yields none.
  const std::vector<std::string>& Columns() const { return FColumns; }
  std::int64_t Rows() const { return FRows; }
  /// Nothing where the engine does not count them.
  const std::optional<std::int64_t>& ChangedRows() const { return FChangedRows; }

  void CheckSettings() const override { Require(ProcedureName, "ProcedureName"); }
  std::string CommandName() const override { return "database run-procedure"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  std::string_view Schema() const override { return "procedure"; }
  void Describe(TDocument& Document) const override;

 private:
  TDicProcedureDescription Find(TProcedures& Procedures) const;
  void TakeRows(TProcedureRun& Running);

  std::string FFound;
  std::vector<std::string> FColumns;
  std::int64_t FRows = 0;
  std::optional<std::int64_t> FChangedRows;
  std::vector<std::vector<TKvVariant>> FKept;
};

using TJobRunProcedureInterface = TJobInterface<TJobRunProcedure>;

}  // namespace velkrund
