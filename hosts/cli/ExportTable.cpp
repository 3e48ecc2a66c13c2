#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/tables/ExportTables.h"

namespace velkrund {

namespace {

const TCommandTexts ExportTableTexts = {
    "export",
    "table",
    "saves the rows of tables as sections of an export/import file",
    "-d DB (-t TABLE... | --all) -o FILE",
    "All tables are read as they are at one moment. The sections are added to the file, which is made when it does not "
    "exist. A section of the same name that is there already is asked about, unless --overwrite or --add says what to "
    "do. With --new the file is made afresh, and holds what is there now and nothing else; unless all of the run is "
    "done, "
    "it is left as it was.\n\n"
    "Rows stand in the order of the table's primary key, or else of a unique key whose columns are never NULL: the "
    "same rows give the same text, whatever engine holds them. Texts in keys are compared byte by byte. Tables without "
    "such a key are named at the end.\n\n"
    "A new file gets its name with its first finished section. What is finished stays, whatever happens; sections that "
    "replace others, and what follows them, are there at the end, in one step.",
    {{"export table -d sqlite:shop.db -t ORDERS -o orders.eif", "one table"},
     {"export table -d sqlite:shop.db --all -o shop.eif --overwrite yes",
      "all tables; sections of an earlier export are replaced"},
     {"export table -d sqlite:shop.db --all --structures -o shop.eif --new",
      "all that another database, of any engine, needs to have these tables"},
     {"export table -d sqlite:shop.db --all -o shop.eif --new", "all tables as they are now, every night"},
     {"export table -d sqlite:shop.db -t ORDERS -o - | velkrund import table -d sqlite:other.db -i - --replace",
      "from one database into another"},
     {"export table -d shop -t ORDERS -t LINES -o old.eif --release rv17",
      "for readers of the release before; \"shop\" is a name of the configuration"}}};

class TExportTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportTableTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobExportTablesInterface FInterface;
  TJobExportTables& FJob = FInterface.Job();
  bool FAll = false;
};

std::vector<TOptionGroup> TExportTable::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      NotWith(List("-t,--table", "TABLE", "a table to export", FJob.Tables), {"--all"}),
      Switch("--all", "all tables of the database; views and tables without rows of their own are left out and named",
             FAll),
      OutputOption(FJob),
      CommaList("--fields", "A,B", "only these fields", FJob.Fields),
      Choice<TRowOrder>("--row-order",
                        "of every table: by its primary key, or else a unique one, or as the engine has them, which is "
                        "quickest (default: key)",
                        {{"key", TRowOrder::Key}, {"any", TRowOrder::Any}}, FJob.RowOrder),
      Switch("--structures",
             "put before each table's rows the structure that describes it, from which import file makes the table "
             "where it is missing; nothing is stored in the database",
             FJob.Structures),
      TSharedOptions::ColumnsOption(FJob.Policies),
      SectionOption(FJob, "the table's")};
  for (TOption& Option : OtherExportOptions(FJob, "table")) Own.push_back(std::move(Option));
  return {{"Options", Own}, Shared.General()};
}

void TExportTable::CheckOptions() {
  if (FJob.Tables.empty() && !FAll) throw EUsage("say which tables: --table NAME or --all");
  FJob.CheckSettings();
}

}  // namespace

std::unique_ptr<TCommand> MakeExportTable() { return std::make_unique<TExportTable>(); }

}  // namespace velkrund
