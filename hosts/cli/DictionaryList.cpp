#include "hosts/cli/Dictionary.h"
#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "hosts/cli/render/TreeText.h"
#include "velkrund/platform/structures/DSPContainer.h"

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

class TDictionaryList final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryListTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Options", {Shared.DatabaseOption(), FWhich.TypeOption(), FWhich.NameOption()}}, Shared.General()};
  }
  int Run(TSession& Session) override;

 private:
  TStructureOptions FWhich;
};

std::string TextOf(const std::vector<TDSPListItem>& Items) {
  if (Items.empty()) return "no structures\n";
  std::vector<std::vector<std::string>> Rows = {{"TYPE", "NAME", "TABLE", "PARENT", "REMARKS"}};
  for (const TDSPListItem& Item : Items)
    Rows.push_back({TypeText(Item.ObjectType), OnOneLine(Item.ObjectName), OnOneLine(Item.TableName),
                    OnOneLine(Item.ParentObject), FirstLine(Item.Remarks)});
  return ColumnsText(Rows, {false, false, false, false, false});
}

int TDictionaryList::Run(TSession& Session) {
  TJson Document;
  Document["database"] = Session.Application.DatabaseText(Session.Database());
  const auto Items = StructuresLike(DSPContainer().Table(Session.Database()), FWhich.Type, FWhich.Name);
  Document["structures"] = TJson::array();
  for (const TDSPListItem& Item : Items) Document["structures"].push_back(PropertiesJson(Item));
  Session.Console.Result(Shared.Json ? JsonText(Document) : TextOf(Items));
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryList() { return std::make_unique<TDictionaryList>(); }

}  // namespace velkrund
