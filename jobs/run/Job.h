#pragma once

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "jobs/policies/Policies.h"
#include "jobs/report/Outcome.h"
#include "jobs/report/PlanStep.h"
#include "jobs/run/JobListener.h"
#include "standalone/databases/StandaloneManager.h"
#include "velkrund/operations/UtilOperation.h"

namespace velkrund {

/// A whole run, as a person asks for it: an operation that works on the installed stand-alone platform, asks through
/// the installed window system, and can say afterwards what became of everything. Whatever host runs it, it does and
/// refuses the same. Knows no options and no terminal.
///
/// Execute: non-zero: everything was done, or left out as a policy or a person wished. 0: cancelled. Anything that
/// failed is raised: the error itself when there is one, an EJobFailed that counts them otherwise.
class TJob : public TDatabaseUtilOperation {
 public:
  int Execute() final;
  /// Raises ESettingsError for settings that contradict each other; Execute does so first.
  virtual void CheckSettings() const {}

  /// How the last run ended.
  TEnd End() const { return FEnd; }
  /// The error that ended the last run before it came to its end, EAbort included; null otherwise.
  const std::exception_ptr& Raised() const { return FRaised; }
  /// The document about the last run; empty before the first; docs/json.md describes it. Raises an error where the
  /// result is none that a document can hold.
  std::string Report() const;
  /// The same part by part, of which none is long.
  void WriteReport(const TDocument::TSink& Sink) const;
  /// The same to be put into another document, while the job lives and before its next run.
  TDocument Result() const;
  /// The line of the command that does the same, without options: "export table".
  virtual std::string CommandName() const = 0;

  TJobListener* Listener = nullptr;  // borrowed; null: progress and log of the operation

 protected:
  virtual void Run() = 0;
  /// Drops the result of the run before.
  virtual void Forget() = 0;
  /// Whether DatabaseName has to mean a database.
  virtual bool NeedsDatabase() const { return true; }
  /// What became of it, when Run has returned.
  virtual TEnd Conclusion() const { return TEnd::Done; }
  /// The error to raise for a run that has failed; an EAbort for one that was cancelled.
  virtual std::exception_ptr Failure() const { return nullptr; }
  /// The form of the document, without its version: "transfer".
  virtual std::string_view Schema() const = 0;
  /// Adds what the document says beside schema, command and exit code.
  virtual void Describe(TDocument& Document) const = 0;
  /// The same, of what stands behind that in every document.
  virtual void DescribeMore(TDocument& /*Document*/) const {}

  TStandaloneManager& Manager() const;
  TFileSystem& Files() const;
  /// What people may see of the database of this run, or of the last one: its name, and the address behind it, without
  /// passwords.
  const std::string& DatabaseText() const { return FDatabaseText; }
  /// The same of another database. Raises ESettingsError for a name that cannot be meant, or is missing. Property: by
  /// which it is given.
  std::string CheckedDatabase(const std::string& Name, std::string_view Property) const;
  /// Raises ESettingsError for a setting that has to be there and is empty.
  static void Require(const std::string& Value, std::string_view Property);
  /// Polled by what is no operation.
  std::function<bool()> Canceled() const {
    return [this] { return IsCanceled(); };
  }

  // Progress. A listener hears of each part between Begin and End; hosts without one see the whole, of which a part
  // covers what SetShare says, from one share to another (0 .. 1); all of it unless told.
  void SetShare(double From, double To);
  void BeginPart(const std::string& Subject, const std::string& Unit, std::int64_t Total = -1);
  void SetSubject(const std::string& Subject);
  /// For an operation that is a part; none where nobody would see it.
  TProgressCallback PartProgress() const;
  void ShowPart(std::int32_t Current, std::int32_t Total, std::string_view Name) const;
  void EndPart();
  void TellItem(const std::string& File, std::string_view Kind, const std::function<TDocument()>& Describe) const;
  void Fault(const TErrorFacts& Error) const;
  void Stop(TPolicy Policy) const;
  void Complain(const std::string& Text) const;
  /// What people should know of what the database has done by itself.
  virtual void Warn(const std::string& Text) { Complain(Text); }

 private:
  void RunOnDatabase();

  std::string FDatabaseText;
  TEnd FEnd = TEnd::Done;
  std::exception_ptr FRaised;
  bool FHasRun = false;
  double FFrom = 0, FTo = 1;  // of the whole
};

/// A job that meets what is there already.
class TPolicyJob : public TJob {
 public:
  TPolicies Policies;

  /// With Policies.DryRun, what the last run would have done.
  const std::vector<TPlanStep>& PlanSteps() const { return FPlan; }

 protected:
  /// Without a dry run nothing is kept.
  void AddToPlan(TPlanStep Step) {
    if (Policies.DryRun) FPlan.push_back(std::move(Step));
  }
  void ForgetPlan() { FPlan.clear(); }
  void DescribeMore(TDocument& Document) const override;

 private:
  std::vector<TPlanStep> FPlan;
};

/// A job on sections, each with an outcome of its own.
class TSectionsJob : public TPolicyJob {
 public:
  const TOutcome& Outcome() const { return FOutcome; }

 protected:
  TEnd Conclusion() const override { return FOutcome.End(); }
  std::exception_ptr Failure() const override;
  void Forget() override {
    FOutcome = {};
    ForgetPlan();
  }
  std::string_view Schema() const override { return "transfer"; }
  void Describe(TDocument& Document) const override { FOutcome.Describe(Document); }
  void Warn(const std::string& Text) override { FOutcome.Notes.push_back(LText("M_Velkrund_Jobs_Warning", Text)); }

  TOutcome FOutcome;
};

/// Several things have failed; the message counts them and tells the first.
VELKRUND_EXCEPTION(EJobFailed, Exception);

}  // namespace velkrund
