#include "hosts/cli/Dictionary.h"
#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

namespace {

const TCommandTexts DictionaryDropTexts = {
    "dictionary",
    "drop",
    "removes a stored structure",
    "-d DB --name NAME [--type T] [--yes]",
    "Removes its properties and its tree, in one go. What the structure describes, such as a table, stays. At a "
    "terminal it is asked first, elsewhere --yes is needed. The type can be left out where only one structure has the "
    "name.",
    {{"dictionary drop -d sqlite:shop.db --type 12 --name CLIENTS --yes", "without a question"}}};

class TDictionaryDrop final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryDropTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Options", {Shared.DatabaseOption(), FWhich.TypeOption(), Required(FWhich.NameOption())}},
            Shared.General()};
  }
  int Run(TSession& Session) override;

 private:
  TStructureOptions FWhich;
};

int TDictionaryDrop::Run(TSession& Session) {
  const std::string Database = Session.Application.DatabaseText(Session.Database());
  TDSPTable& Table = DSPContainer().Table(Session.Database());
  const TDSPListItem Item = FWhich.One(Table, Database);
  const std::string Name = Format("the structure '%s' of type %d", Item.ObjectName, Item.ObjectType);
  const TQuestion Question{Format("Drop %s?", Name), {TAnswer::Yes, TAnswer::Cancel}, "--yes"};
  if (!Shared.Yes && Session.Answers.Ask(Question) != TAnswer::Yes) throw EAbort("Cancelled at a question");
  TTransaction Transaction(Session.Database());
  if (!Table.DeleteStructure(Item.ObjectName, Item.ObjectType))
    throw EDatabaseError(Format("Somebody else has dropped %s", Name));
  Transaction.Commit();
  if (Shared.Json) Session.Console.Result(JsonText({{"database", Database}, {"dropped", PropertiesJson(Item)}}));
  Session.Console.Message("dropped " + Name);
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryDrop() { return std::make_unique<TDictionaryDrop>(); }

}  // namespace velkrund
