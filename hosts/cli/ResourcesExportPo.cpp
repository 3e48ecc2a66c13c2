#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/resources/ExportPo.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts ExportPoTexts = {
    "resources",
    "export-po",
    "writes localized strings as a gettext catalogue, for translators",
    "-d DB (--section-ids S,T | --all) --source-language A --language B -o FILE.po",
    "Every entry has the ID of a string as msgctxt, its text in the source language as msgid, and its text in the "
    "other "
    "language as msgstr, which is empty where there is none. A comment names the resource that the string is in. "
    "Strings without a text in the source language are left out, and counted. The catalogue is in UTF-8 and has no "
    "dates, so that the same texts give the same bytes; resources import-po takes it back.\n\n"
    "An empty msgstr means that a translation is missing: one that is there and empty is an error, or counted with "
    "--allow-loss. A file that is there is replaced as a whole, in one step, when --overwrite or a person says so.",
    {{"resources export-po -d sqlite:shop.db --section-ids K_CLIENTS,K_ORDERS --source-language English --language "
      "Russian -o shop-ru.po",
      "two resources for a translator"},
     {"resources export-po -d shop --all --source-language English --language German -o shop-de.po --overwrite yes",
      "all of a database, in the place of an older catalogue"}}};

class TResourcesExportPo final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportPoTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override {
    if (FJob.SectionIDs.empty() && !FAll) throw EUsage("say which resources: --section-ids S,T or --all");
    FJob.CheckSettings();
  }
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override;

 private:
  std::string ReportText() const;

  TJobExportPoInterface FInterface;
  TJobExportPo& FJob = FInterface.Job();
  bool FAll = false;
};

std::vector<TOptionGroup> TResourcesExportPo::Options() {
  std::vector<TOption> Own = {Shared.DatabaseOption()};
  for (TOption& Option : TSharedOptions::SectionIDsOptions(FJob.SectionIDs))
    Own.push_back(NotWith(std::move(Option), {"--all"}));
  Own.push_back(Switch("--all", "all resources of the database", FAll));
  Own.push_back(
      Required(Text("--source-language", "LANGUAGE", "the language that is translated from", FJob.SourceLanguage)));
  Own.push_back(Required(Text("--language", "LANGUAGE", "the language that is translated to", FJob.Language)));
  Own.push_back(Required(Text("-o,--output", "FILE", "the file to write; - is standard output", FJob.FileName)));
  Own.push_back(TSharedOptions::OverwriteFilesOption(FJob.Policies));
  Own.push_back(TSharedOptions::MissingOption(FJob.Policies, "resource"));
  Own.push_back(TSharedOptions::DryRunOption(FJob.Policies));
  Own.push_back(TSharedOptions::AllowLossOption(FJob.Policies));
  return {{"Options", Own}, Shared.General()};
}

std::string TResourcesExportPo::ReportText() const {
  using TReport = TPoSectionReport;
  std::string Result = LText("M_Velkrund_Cli_ExportedPo", OnOneLine(FJob.SourceLanguage), OnOneLine(FJob.Language),
                             StringsText(FJob.CountOf(&TReport::Strings)), FJob.CountOf(&TReport::Untranslated))
                           .Local();
  for (const TLText& Note : FJob.Notes()) Result += "\n  " + Note.Local();
  const auto Warn = [&](std::string_view Key, std::int64_t Count) {
    if (Count > 0) Result += "\n  " + LText("M_Velkrund_Jobs_Warning", LText(Key, Count)).Local();
  };
  Warn("M_Velkrund_Cli_PoEmptyTexts", FJob.EmptyTexts());
  Warn("M_Velkrund_Cli_PoMalformed", FJob.MalformedTexts());
  return Result;
}

int TResourcesExportPo::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (SayDryRun(Session, FJob, FJob.Notes())) return ExitDone;
  Session.Say(FJob.LeftAlone() ? LText("M_Velkrund_Cli_FileLeft", FJob.FileName).Local() : ReportText());
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeResourcesExportPo() { return std::make_unique<TResourcesExportPo>(); }

}  // namespace velkrund
