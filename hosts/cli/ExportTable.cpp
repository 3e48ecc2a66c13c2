#include <algorithm>

#include "hosts/cli/SectionExport.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts ExportTableTexts = {
    "export",
    "table",
    "saves the rows of tables as sections of an export/import file",
    "-d DB (-t TABLE... | --all) -o FILE",
    "All tables are read as they are at one moment. The sections are added to the file, which is made when it does not "
    "exist. A section of the same name that is there already is asked about, unless --overwrite or --add says what to "
    "do.\n\n"
    "A file that is made here and gets no section, because the export fails or is cancelled, is removed again. What "
    "is finished stays.",
    {{"export table -d sqlite:shop.db -t ORDERS -o orders.eif", "one table"},
     {"export table -d sqlite:shop.db --all -o shop.eif --overwrite yes",
      "all tables; sections of an earlier export are replaced"},
     {"export table -d sqlite:shop.db -t ORDERS -o - | velkrund import table -d sqlite:other.db -i - --replace",
      "from one database into another"},
     {"export table -d shop -t ORDERS -t LINES -o old.eif --release rv17",
      "for readers of the release before; \"shop\" is a name of the configuration"}}};

class TExportTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportTableTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool WritesStandardOutput() const override { return FExport.ToStandardOutput(); }
  int Run(TSession& Session) override;

 private:
  std::vector<std::string> Tables(const TSession& Session, TReport& Report) const;
  std::vector<std::string> AllTables(const TSession& Session, TReport& Report) const;

  std::vector<std::string> FTables, FFields;
  bool FAll = false;
  TExportOptions FExport;
};

std::vector<TOptionGroup> TExportTable::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(),
      NotWith(List("-t,--table", "TABLE", "a table to export", FTables), {"--all"}),
      Switch("--all", "all tables of the database; views and tables that the engine does not keep are left out", FAll),
      FExport.OutputOption(),
      CommaList("--fields", "A,B", "only these fields", FFields),
      FExport.SectionOption("the table's")};
  for (TOption& Option : FExport.Others(Shared, "table")) Own.push_back(std::move(Option));
  return {{"Options", Own}, Shared.General()};
}

void TExportTable::CheckOptions() {
  if (FTables.empty() && !FAll) throw EUsage("say which tables: --table NAME or --all");
  const bool Several = FAll || FTables.size() > 1;
  FExport.Check(Several, "tables");
  if (Several && !FFields.empty()) throw EUsage("--fields names fields of one table, but several tables are exported");
}

std::vector<std::string> TExportTable::AllTables(const TSession& Session, TReport& Report) const {
  std::vector<std::string> Result, LeftOut;
  for (const TTableInfo& Table : Session.Manager().Tables(Session.Database()))
    (Table.Kind == TTableKind::Table ? Result : LeftOut).push_back(FullName(Table));
  if (Result.empty()) Report.Notes.emplace_back("there are no tables");
  if (!LeftOut.empty())
    Report.Notes.push_back("left out, being views or tables that the engine does not keep: " + Joined(LeftOut));
  return Result;
}

/// The tables under their physical names, each once. A name that is none ends the run before anything is written.
std::vector<std::string> TExportTable::Tables(const TSession& Session, TReport& Report) const {
  std::vector<std::string> Result;
  for (const std::string& Name : FAll ? AllTables(Session, Report) : FTables) {
    const std::unique_ptr<TTable> Table = Session.Manager().GetUserTable(Name, Session.Database(), false);
    if (!Table) throw EDatabaseError(Format("There is no table '%s' in the database %s", Name, Report.Database));
    for (const std::string& Field : FFields)
      if (!Table->FindField(Field))
        throw EDatabaseError(Format("There is no field '%s' in the table '%s'", Field, Table->TableName()));
    if (std::find(Result.begin(), Result.end(), Table->TableName()) == Result.end())
      Result.push_back(Table->TableName());
  }
  return Result;
}

int TExportTable::Run(TSession& Session) {
  TReport Report{"export table", "exported", Session.Application.DatabaseText(Session.Database()), FExport.Output};
  for (const std::string& Table : Tables(Session, Report))
    Report.Items.push_back({FExport.Section.empty() ? Table : FExport.Section, Table});
  TUOExportTableDataInterface Interface;
  Interface.SetFields(FFields);
  const TSectionExport Export{
      Interface, TSectionRole::TableData, "rows", [&](std::size_t I) { Interface.SetTableName(Report.Items[I].Table); },
      [&](TReportItem& Item) { Item.Counts = static_cast<const TUOExportTableData&>(Interface.Operation()).Report; }};
  return ExportSections(Session, FExport, Export, Report);
}

}  // namespace

std::unique_ptr<TCommand> MakeExportTable() { return std::make_unique<TExportTable>(); }

}  // namespace velkrund
