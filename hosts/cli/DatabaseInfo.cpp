#include "jobs/databases/DatabaseInfo.h"

#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/report/ErrorReport.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts DatabaseInfoTexts = {
    "database",
    "info",
    "shows a database's engine and its tables with rows and sizes",
    "-d DB",
    "Sizes are bytes on the disk with indexes, where the engine can tell. The catalogue is what this system keeps in "
    "the "
    "database itself, such as structures. Passwords are not shown.",
    {{"database info -d sqlite:shop.db", "a table for people"},
     {"database info -d shop --json", "\"shop\" of the configuration, for programs"}}};

std::string NumberText(const std::optional<std::int64_t>& Number) { return Number ? std::to_string(*Number) : "-"; }

std::string TextOf(const std::string& Name, const TDatabaseInfo& Info) {
  std::vector<std::vector<std::string>> Rows = {{"TABLE", "KIND", "ROWS", "SIZE"}};
  std::string Problems;
  for (const auto& [Table, Count, Bytes, Error] : Info.Tables) {
    Rows.push_back({OnOneLine(FullName(Table)), KindText(Table.Kind), NumberText(Count), NumberText(Bytes)});
    if (Error) Problems += Printable(LText("M_Velkrund_Jobs_Warning", LErrorLine(*Error)).Local()) + "\n";
  }
  const std::string Catalogue = Info.CatalogueVersion ? Format("version %d", *Info.CatalogueVersion) : "none";
  return Format("database   %s\nengine     %s %s\naccess     %s\ncatalogue  %s\n\n", OnOneLine(Name), Info.Engine,
                OnOneLine(Info.EngineVersion), Info.ReadOnly ? "read only" : "read and write", Catalogue) +
         (Info.Tables.empty() ? "no tables\n" : ColumnsText(Rows, {false, false, true, true})) + Problems;
}

class TDatabaseInfoCommand final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DatabaseInfoTexts; }
  std::vector<TOptionGroup> Options() override { return {{"Options", {Shared.DatabaseOption()}}, Shared.General()}; }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    const TJobDatabaseInfo& Job = FInterface.Job();
    if (!Session.Json()) Session.Console.Result(TextOf(Job.Database(), Job.Info()));
    return ExitDone;
  }

 private:
  TJobDatabaseInfoInterface FInterface;
};

}  // namespace

std::unique_ptr<TCommand> MakeDatabaseInfo() { return std::make_unique<TDatabaseInfoCommand>(); }

}  // namespace velkrund
