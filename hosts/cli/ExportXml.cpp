#include "jobs/resources/ExportXml.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts ExportXmlTexts = {
    "export",
    "xml",
    "writes localized strings as an XML document",
    "-d DB (--section-ids S,T | --all) [--languages A,B] -o FILE",
    "The document has the element LRES with the languages, each with a short alias, and for each section the strings "
    "with an element for each text, named by the alias. It is UTF-16, low byte first, without a mark, although its "
    "first line names windows-1251: the programs that read it expect that. A file that is there is replaced as a "
    "whole, in one step, when --overwrite or a person says so.",
    {{"export xml -d sqlite:shop.db --section-ids K_CLIENTS,K_ORDERS --languages English,Russian -o texts.xml",
      "two resources in two languages"}}};

class TExportXml final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportXmlTexts; }
  std::vector<TOptionGroup> Options() override {
    std::vector<TOption> Own = {Shared.DatabaseOption()};
    for (TOption& Option : TSharedOptions::SectionIDsOptions(FJob.SectionIDs))
      Own.push_back(NotWith(std::move(Option), {"--all"}));
    Own.push_back(Switch("--all", "all resources of the database", FAll));
    Own.push_back(TSharedOptions::LanguagesOption(FJob.Languages, "the database"));
    Own.push_back(Required(Text("-o,--output", "FILE", "the file to write; - is standard output", FJob.FileName)));
    Own.push_back(TSharedOptions::OverwriteFilesOption(FJob.Policies));
    Own.push_back(TSharedOptions::DryRunOption(FJob.Policies));
    Own.push_back(TSharedOptions::AllowLossOption(FJob.Policies));
    return {{"Options", Own}, Shared.General()};
  }
  void CheckOptions() override {
    if (FJob.SectionIDs.empty() && !FAll) throw EUsage("say which resources: --section-ids S,T or --all");
    FJob.CheckSettings();
  }
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override;

 private:
  TJobExportXmlInterface FInterface;
  TJobExportXml& FJob = FInterface.Job();
  bool FAll = false;
};

int TExportXml::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (SayDryRun(Session, FJob)) return ExitDone;
  const TJobExportXml::TWritten& Written = FJob.Written();
  if (Written.LeftAlone) {
    Session.Say(LText("M_Velkrund_Cli_FileLeft", FJob.FileName).Local());
    return ExitDone;
  }
  const auto Resources = static_cast<std::int64_t>(Written.SectionIDs.size());
  std::string Text = LCounted("M_Velkrund_Cli_ExportedXml", Resources, Resources, StringsText(Written.Strings),
                              TextsText(Written.Texts), ByteText(static_cast<double>(Written.Bytes)))
                         .Local();
  if (Written.CharactersLost > 0)
    Text += "\n  " + LText("M_Velkrund_Jobs_Warning",
                           LCounted("M_Velkrund_Cli_XmlLost", Written.CharactersLost, Written.CharactersLost))
                         .Local();
  Session.Say(Text);
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeExportXml() { return std::make_unique<TExportXml>(); }

}  // namespace velkrund
