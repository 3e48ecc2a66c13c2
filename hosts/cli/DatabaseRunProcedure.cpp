#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/databases/RunProcedure.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

const TCommandTexts RunProcedureTexts = {
    "database",
    "run-procedure",
    "runs a stored procedure, to try it",
    "-d DB NAME [--param NAME=VALUE]... [--null NAME]...",
    "All of it is one transaction: committed when it succeeds, taken back when it fails or is cancelled; --dry-run "
    "takes "
    "it back in the end. Values become what the parameter is declared as: numbers, true or false, dates such as "
    "2024-02-29, times such as 13:45:00, both with a blank between them, bytes as hexadecimal digits. A parameter "
    "without a name goes by its place: 1 is the first. One that has a default may be left out.\n\n"
    "Rows are printed as they come, a line each, with tabs between cells and the names of the columns in the first "
    "line. "
    "In a cell \\t is a tab, \\n a line feed, \\r a carriage return, \\\\ a backslash, \\xHH a byte of another control "
    "character, of bytes, or of what is no UTF-8, and \\N alone is NULL; an empty cell is an empty text. What "
    "PostgreSQL's "
    "procedures give back is a row. With --json the rows are in the document, which is held in memory as a whole.\n\n"
    "Trigger functions are not run; of overloaded names of PostgreSQL, aggregates and routines in C there is none.",
    {{"database run-procedure -d sqlite:shop.db ORDERS_OF --param CLIENT=17", "the rows of a procedure that selects"},
     {"database run-procedure -d shop CLOSE_YEAR --param YEAR=2024 --null NOTE --dry-run",
      "how many rows would be changed"}}};

class TDatabaseRunProcedure final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return RunProcedureTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(Text("NAME", "NAME", "the procedure, in any case", FJob.ProcedureName))}},
            {"Options",
             {Shared.DatabaseOption(), List("--param", "NAME=VALUE", "the value of a parameter", FParameters),
              List("--null", "NAME", "a parameter that is to be NULL", FJob.NullParameters),
              Switch("--dry-run", "run it, and take back in the end what it has changed", FJob.Policies.DryRun)}},
            Shared.General()};
  }
  void CheckOptions() override;
  int Run(TSession& Session) override;

 private:
  TJobRunProcedureInterface FInterface;
  TJobRunProcedure& FJob = FInterface.Job();
  std::vector<std::string> FParameters;
};

void TDatabaseRunProcedure::CheckOptions() {
  for (const std::string& Parameter : FParameters) {
    const std::size_t Sign = Parameter.find('=');
    if (Sign == std::string::npos)
      throw EUsage(Format("--param '%s' gives no value: write --param '%s=VALUE', or --null '%s'", Parameter, Parameter,
                          Parameter));
    FJob.Parameters.emplace_back(Parameter.substr(0, Sign), Parameter.substr(Sign + 1));
  }
}

int TDatabaseRunProcedure::Run(TSession& Session) {
  FJob.KeepRows = Session.Json();
  if (!Session.Json()) FJob.TakeLines = [&](std::string_view Lines) { Session.Console.Result(Lines); };
  RunJob(Session, FInterface);
  std::string Text = LText("M_Velkrund_Cli_Ran", OnOneLine(FJob.ProcedureFound())).Local();
  if (!FJob.Columns().empty()) Text += ": " + RowsText(FJob.Rows());
  if (FJob.ChangedRows())
    Text += (FJob.Columns().empty() ? ": " : ", ") +
            LCounted("M_Velkrund_Cli_RowsChanged", *FJob.ChangedRows(), *FJob.ChangedRows()).Local();
  if (FJob.Policies.DryRun) Text += "\n" + LText("M_Velkrund_Cli_DryRun").Local();
  Session.Say(Text);
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeDatabaseRunProcedure() { return std::make_unique<TDatabaseRunProcedure>(); }

}  // namespace velkrund
