#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/tables/CopyTables.h"

namespace velkrund {

namespace {

const TCommandTexts CopyTableTexts = {
    "copy",
    "table",
    "copies the rows of tables into tables of the same database or another one, of any engine",
    "--from DB --to DB (-t TABLE... | --all) [--to-table TABLE] [--replace|--append|--update]",
    "Each field of the target takes the values of the source's field of its name, or of the one that --map gives; the "
    "others get their default. What --map gives one field fills the field of its own name too, where the target has "
    "one that nothing else fills. Fields of the source that no field takes need --map, or --missing-fields skip. The "
    "tables of the target have to be there.\n\n"
    "The whole copy is one transaction of the target, and all rows are read as they are at one moment: after an "
    "error, or when it is cancelled, the target is as it was. With --on-error continue a table that fails is undone "
    "with those that hang together with it by foreign keys, and the rest stays.\n\n"
    "A table that has rows already needs --replace, --append or --update. At a terminal it is asked about, elsewhere "
    "it "
    "is an error, before anything is changed. With --update a row takes the place of the one with the same primary "
    "key, and is added where there is none; fields that the source does not have keep their values.",
    {{"copy table --from sqlite:shop.db --to postgresql://clerk@db/shop -t ORDERS -t LINES --replace",
      "from one engine into another"},
     {"copy table --from shop --to shop -t ORDERS --to-table ORDERS_2024 --where \"YEAR = 2024\"",
      "some rows, within one database"},
     {"copy table --from sqlite:new.db --to shop -t PRICES --map SUM=TOTAL --update",
      "what is known by its key is brought up to date"}},
    "tables"};

class TCopyTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return CopyTableTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  std::string OptionOf(std::string_view Property) const override {
    return Property == "DatabaseName" ? "--to" : TCommand::OptionOf(Property);
  }
  TLText Remedy(TPolicy Policy) const override {
    if (Policy != TPolicy::ExistingRows) return TCommand::Remedy(Policy);
    return LText("M_Velkrund_Cli_GiveReplaceAppendOrUpdate");
  }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobCopyTablesInterface FInterface;
  TJobCopyTables& FJob = FInterface.Job();
  bool FAll = false;
};

std::vector<TOptionGroup> TCopyTable::Options() {
  TPolicies& Policies = FJob.Policies;
  std::vector<TOption> Own = {
      Text("--from", "DB",
           "the database that the rows are from: a name of the configuration, or an address such as sqlite:shop.db or "
           "postgresql://user@host/shop; without it the configuration's default database",
           FJob.SourceDatabaseName),
      Text("--to", "DB", "the database that they go into (default: the configuration's default database)",
           Shared.Database),
      NotWith(List("-t,--table", "TABLE", "a table to copy", FJob.Tables), {"--all"}),
      Switch("--all", "all tables of the source; views and tables without rows of their own are left out and named",
             FAll),
      Text("--to-table", "TABLE", "for one table: the one that its rows go into (default: that of its name)",
           FJob.TargetTableName),
      Pairs("--map", "[TABLE.]SOURCE=TARGET",
            "the field TARGET gets the values of the field SOURCE, which may be a field inside a BLOB field: "
            "PICTURES.SIZE",
            FJob.Mapping),
      Text("--where", "TEXT",
           "for one table: the condition, in the words of its engine, that rows are copied by; inside of "
           "subqueries the table goes by the name T",
           FJob.Selection),
      CommaList("--exclude-blobs", "A,B",
                "BLOB fields of the target that are copied byte for byte, although a structure describes the table "
                "inside them",
                FJob.ExcludedBLOBFields),
      NotWith(Switch("--update",
                     "a row takes the place of the one that has its primary key; the others that are there stay",
                     FJob.Update),
              {"--replace"})};
  for (TOption& Option : TSharedOptions::FillingOptions(Policies, "the source")) Own.push_back(std::move(Option));
  Own.push_back(TSharedOptions::DryRunOption(Policies));
  Own.push_back(TSharedOptions::AllowLossOption(Policies));
  Own.push_back(TSharedOptions::OnErrorOption(Policies));
  return {{"Options", Own}, Shared.General()};
}

void TCopyTable::CheckOptions() {
  if (FJob.Tables.empty() && !FAll) throw EUsage("say which tables: --table NAME or --all");
  FJob.CheckSettings();
}

}  // namespace

std::unique_ptr<TCommand> MakeCopyTable() { return std::make_unique<TCopyTable>(); }

}  // namespace velkrund
