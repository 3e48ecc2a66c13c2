#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/dictionary/ScriptObjects.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

const TCommandTexts DictionaryScriptTexts = {
    "dictionary",
    "script",
    "prints the statements that would make what structures describe",
    "-d DB [--name NAME...] [--engine sqlite|postgresql]",
    "Generators first, then tables, their indexes, foreign keys, triggers and comments, then views and procedures. "
    "Nothing is run. What the engine has no words for stands at the end, as comments, and is counted.",
    {{"dictionary script -d sqlite:shop.db", "as SQLite would make it"},
     {"dictionary script -d sqlite:shop.db --engine postgresql --name ORDERS", "one table, for another engine"}}};

class TDictionaryScript final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DictionaryScriptTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Options",
             {Shared.DatabaseOption(),
              List("--name", "NAME", "a structure to make statements of, in any case; without it all", FJob.Names),
              Choice<std::string>("--engine", "whose statements (default: those of the database)",
                                  {{"sqlite", "sqlite"}, {"postgresql", "postgresql"}}, FJob.Engine)}},
            Shared.General()};
  }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    if (!Session.Json()) Session.Console.Result(FJob.Text());
    const auto Gaps = static_cast<std::int64_t>(FJob.Script().Gaps.size());
    if (Gaps > 0) Session.Say(LCounted("M_Velkrund_Cli_ThingsNotMade", Gaps, Gaps).Local());
    return ExitDone;
  }

 private:
  TJobScriptObjectsInterface FInterface;
  TJobScriptObjects& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeDictionaryScript() { return std::make_unique<TDictionaryScript>(); }

}  // namespace velkrund
