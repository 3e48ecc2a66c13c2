#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/report/Json.h"
#include "velkrund/platform/ormtools/Format.h"

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

const char* KindText(TTableKind Kind) {
  switch (Kind) {
    case TTableKind::View:
      return "view";
    case TTableKind::Foreign:
      return "foreign";
    case TTableKind::Table:
      break;
  }
  return "table";
}

std::string NumberText(const std::optional<std::int64_t>& Number) { return Number ? std::to_string(*Number) : "-"; }

TJson NumberJson(const std::optional<std::int64_t>& Number) { return Number ? TJson(*Number) : TJson(); }

std::string TextOf(const std::string& Name, const TDatabaseInfo& Info) {
  std::vector<std::vector<std::string>> Rows = {{"TABLE", "KIND", "ROWS", "SIZE"}};
  std::string Problems;
  for (const auto& [Table, Count, Bytes, Problem] : Info.Tables) {
    Rows.push_back({Printable(FullName(Table)), KindText(Table.Kind), NumberText(Count), NumberText(Bytes)});
    if (!Problem.empty()) Problems += "warning: " + Printable(Problem) + "\n";
  }
  const std::string Catalogue = Info.CatalogueVersion ? Format("version %d", *Info.CatalogueVersion) : "none";
  return Format("database   %s\nengine     %s %s\naccess     %s\ncatalogue  %s\n\n", Name, Info.Engine,
                Info.EngineVersion, Info.ReadOnly ? "read only" : "read and write", Catalogue) +
         (Info.Tables.empty() ? "no tables\n" : ColumnsText(Rows, {false, false, true, true})) + Problems;
}

TJson JsonOf(const std::string& Name, const TDatabaseInfo& Info) {
  TJson Result;
  Result["database"] = Name;
  Result["engine"] = Info.Engine;
  Result["version"] = Info.EngineVersion;
  Result["readOnly"] = Info.ReadOnly;
  Result["catalogueVersion"] = NumberJson(Info.CatalogueVersion);
  Result["tables"] = TJson::array();
  for (const auto& [Table, Count, Bytes, Problem] : Info.Tables) {
    TJson Entry;
    Entry["name"] = FullName(Table);
    if (!Table.Schema.empty()) Entry["schema"] = Table.Schema;
    Entry["kind"] = KindText(Table.Kind);
    Entry["rows"] = NumberJson(Count);
    Entry["bytes"] = NumberJson(Bytes);
    if (!Problem.empty()) Entry["problem"] = Problem;
    Result["tables"].push_back(std::move(Entry));
  }
  return Result;
}

class TDatabaseInfoCommand final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DatabaseInfoTexts; }
  std::vector<TOptionGroup> Options() override { return {{"Options", {Shared.DatabaseOption()}}, Shared.General()}; }
  int Run(TSession& Session) override {
    const std::string Name = Session.Application.DatabaseText(Session.Database());
    const TDatabaseInfo Info = Session.Manager().DatabaseInfo(Session.Database());
    Session.Console.Result(Shared.Json ? JsonText(JsonOf(Name, Info)) : TextOf(Name, Info));
    return ExitDone;
  }
};

}  // namespace

std::unique_ptr<TCommand> MakeDatabaseInfo() { return std::make_unique<TDatabaseInfoCommand>(); }

}  // namespace velkrund
