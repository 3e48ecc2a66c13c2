#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/dictionary/AdoptObjects.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

using TJobState = TJobAdoptObjects::TState;

const TCommandTexts DictionaryAdoptTexts = {
    "dictionary",
    "adopt",
    "describes what is in a database as structures, and stores them there",
    "-d DB (-t NAME... | --all) [--overwrite yes|no]",
    "Tables with fields, keys, indexes, foreign keys, checks and triggers, views, generators and procedures. From such "
    "structures either engine makes the objects again: import file makes tables that are missing, dictionary script "
    "shows the statements. A structure that describes the object already stays as it is; one that describes what has "
    "changed needs --overwrite. Of what an engine still has as it is stored, the words of other engines are kept.\n\n"
    "What structures do not describe, such as owners and rights, is named at the end.",
    {{"dictionary adopt -d sqlite:shop.db --all", "everything"},
     {"dictionary adopt -d shop -t ORDERS -t LINES --overwrite yes", "two tables as they are now"},
     {"dictionary adopt -d shop --all --dry-run", "what it would store"}}};

class TDictionaryAdopt final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryAdoptTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Options",
             {Shared.DatabaseOption(),
              NotWith(List("-t,--table", "NAME", "a table, view, generator or procedure to describe", FJob.Names),
                      {"--all"}),
              Switch("--all", "all objects of the database", FAll),
              TSharedOptions::OverwriteStructuresOption(FJob.Policies), TSharedOptions::ColumnsOption(FJob.Policies),
              TSharedOptions::DryRunOption(FJob.Policies)}},
            Shared.General()};
  }
  void CheckOptions() override {
    if (FJob.Names.empty() && !FAll) throw EUsage("say which objects: --table NAME or --all");
  }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    Say(Session);
    return ExitDone;
  }

 private:
  void Say(TSession& Session) const;

  TJobAdoptObjectsInterface FInterface;
  TJobAdoptObjects& FJob = FInterface.Job();
  bool FAll = false;
};

void TDictionaryAdopt::Say(TSession& Session) const {
  std::string Text;
  for (const TJobAdoptObjects::TAdoption& Adoption : FJob.Adoptions()) {
    const std::string Name = OnOneLine(StructureText(Adoption.Structure));
    const auto Add = [&](const char* Key, const std::string& What) { Text += LText(Key, What).Local() + "\n"; };
    if (Adoption.State == TJobState::Added) Add("M_Velkrund_Cli_Added", Name);
    if (Adoption.State == TJobState::Replaced) Add("M_Velkrund_Cli_Replaced", Name);
    if (Adoption.State == TJobState::LeftOut) Add("M_Velkrund_Cli_StructureLeft", Name);
    for (const std::string& Gone : Adoption.Gone) Add("M_Velkrund_Cli_Gone", OnOneLine(Gone));
  }
  std::vector<TLText> Left;
  for (const std::string& One : FJob.LeftBehind())
    Left.push_back(LText("M_Velkrund_Jobs_NotDescribed", OnOneLine(One)));
  for (const TLText& Line : Left) Text += Line.Local() + "\n";
  Text += LText("M_Velkrund_Cli_AllAdopted", FJob.Count(TJobState::Added), FJob.Count(TJobState::Replaced),
                FJob.Count(TJobState::Unchanged), FJob.Count(TJobState::LeftOut))
              .Local() +
          "\n";
  if (!SayDryRun(Session, FJob, Left)) Session.Say(Text);
}

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryAdopt() { return std::make_unique<TDictionaryAdopt>(); }

}  // namespace velkrund
