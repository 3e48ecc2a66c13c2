#include "jobs/queries/ExportQuery.h"
#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/TextInput.h"
#include "hosts/cli/line/Commands.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts ExportQueryTexts = {
    "export",
    "query",
    "saves the rows of a query, with its text and parameters, as a section of an export/import file",
    "-d DB (--sql TEXT | --sql-file FILE) [--param NAME=TYPE:VALUE]... -o FILE",
    "The query is one statement in the words of the engine, and only reads: what would change something is refused. "
    "Outside of literals and comments :NAME is a parameter. --param gives its value behind the type: integer, Int64, "
    "double, Currency, boolean, string, SysDate, SysTime, DateTime, binary; dates are like 2024-02-29, times like "
    "13:45:00, bytes like 0x0AFF. NAME=TYPE alone "
    "is NULL.\n\n"
    "The rows come as the query has them, each with its running number in the field #. Fields of the result need "
    "names that differ, not in case alone. The section is added to the file as export table does it; import query "
    "loads it into a table.",
    {{"export query -d sqlite:shop.db --sql \"SELECT * FROM ORDERS WHERE DAY < :DAY\" --param DAY=SysDate:2024-02-29 "
      "-o "
      "late.eif",
      "with a parameter"},
     {"export query -d shop --sql-file late.sql --section LATE --sort-fields -o reports.eif --overwrite yes",
      "the query is in a file"}}};

class TExportQuery final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportQueryTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool ReadsStandardInput() const override { return FSqlFile == "-"; }
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override;

 private:
  TJobExportQueryInterface FInterface;
  TJobExportQuery& FJob = FInterface.Job();
  std::string FSqlFile;
};

std::vector<TOptionGroup> TExportQuery::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      NotWith(Text("--sql", "TEXT", "the query", FJob.Query), {"--sql-file"}),
      Text("--sql-file", "FILE", "the file that the query is in, as UTF-8; - is standard input", FSqlFile),
      Pairs("--param", "NAME=TYPE:VALUE", "the value of a parameter; NAME=TYPE is NULL", FJob.Parameters),
      OutputOption(FJob),
      Switch("--sort-fields", "fields in the order of their names; otherwise in that of the query", FJob.SortFields),
      Switch("--no-row-numbers", "without the field #", FJob.WithoutRowNumbers),
      SectionOption(FJob, "QUERY")};
  for (TOption& Option : OtherExportOptions(FJob, "query")) Own.push_back(std::move(Option));
  return {{"Options", Own}, Shared.General()};
}

void TExportQuery::CheckOptions() {
  if (FJob.Query.empty() && FSqlFile.empty()) throw EUsage("say which query: --sql TEXT or --sql-file FILE");
}

int TExportQuery::Run(TSession& Session) {
  if (!FSqlFile.empty()) FJob.Query = ReadText(FSqlFile, "the query");
  return RunSectionsJob(Session, FInterface);
}

}  // namespace

std::unique_ptr<TCommand> MakeExportQuery() { return std::make_unique<TExportQuery>(); }

}  // namespace velkrund
