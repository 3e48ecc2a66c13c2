#include "hosts/cli/Recreation.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/recreation/RecreateObjects.h"

namespace velkrund {

namespace {

const TCommandTexts RecreateViewTexts = {
    "recreate",
    "view",
    "makes views anew as their structures describe them",
    "-d DB NAME... [--overwrite ask|yes|no]",
    "Views that need each other may come in any order. Each is tried when it is made, and taken back when it does not "
    "work. Views on a view, its owner, rights, comments and triggers stay as they are. The run is one transaction.",
    {{"recreate view -d sqlite:shop.db TOTALS --overwrite yes", "follow the structure"},
     {"recreate views -d shop TOTALS MONTHS YEARS", "several, in any order"}},
    "views"};

const TCommandTexts RecreateGeneratorTexts = {
    "recreate",
    "generator",
    "makes generators anew as their structures describe them",
    "-d DB NAME... [--start-value N] [--overwrite ask|yes|no]",
    "A generator that is there is changed in place and goes on where it stands, unless --start-value says otherwise. "
    "The "
    "run is one transaction.",
    {{"recreate generator -d sqlite:shop.db ORDER_NO --overwrite yes", "follow the structure, and go on"},
     {"recreate generator -d shop ORDER_NO --start-value 5000 --overwrite yes", "5000 comes next"}},
    "generators"};

const TCommandTexts RecreateProcedureTexts = {
    "recreate",
    "procedure",
    "makes stored procedures anew as their structures describe them",
    "-d DB NAME... [--overwrite ask|yes|no]",
    "Procedures that need each other may come in any order. Owner, rights and comments stay. The run is one "
    "transaction. "
    "velkrund database run-procedure tries one.",
    {{"recreate procedure -d sqlite:shop.db CLOSE_MONTH --overwrite yes", "follow the structure"}},
    "procedures"};

class TRecreateObject final : public TCommand {
 public:
  TRecreateObject(const TCommandTexts& Texts, TRecreatedKind Kind) : FTexts(Texts) { FJob.Kind = Kind; }

  const TCommandTexts& Texts() const override { return FTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    std::vector<TOption> Own = {
        Shared.DatabaseOption(),
        Required(List("NAME", "NAME", "a " + std::string(FTexts.Object), FJob.Names)),
        TSharedOptions::OverwriteObjectsOption(Policies),
    };
    if (FJob.Kind == TRecreatedKind::Generator)
      Own.push_back(Text("--start-value", "N", "the next number, also behind those that were given out already",
                         FJob.StartValue));
    if (FJob.Kind == TRecreatedKind::View) Own.push_back(TSharedOptions::LongNamesOption(Policies, "views to be made"));
    Own.push_back(TSharedOptions::AllowMissingOption(Policies));
    Own.push_back(TSharedOptions::DryRunOption(Policies));
    Own.push_back(TSharedOptions::OnErrorOption(Policies));
    return {{"Options", Own}, Shared.General()};
  }
  int Run(TSession& Session) override { return RunRecreation(Session, FInterface); }

 private:
  const TCommandTexts& FTexts;
  TJobRecreateObjectsInterface FInterface;
  TJobRecreateObjects& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeRecreateView() {
  return std::make_unique<TRecreateObject>(RecreateViewTexts, TRecreatedKind::View);
}

std::unique_ptr<TCommand> MakeRecreateGenerator() {
  return std::make_unique<TRecreateObject>(RecreateGeneratorTexts, TRecreatedKind::Generator);
}

std::unique_ptr<TCommand> MakeRecreateProcedure() {
  return std::make_unique<TRecreateObject>(RecreateProcedureTexts, TRecreatedKind::Procedure);
}

}  // namespace velkrund
