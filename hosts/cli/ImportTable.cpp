#include "hosts/cli/ImportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"

namespace velkrund {

namespace {

const TCommandTexts ImportTableTexts = {
    "import",
    "table",
    "loads table data sections of an export/import file into tables",
    "-d DB -i FILE [-t TABLE] [--section NAME|INDEX] [--replace|--append]",
    "Without --section every table data section of the file is loaded, each into the table that it names. The "
    "whole import is one transaction: after an error, or when it is cancelled, the database is as it was before. With "
    "--on-error continue a table that fails is undone with those that hang together with it by foreign keys, and the "
    "rest stays.\n\n"
    "A table that has rows already needs --replace or --append. At a terminal it is asked about, elsewhere it is an "
    "error, before anything is changed. Two sections for one table need --append, --repeated-tables join, or --section "
    "for each of them.",
    {{"import table -d sqlite:shop.db -i orders.eif --replace", "every table of the file, emptied first"},
     {"import table -d sqlite:shop.db -i shop.eif --section ORDERS -t ORDERS_OLD --append",
      "one section into a table of another name"},
     {"import table -d shop -i orders.eif --map SUM=TOTAL --append", "a field has another name in the table"},
     {"import table -d shop -i - --replace < shop.eif", "from standard input"}}};

class TImportTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportTableTexts; }
  std::vector<TOptionGroup> Options() override {
    return ImportRowsOptions(
        Shared, FJob,
        Text("-t,--table", "TABLE", "the table to load (default: the one that the section names)", FJob.TableName));
  }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportTablesInterface FInterface;
  TJobImportTables& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeImportTable() { return std::make_unique<TImportTable>(); }

}  // namespace velkrund
