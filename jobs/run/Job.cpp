#include "jobs/run/Job.h"

#include <algorithm>

#include "jobs/policies/Questions.h"
#include "jobs/report/ErrorReport.h"
#include "jobs/run/LetGo.h"
#include "standalone/drivers/AddressSecrets.h"
#include "standalone/drivers/DatabaseUrl.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

constexpr std::int32_t Millionths = 1'000'000;

/// While an engine lets the job wait, it asks the job whether to go on, and tells it what it waits for and what people
/// should know.
class TWhileWaiting {
 public:
  TWhileWaiting(TDatabases& Databases, TDatabases::TCanceled Canceled, TDatabases::TNotice Notice,
                TDatabases::TNotice Warning, TDatabases::TAskPassword AskPassword)
      : FDatabases(Databases),
        FCanceledBefore(Databases.SetCanceled(std::move(Canceled))),
        FNoticeBefore(Databases.SetNotice(std::move(Notice))),
        FWarningBefore(Databases.SetWarning(std::move(Warning))),
        FAskPasswordBefore(Databases.SetAskPassword(std::move(AskPassword))) {}
  TWhileWaiting(const TWhileWaiting&) = delete;
  TWhileWaiting& operator=(const TWhileWaiting&) = delete;
  ~TWhileWaiting() {
    FDatabases.SetCanceled(std::move(FCanceledBefore));
    FDatabases.SetNotice(std::move(FNoticeBefore));
    FDatabases.SetWarning(std::move(FWarningBefore));
    FDatabases.SetAskPassword(std::move(FAskPasswordBefore));
  }

 private:
  TDatabases& FDatabases;
  TDatabases::TCanceled FCanceledBefore;
  TDatabases::TNotice FNoticeBefore, FWarningBefore;
  TDatabases::TAskPassword FAskPasswordBefore;
};

/// Asks the person whom questions go to.
std::optional<std::string> AskPassword(const std::string& Database, const std::string& Error) {
  const std::string Text = LText("M_Velkrund_Jobs_Password", Database).Local();
  return AskSecret(Error.empty() ? Text : Error + "\n" + Text);
}

/// The error with the one that is being handled as its cause, which is what documents and hosts tell.
std::exception_ptr WrappedIn(EJobFailed Error) {
  try {
    std::throw_with_nested(std::move(Error));
  } catch (...) {
    return std::current_exception();
  }
}

}  // namespace

int TJob::Execute() {
  FHasRun = true;
  FRaised = nullptr;
  SetShare(0, 1);
  try {
    Forget();
    CheckSettings();
    RunOnDatabase();
  } catch (const EAbort&) {
    FRaised = std::current_exception();
    FEnd = TEnd::Cancelled;
    return 0;
  } catch (const ESettingsError&) {
    FRaised = std::current_exception();
    FEnd = TEnd::WrongSettings;
    throw;
  } catch (Exception& Error) {
    if (!FDatabaseText.empty()) Error.Add({.Database = FDatabaseText});
    FRaised = std::current_exception();
    FEnd = TEnd::Failed;
    throw;
  } catch (...) {
    FRaised = std::current_exception();
    FEnd = TEnd::Failed;
    throw;
  }
  FEnd = Conclusion();
  if (FEnd == TEnd::Failed) std::rethrow_exception(Failure());
  return FEnd == TEnd::Done ? 1 : 0;
}

void TJob::RunOnDatabase() {
  TDatabases& Databases = Manager().Databases();
  const TWhileWaiting Waiting(
      Databases, Canceled(),
      [this](const std::string& Text) {
        if (Listener) Listener->Doing(Text);
      },
      [this](const std::string& Text) { Warn(Text); }, &AskPassword);
  if (!NeedsDatabase()) return Run();
  FDatabaseText = CheckedDatabase(DatabaseName, "DatabaseName");
  const TLetGo LetGo(Databases, DatabaseName);
  Run();
}

std::string TJob::Report() const { return FHasRun ? Result().Text() : std::string(); }

void TJob::WriteReport(const TDocument::TSink& Sink) const {
  if (FHasRun) Result().Write(Sink);
}

TDocument TJob::Result() const {
  if (FRaised) return ErrorDocument(FactsOf(FRaised), CommandName(), FEnd);
  TDocument Result = TDocument::Headed(Schema(), CommandName(), static_cast<int>(FEnd));
  if (FEnd != TEnd::Done) Result.Set("error", ErrorDocument(FactsOf(Failure())));
  Describe(Result);
  DescribeMore(Result);
  return Result;
}

void TPolicyJob::DescribeMore(TDocument& Document) const {
  if (Policies.DryRun) Document.Set("plan", PlanElements(FPlan));
}

TStandaloneManager& TJob::Manager() const {
  if (auto* const Manager = dynamic_cast<TStandaloneManager*>(&BaseMng())) return *Manager;
  throw EAccessViolation("A job needs the stand-alone platform, and another one is installed");
}

TFileSystem& TJob::Files() const { return BaseMng().Files(); }

void TJob::Require(const std::string& Value, std::string_view Property) {
  if (Value.empty()) throw ESettingsError(Setting(Property) + " is missing");
}

std::string TJob::CheckedDatabase(const std::string& Name, std::string_view Property) const {
  const TConfiguration& Configuration = Manager().Configuration();
  if (Name.empty() && Configuration.DefaultDatabase.empty())
    throw ESettingsError(Format("%s is missing, and the configuration has no default database", Setting(Property)));
  // The most likely slip: the file alone.
  const bool IsKnown = Name.empty() || Configuration.Databases.contains(Name);
  if (!IsKnown && !ParseDatabaseUrl(Name) && Files().Exists(Name))
    throw ESettingsError(
        Format("'%s' is a file; the address of a database file begins with its kind: sqlite:%s", Name, Name));
  const std::string& Meant = Name.empty() ? Configuration.DefaultDatabase : Name;
  const auto Entry = Configuration.Databases.find(Meant);
  if (Entry == Configuration.Databases.end()) return WithoutSecrets(Meant);
  return Meant + " (" + WithoutSecrets(Entry->second.Url) + ")";
}

void TJob::SetShare(double From, double To) {
  FFrom = From;
  FTo = To;
}

void TJob::BeginPart(const std::string& Subject, const std::string& Unit, std::int64_t Total) {
  if (Listener) Listener->Begin(Subject, Unit, Total);
}

void TJob::SetSubject(const std::string& Subject) {
  if (Listener) Listener->SetSubject(Subject);
}

void TJob::ShowPart(std::int32_t Current, std::int32_t Total, std::string_view Name) const {
  if (Listener) return Listener->Progress(Current, Total);
  const double Share = Total > 0 ? std::clamp(static_cast<double>(Current) / Total, 0.0, 1.0) : 0;
  ShowProgress(static_cast<std::int32_t>((FFrom + Share * (FTo - FFrom)) * Millionths), Millionths, Name);
}

TProgressCallback TJob::PartProgress() const {
  if (Listener ? !Listener->ShowsProgress() : !FOnShowProgress) return {};
  return [this](std::int32_t Current, std::int32_t Total, std::string_view Name) { ShowPart(Current, Total, Name); };
}

void TJob::EndPart() {
  if (Listener)
    Listener->End();
  else
    ShowPart(1, 1, {});
}

void TJob::TellItem(const std::string& File, std::string_view Kind, const std::function<TDocument()>& Describe) const {
  if (Listener) Listener->Item(File, Kind, Describe);
}

void TJob::Fault(const TErrorFacts& Error) const {
  if (Listener)
    Listener->Fault(Error);
  else
    WriteLog(TTraceLevel::Error, ErrorLine(Error));
}

void TJob::Stop(TPolicy Policy) const {
  if (Listener)
    Listener->Stopped(Policy);
  else
    WriteLog(TTraceLevel::Error, Format("Stopped there. %s; nobody can be asked", Remedy(Policy)));
}

void TJob::Complain(const std::string& Text) const {
  if (Listener)
    Listener->Complain(Text);
  else
    WriteLog(TTraceLevel::Error, Text);
}

std::exception_ptr TSectionsJob::Failure() const {
  if (FOutcome.End() == TEnd::Cancelled)
    return std::make_exception_ptr(EAbort(FOutcome.Cancelled.Empty() ? "cancelled" : FOutcome.Cancelled.English()));
  const int Failed = FOutcome.Count(TItemState::Failed);
  if (Failed + (FOutcome.Error ? 1 : 0) <= 1) return FOutcome.FirstError;
  try {
    std::rethrow_exception(FOutcome.FirstError);
  } catch (const std::exception& Error) {
    return WrappedIn(EJobFailed(
        Format("%d of %d sections failed. The first error: %s", Failed, FOutcome.Items.size(), Error.what())));
  }
}

}  // namespace velkrund
