#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/structures/StoredStructures.h"
#include "jobs/structures/TreeText.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts DictionaryListTexts = {
    "dictionary",
    "list",
    "lists the stored structures of a database",
    "-d DB [--type T] [--name NAME]",
    "By type, then by name; of the remarks the first line. --json tells them in full.",
    {{"dictionary list -d sqlite:shop.db", "all structures"},
     {"dictionary list -d shop --type 12 --json", "the visual forms, for programs"}}};

std::string FirstLine(const std::string& Text) { return OnOneLine(Text.substr(0, Text.find_first_of("\r\n"))); }

std::string TextOf(const std::vector<TDSPListItem>& Items) {
  if (Items.empty()) return "no structures\n";
  std::vector<std::vector<std::string>> Rows = {{"TYPE", "NAME", "TABLE", "PARENT", "REMARKS"}};
  for (const TDSPListItem& Item : Items)
    Rows.push_back({TypeText(Item.ObjectType), OnOneLine(Item.ObjectName), OnOneLine(Item.TableName),
                    OnOneLine(Item.ParentObject), FirstLine(Item.Remarks)});
  return ColumnsText(Rows, {false, false, false, false, false});
}

class TDictionaryList final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryListTexts; }
  std::vector<TOptionGroup> Options() override {
    TStructureChoice& Choice = FInterface.Job().Choice;
    return {{"Options",
             {Shared.DatabaseOption(), TSharedOptions::TypeOption(Choice.ObjectType),
              TSharedOptions::NameOption(Choice.ObjectName)}},
            Shared.General()};
  }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    if (!Session.Json()) Session.Console.Result(TextOf(FInterface.Job().Found()));
    return ExitDone;
  }

 private:
  TJobListStructuresInterface FInterface;
};

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryList() { return std::make_unique<TDictionaryList>(); }

}  // namespace velkrund
