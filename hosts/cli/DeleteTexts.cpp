#include "jobs/resources/DeleteTexts.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"

namespace velkrund {

namespace {

constexpr std::string_view SectionSummary = "deletes all strings of resources, in all languages";
constexpr std::string_view SectionUsage = "-d DB --section-ids S,T [--yes]";
constexpr std::string_view SectionDetails =
    "A resource is a section of strings. All of them go in one transaction. At a terminal it is asked first, elsewhere "
    "--yes is needed. Strings of another section stay, even if their IDs begin alike.";

const TCommandTexts DeleteResourceTexts = {
    "delete",       "resource",
    SectionSummary, SectionUsage,
    SectionDetails, {{"delete resource -d sqlite:shop.db --section-id K_CLIENTS --yes", "without a question"}},
    "resources"};

const TCommandTexts DeleteSectionTexts = {
    "delete",       "section",
    SectionSummary, SectionUsage,
    SectionDetails, {{"delete sections -d shop --section-ids K_CLIENTS,K_ORDERS --dry-run", "what would go"}},
    "sections"};

const TCommandTexts DeleteStringTexts = {
    "delete",
    "string",
    "deletes single localized strings, in all languages",
    "-d DB ID... [--yes]",
    "IDs are whole: that of the section, \"_\", the name. All of them go in one transaction. At a terminal it is "
    "asked first, elsewhere --yes is needed.",
    {{"delete string -d sqlite:shop.db K_CLIENTS_Caption --yes", "without a question"}},
    "strings"};

/// By both of its names.
class TDeleteResource final : public TCommand {
 public:
  explicit TDeleteResource(const TCommandTexts& Texts) : FTexts(Texts) {}
  const TCommandTexts& Texts() const override { return FTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    std::vector<TOption> Own = {Shared.DatabaseOption()};
    for (TOption& Option : TSharedOptions::SectionIDsOptions(FJob.SectionIDs)) Own.push_back(std::move(Option));
    Own.push_back(TSharedOptions::MissingOption(Policies, "resource"));
    Own.push_back(TSharedOptions::DryRunOption(Policies));
    Own.push_back(TSharedOptions::OnErrorOption(Policies));
    return {{"Options", Own}, Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  const TCommandTexts& FTexts;
  TJobDeleteResourcesInterface FInterface;
  TJobDeleteResources& FJob = FInterface.Job();
};

class TDeleteString final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return DeleteStringTexts; }
  std::vector<TOptionGroup> Options() override {
    TPolicies& Policies = FJob.Policies;
    return {{"Arguments", {Required(List("ID", "ID", "a string's whole ID, in any case", FJob.StringIDs))}},
            {"Options",
             {Shared.DatabaseOption(), TSharedOptions::MissingOption(Policies, "string"),
              TSharedOptions::DryRunOption(Policies), TSharedOptions::OnErrorOption(Policies)}},
            Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  int Run(TSession& Session) override { return RunSectionsJob(Session, FInterface); }

 private:
  TJobDeleteStringsInterface FInterface;
  TJobDeleteStrings& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeDeleteResource() { return std::make_unique<TDeleteResource>(DeleteResourceTexts); }
std::unique_ptr<TCommand> MakeDeleteSection() { return std::make_unique<TDeleteResource>(DeleteSectionTexts); }
std::unique_ptr<TCommand> MakeDeleteString() { return std::make_unique<TDeleteString>(); }

}  // namespace velkrund
