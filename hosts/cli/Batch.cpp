#include "hosts/cli/Batch.h"

#include <chrono>

#include "hosts/cli/Interrupt.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

bool TBatch::Run(TReportItem& Item, TUtilOperationInterface& Interface, const TAmount& Amount, bool More) {
  Execute(Item, Interface, Amount);
  if (Item.State == TItemState::Failed) {
    FSession.Console.Message("velkrund: " + Item.Note);
    return More && GoOn();
  }
  return Item.State == TItemState::Done && !TInterrupt::Requested();
}

void TBatch::Execute(TReportItem& Item, TUtilOperationInterface& Interface, const TAmount& Amount) {
  TUtilOperation& Operation = Interface.Operation();
  Operation.FOnGetCancel = &TInterrupt::Requested;
  Operation.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view) {
    FSession.Progress.Show(Current, Total);
  };
  const TTextLosses Before = FSource.Losses();
  const auto Start = std::chrono::steady_clock::now();
  FSession.Progress.Begin(Item.Subject(), Amount.Unit, Amount.Total);
  const int Result = Interface.Execute();
  FSession.Progress.End();
  Item.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
  Item.Losses = {FSource.Losses().Unrepresentable - Before.Unrepresentable,
                 FSource.Losses().Malformed - Before.Malformed};
  if (!Interface.LastError().empty()) {
    Item.State = TItemState::Failed;
    Item.Note = Interface.LastError();
  } else {
    Item.State = Result != 0 ? TItemState::Done : TItemState::Cancelled;
  }
}

bool TBatch::GoOn() {
  if (FErrors.OnError() == TOnError::Ask && !FErrors.Asks()) {
    FSession.Console.Message("velkrund: stopped there; with --on-error continue the others are done all the same");
    return false;
  }
  try {
    return FErrors.GoOn("Go on with the next one?");
  } catch (const EAbort& Abort) {
    FReport.Cancelled = Abort.what();
    return false;
  }
}

int Finish(const TSession& Session, const TReport& Report, bool ResultOnOutput) {
  if (Session.Shared.Json && ResultOnOutput) Session.Console.Result(JsonText(Report.Json()));
  if (!Report.Error.empty()) Session.Console.Message("velkrund: " + Report.Error);
  Session.Console.Message(Report.Text());
  return Report.ExitCode();
}

}  // namespace velkrund
