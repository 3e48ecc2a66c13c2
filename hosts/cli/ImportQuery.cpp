#include "hosts/cli/ImportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/queries/ImportQueries.h"

namespace velkrund {

namespace {

const TCommandTexts ImportQueryTexts = {
    "import",
    "query",
    "loads the rows of a query, as export query has saved them, into a table",
    "-d DB -i FILE --target TABLE [--map FILEFIELD=TABLEFIELD]... [--replace|--append]",
    "Each field of the file goes into the field of its name, or into the one that --map gives. Fields that would go "
    "nowhere are an error, unless --missing-fields skip passes over them; the number of the row, the field #, is "
    "passed "
    "over unless --map gives it a place. Without --target a person at a terminal chooses table and fields.\n\n"
    "The parameters that the query had are checked and passed over. The import is one transaction: after an error, or "
    "when it is cancelled, the database is as it was before. A table that has rows already needs --replace or "
    "--append.",
    {{"import query -d sqlite:shop.db -i late.eif --target LATE_ORDERS --map SUM=TOTAL --replace",
      "a field has another name in the table"},
     {"import query -d shop -i late.eif", "table and fields are chosen at the terminal"}}};

class TImportQuery final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportQueryTexts; }
  std::vector<TOptionGroup> Options() override {
    return ImportRowsOptions(
        Shared, FJob,
        Text("--target", "TABLE", "the table that the rows go into; without it a person at a terminal is asked",
             FJob.TableName));
  }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  std::string OptionOf(std::string_view Property) const override {
    return Property == "TableName" ? "--target" : TCommand::OptionOf(Property);
  }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobImportQueriesInterface FInterface;
  TJobImportQueries& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeImportQuery() { return std::make_unique<TImportQuery>(); }

}  // namespace velkrund
