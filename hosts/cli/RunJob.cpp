#include "hosts/cli/RunJob.h"

#include "hosts/cli/Errors.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/render/ReportText.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

/// Shows what a running job tells, to people or to the program that runs this one.
class TShown final : public TJobListener {
 public:
  explicit TShown(const TSession& Session) : FSession(Session) {}

  bool ShowsProgress() const override { return FSession.Progress.IsShown(); }
  void Begin(const std::string& Subject, const std::string& Unit, std::int64_t Total) override {
    FSession.Progress.Begin(Subject, Unit, Total);
  }
  void SetSubject(const std::string& Subject) override { FSession.Progress.SetName(Subject); }
  void Progress(std::int32_t Current, std::int32_t Total) override { FSession.Progress.Show(Current, Total); }
  void End() override { FSession.Progress.End(); }
  void Doing(const std::string& Text) override { FSession.Progress.Doing(Text); }
  void Item(const std::string& File, std::string_view Kind, const std::function<TDocument()>& Describe) override {
    if (!FSession.Console.TellsEvents()) return;
    TDocument Told = TConsole::NewEvent("item");
    Told.Set("file", File).Set(Kind, Describe());
    FSession.Console.Event(Told);
  }
  void Fault(const TErrorFacts& Error) override {
    // The item has it.
    if (!FSession.Console.TellsEvents()) SayError(FSession, Error);
  }
  void Stopped(TPolicy Policy) override {
    FSession.Console.Message("velkrund: " +
                             LText("M_Velkrund_Cli_StoppedThere", FSession.Command.Remedy(Policy)).Local());
  }
  void Complain(const std::string& Text) override { FSession.Console.Message("velkrund: " + Text); }

 private:
  const TSession& FSession;
};

/// Runs it, and raises what it ended with in place of a result.
void Execute(TSession& Session, TUtilOperationInterface& Interface) {
  Session.Interface = &Interface;
  auto& Job = static_cast<TJob&>(Interface.Operation());
  TShown Shown(Session);
  Job.Listener = &Shown;
  Job.FOnGetCancel = &TInterrupt::Requested;
  if (auto* const Asking = dynamic_cast<TPolicyJob*>(&Job)) Asking->Policies.Yes = Session.Command.Shared.Yes;
  Interface.SetDatabaseName(Session.Command.Shared.Database);
  Interface.Execute();
  Job.Listener = nullptr;
  if (Session.Console.TellsEvents()) Session.Report = Job.Result();
  if (Job.Raised()) std::rethrow_exception(Job.Raised());
}

void PrintDocument(const TSession& Session, const TJob& Job) {
  if (Session.Json() && !Session.Command.WritesStandardOutput())
    Job.WriteReport([&Session](std::string_view Part) { Session.Console.Result(Part); });
}

}  // namespace

void RunJob(TSession& Session, TUtilOperationInterface& Interface) {
  Execute(Session, Interface);
  PrintDocument(Session, static_cast<const TJob&>(Interface.Operation()));
}

bool SayDryRun(const TSession& Session, const TPolicyJob& Job, const std::vector<TLText>& Notes) {
  if (!Job.Policies.DryRun) return false;
  if (!Session.Json() && !Session.Command.WritesStandardOutput()) Session.Console.Result(PlanText(Job.PlanSteps()));
  std::string Text;
  for (const TLText& Note : Notes) Text += Note.Local() + "\n";
  Session.Say(Text + LText("M_Velkrund_Cli_DryRun").Local() + "\n");
  return true;
}

int RunSectionsJob(TSession& Session, TUtilOperationInterface& Interface) {
  Execute(Session, Interface);
  const auto& Job = static_cast<const TSectionsJob&>(Interface.Operation());
  const TOutcome& Outcome = Job.Outcome();
  if (Outcome.Error) SayError(Session, *Outcome.Error);
  if (Outcome.End() != TEnd::Done || !SayDryRun(Session, Job, Outcome.Notes)) Session.Say(ReportText(Outcome));
  // Last, since it fails where nobody takes it: what became of the run is said in any case.
  PrintDocument(Session, Job);
  return static_cast<int>(Outcome.End());
}

}  // namespace velkrund
