#pragma once

#include <string>

#include "hosts/cli/Report.h"
#include "hosts/cli/Session.h"
#include "jobs/policies/ErrorPolicy.h"
#include "velkrund/eif/EISource.h"
#include "velkrund/operations/UtilOperationInterface.h"

namespace velkrund {

/// Runs the operations of a command one after the other: shows their progress, stops them when the person wishes,
/// writes their errors, and decides after a failure whether to go on.
class TBatch {
 public:
  /// Source: whose losses are to be counted. Report: of the run, where a cancel at a question is entered. Borrowed.
  TBatch(const TSession& Session, const TEISource& Source, TReport& Report)
      : FSession(Session), FSource(Source), FReport(Report), FErrors(Session.Shared.OnError, Session.Answers) {}

  /// What the progress counts, in the plural, and how many there are; -1: the operation says so itself.
  struct TAmount {
    std::string Unit;
    std::int64_t Total = -1;
  };

  /// Runs the operation and enters state, error, time and losses. More: whether others are to follow. Returns whether
  /// they shall.
  bool Run(TReportItem& Item, TUtilOperationInterface& Interface, const TAmount& Amount, bool More);

 private:
  void Execute(TReportItem& Item, TUtilOperationInterface& Interface, const TAmount& Amount);
  bool GoOn();

  const TSession& FSession;
  const TEISource& FSource;
  TReport& FReport;
  TErrorPolicy FErrors;
};

/// Prints a run's end report, and its document where one was asked for. Returns the exit code.
int Finish(const TSession& Session, const TReport& Report, bool ResultOnOutput = true);

}  // namespace velkrund
