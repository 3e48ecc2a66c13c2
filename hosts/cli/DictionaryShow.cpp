#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/structures/StoredStructures.h"
#include "jobs/structures/TreeText.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts DictionaryShowTexts = {
    "dictionary",
    "show",
    "shows a stored structure with its tree",
    "-d DB --name NAME [--type T]",
    "A line for each node: its name, its type and its value, in full; what is below it is indented. Texts of several "
    "lines stand below their node, \"|\" before each line. The type of the structure can be left out where only one "
    "has "
    "the name.\n\n"
    "With --json nodes are nested objects. Bytes are hexadecimal digits, dates, amounts and numbers that JSON does not "
    "know (NAN, INF) texts; the value of a variant has its kind beside it.",
    {{"dictionary show -d sqlite:shop.db --type 12 --name CLIENTS", "a form, for people"},
     {"dictionary show -d shop --name CLIENTS --json", "the same for programs"}}};

std::string HeadText(const TDSPListItem& Item) {
  std::vector<std::vector<std::string>> Rows = {{"structure", OnOneLine(Item.ObjectName)},
                                                {"type", TypeText(Item.ObjectType)}};
  if (!Item.TableName.empty()) Rows.push_back({"table", OnOneLine(Item.TableName)});
  if (!Item.ParentObject.empty()) Rows.push_back({"parent", OnOneLine(Item.ParentObject)});
  const std::string Remarks = Printable(Item.Remarks);
  for (std::size_t At = 0; At < Remarks.size();) {
    const std::size_t End = std::min(Remarks.find('\n', At), Remarks.size());
    Rows.push_back({At == 0 ? "remarks" : "", Remarks.substr(At, End - At)});
    At = End + 1;
  }
  return ColumnsText(Rows, {false, false}) + "\n";
}

class TDictionaryShow final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryShowTexts; }
  std::vector<TOptionGroup> Options() override {
    TStructureChoice& Choice = FInterface.Job().Choice;
    return Shared.OfOneStructure(Choice.ObjectType, Choice.ObjectName);
  }
  int Run(TSession& Session) override;

 private:
  TJobShowStructureInterface FInterface;
};

int TDictionaryShow::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (Session.Json()) return ExitDone;
  Session.Console.Result(HeadText(FInterface.Job().Found()));
  FInterface.Job().WriteTree([&](std::string_view Lines) { Session.Console.Result(Lines); });
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryShow() { return std::make_unique<TDictionaryShow>(); }

}  // namespace velkrund
