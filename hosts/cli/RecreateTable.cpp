#include "hosts/cli/Recreation.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/recreation/RecreateTables.h"

namespace velkrund {

namespace {

const TCommandTexts RecreateTableTexts = {
    "recreate",
    "table",
    "makes tables anew as their structures describe them, and carries their rows over",
    "-d DB NAME... [--map [TABLE.]OLD=NEW]... [--drop-data] [--overwrite ask|yes|no]",
    "After a structure was changed, this makes the table follow it: with new fields, types, keys and indexes. Each "
    "field "
    "takes the values of the old one of its name, or of the one that --map gives; a new field gets its default, else "
    "NULL. A value that the new type does not hold is an error that names its row. Fields of the table that the "
    "structure does not have any more need --map, or --missing-fields skip. A table that is not there is made.\n\n"
    "The run is one transaction. What stands around a table is there afterwards as before: views, foreign keys of "
    "others, triggers, comments, owner and rights, storage options, counters. What cannot be put back is an error "
    "before "
    "anything is dropped.",
    {{"recreate table -d sqlite:shop.db ORDERS --overwrite yes", "follow the structure, rows kept"},
     {"recreate table -d shop ORDERS LINES --map ORDERS.SUM=TOTAL", "a field has another name now"},
     {"recreate table -d shop CACHE --drop-data --dry-run", "what would be done"}},
    "tables"};

class TRecreateTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return RecreateTableTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    return {
        {"Options",
         {Shared.DatabaseOption(), Required(List("NAME", "NAME", "a table", FJob.Names)),
          Pairs("--map", "[TABLE.]OLD=NEW",
                "the field NEW gets the values of the field OLD; OLD may be a field inside a BLOB field: "
                "PICTURES.SIZE",
                FJob.Mapping),
          Switch("--drop-data", "the rows go with the old table; the report counts them", FJob.DropData),
          TSharedOptions::OverwriteObjectsOption(Policies),
          Choice<TMissingFields>("--missing-fields",
                                 "fields of the table that its structure does not have any more, and nothing maps: "
                                 "refuse, or drop them with their values, which the report names (default: error)",
                                 {{"skip", TMissingFields::Skip}, {"error", TMissingFields::Refuse}},
                                 Policies.MissingFields),
          TSharedOptions::AllowMissingOption(Policies), TSharedOptions::LongNamesOption(Policies, "tables to be made"),
          TSharedOptions::DryRunOption(Policies), TSharedOptions::OnErrorOption(Policies)}},
        Shared.General()};
  }
  int Run(TSession& Session) override { return RunRecreation(Session, FInterface); }

 private:
  TJobRecreateTablesInterface FInterface;
  TJobRecreateTables& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeRecreateTable() { return std::make_unique<TRecreateTable>(); }

}  // namespace velkrund
