#include "jobs/resources/CopyTexts.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"

namespace velkrund {

namespace {

const TCommandTexts CopyResourceTexts = {
    "copy",
    "resource",
    "copies localized strings into another database, or another section of the same one",
    "--from DB --to DB (--section-ids S,T | --all) | -d DB --section-id S --to-section-id T",
    "The strings come along with their texts in all languages. A text that is there already needs --overwrite; at a "
    "terminal it is asked about. A language that the target lacks is an error before anything is changed, unless "
    "--add-languages adds it, called as in the source. The whole copy is one transaction.",
    {{"copy resources --from sqlite:shop.db --to postgresql://clerk@db/shop --section-ids K_CLIENTS,K_ORDERS",
      "two resources, from one engine to another"},
     {"copy resource -d shop --section-id K_CLIENTS --to-section-id K_CUSTOMERS", "within one database"}},
    "resources"};

const TCommandTexts CopyLanguageTexts = {
    "copy",
    "language",
    "copies what languages are called into another database",
    "--from DB --to DB [--languages A,B]",
    "A language that is there already under other names needs --overwrite; at a terminal it is asked about. The texts "
    "are copied by copy resource.",
    {{"copy languages --from sqlite:shop.db --to sqlite:other.db", "all languages"}},
    "languages"};

TOption FromOption(std::string& Database) {
  return Text("--from", "DB",
              "the database to copy from: a name of the configuration, or an address such as sqlite:shop.db or "
              "postgresql://user@host/shop; without it the configuration's default database",
              Database);
}

TOption ToOption(std::string& Database) {
  return Text("--to", "DB", "the database to copy into (default: the configuration's default database)", Database);
}

class TCopyResource final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return CopyResourceTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    std::vector<TOption> Own = {
        FromOption(FJob.SourceDatabaseName), ToOption(Shared.Database),
        NotWith(Text("-d,--database", "DB", "the database of both sections, with --to-section-id", Shared.Database),
                {"--from", "--to"})};
    for (TOption& Option : TSharedOptions::SectionIDsOptions(FJob.SectionIDs))
      Own.push_back(NotWith(std::move(Option), {"--all"}));
    Own.push_back(Switch("--all", "all resources of the source", FAll));
    Own.push_back(NotWith(
        Text("--to-section-id", "ID", "the section of the same database to copy one into", FJob.TargetSectionID),
        {"--from", "--to", "--all"}));
    Own.push_back(TSharedOptions::AddLanguagesOption(FJob.AddLanguages));
    Own.push_back(TSharedOptions::OverwriteTextsOption(Policies));
    Own.push_back(TSharedOptions::DryRunOption(Policies));
    Own.push_back(TSharedOptions::OnErrorOption(Policies));
    return {{"Options", Own}, Shared.General()};
  }
  void CheckOptions() override {
    if (FJob.SectionIDs.empty() && !FAll) throw EUsage("say which resources: --section-ids S,T or --all");
    FJob.CheckSettings();
  }
  std::string OptionOf(std::string_view Property) const override {
    return Property == "DatabaseName" && FJob.TargetSectionID.empty() ? "--to" : TCommand::OptionOf(Property);
  }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobCopyResourcesInterface FInterface;
  TJobCopyResources& FJob = FInterface.Job();
  bool FAll = false;
};

class TCopyLanguage final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return CopyLanguageTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Options",
             {FromOption(FJob.SourceDatabaseName), ToOption(Shared.Database),
              TSharedOptions::LanguagesOption(FJob.Languages, "the source"),
              TSharedOptions::OverwriteTextsOption(FJob.Policies), TSharedOptions::DryRunOption(FJob.Policies),
              TSharedOptions::OnErrorOption(FJob.Policies)}},
            Shared.General()};
  }
  std::string OptionOf(std::string_view Property) const override {
    return Property == "DatabaseName" ? "--to" : TCommand::OptionOf(Property);
  }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobCopyLanguagesInterface FInterface;
  TJobCopyLanguages& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeCopyResource() { return std::make_unique<TCopyResource>(); }
std::unique_ptr<TCommand> MakeCopyLanguage() { return std::make_unique<TCopyLanguage>(); }

}  // namespace velkrund
