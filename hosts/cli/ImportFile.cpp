#include <algorithm>
#include <set>

#include "hosts/cli/Batch.h"
#include "hosts/cli/ImportPlan.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/operations/ImportFileInterfaces.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts ImportFileTexts = {
    "import",
    "file",
    "loads everything that export/import files hold",
    "-d DB -i FILE... [--replace|--append] [--overwrite yes|no]",
    "Of all files together the structures come first, then the rows of tables, each into the table that its section "
    "names. A section is loaded as a whole or not at all; tables that refer to each other may have to be loaded "
    "together. After an error at a section the rest can be gone on with: at a terminal it is asked, elsewhere "
    "--on-error says so; without it the run ends there.\n\n"
    "A table that has rows already needs --replace or --append, a structure that is there already --overwrite. At a "
    "terminal they are asked about, elsewhere it is an error, before anything is changed.",
    {{"import file -d sqlite:shop.db -i shop.eif --replace --overwrite yes", "everything of one file"},
     {"import file -d shop -i forms.eif -i data.eif --append --on-error continue",
      "two files; what is faulty is named in the report and left out"}}};

class TImportFile final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportFileTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  TApplicationOptions ApplicationOptions() const override;
  bool ReadsStandardInput() const override { return std::find(FInputs.begin(), FInputs.end(), "-") != FInputs.end(); }
  int Run(TSession& Session) override;

 private:
  std::vector<std::string> FInputs;
  TTableOptions FTables;
  TOverwrite FOverwrite = TOverwrite::Ask;
};

std::vector<TOptionGroup> TImportFile::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      Required(List("-i,--input", "FILE", "a file to load, in this order; - is standard input", FInputs))};
  for (TOption& Option : FTables.Options()) Own.push_back(std::move(Option));
  Own.push_back(OverwriteStructuresOption(FOverwrite));
  Own.push_back(Shared.AllowLossOption());
  Own.push_back(Shared.OnErrorOption());
  return {{"Options", Own}, Shared.General()};
}

void TImportFile::CheckOptions() {
  std::set<std::string> Seen;
  for (const std::string& Name : FInputs)
    if (!Seen.insert(Name).second) throw EUsage(Format("--input names '%s' twice", Name));
}

TApplicationOptions TImportFile::ApplicationOptions() const {
  TApplicationOptions Result = TCommand::ApplicationOptions();
  FTables.ApplyTo(Result);
  return Result;
}

int TImportFile::Run(TSession& Session) {
  TReport Report{"import file", "imported", Session.Application.DatabaseText(Session.Database()), Joined(FInputs)};
  TErrorPolicy Errors(Shared.OnError, Session.Answers);
  TInputFiles Inputs(Session, FInputs);
  TImportPlan Plan(Session, FTables, FOverwrite, Errors, Report);
  Plan.LookAt(Inputs);
  Plan.Settle();
  TUOImportFilesInterface Interface;
  Interface.SetDatabaseName(Session.Database());
  Interface.SetFiles(Inputs.FileNames());
  Interface.SetContinueOnError(Shared.OnError != TOnError::Stop);
  auto& Import = static_cast<TUOImportFiles&>(Interface.Operation());
  Import.Observer = &Plan;
  Import.FileSystem = &Inputs;
  Import.FOnGetCancel = &TInterrupt::Requested;
  Import.FOnShowProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view) {
    Session.Progress.Show(Current, Total);
  };
  Plan.Begin();
  const int Result = Interface.Execute();
  Session.Progress.End();
  const std::string& Error = Interface.LastError();
  if (!Error.empty())
    Report.Error = Error;
  else if (Result == 0 && !Plan.Stopped())
    Report.Cancelled = "cancelled; what was finished before stays";
  return Finish(Session, Report);
}

}  // namespace

std::unique_ptr<TCommand> MakeImportFile() { return std::make_unique<TImportFile>(); }

}  // namespace velkrund
