#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/resources/ImportPo.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts ImportPoTexts = {
    "resources",
    "import-po",
    "loads localized strings from a gettext catalogue",
    "-d DB -i FILE.po [--language B] [--source-language A] [--section-id ID] [--overwrite yes|no]",
    "Every msgctxt is the ID of a string, as resources export-po writes it, and its msgstr becomes the string's text "
    "in "
    "--language, without it in the language that the catalogue names. With --source-language every msgid becomes a "
    "text "
    "too. An empty msgstr is no text; what is there stays. Other texts that are there need --overwrite; at a terminal "
    "it "
    "is asked about. A string that is there stays in its resource.\n\n"
    "Catalogues of other programs have no IDs: with --section-id they are made in that resource, from msgctxt and "
    "msgid, "
    "so that the same message has the same ID in the catalogues of all languages. A msgctxt then is lost, which is an "
    "error, or counted with --allow-loss. So are entries with plural forms, which are left out whole. Obsolete entries "
    "are passed over.\n\n"
    "Texts are in the charset of the header: UTF-8, ASCII or a Windows page from 1250 to 1258; msgconv -t UTF-8 "
    "converts others, msgunfmt makes a catalogue of a compiled one. The import is one transaction: after an error, or "
    "when it is cancelled, the database is as it was before.",
    {{"resources import-po -d sqlite:shop.db -i shop-ru.po --overwrite yes", "what a translator has sent back"},
     {"resources import-po -d shop -i de.po --section-id GIMP --source-language English --language German --fuzzy skip",
      "a catalogue of another program"}}};

class TResourcesImportPo final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportPoTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override { FJob.CheckSettings(); }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override;

 private:
  std::string ReportText() const;

  TJobImportPoInterface FInterface;
  TJobImportPo& FJob = FInterface.Job();
};

std::vector<TOptionGroup> TResourcesImportPo::Options() {
  TPolicies& Policies = FJob.Policies;
  return {{"Options",
           {Shared.DatabaseOption(),
            Required(Text("-i,--input", "FILE", "the catalogue to read; - is standard input", FJob.FileName)),
            Text("--language", "LANGUAGE", "the language of every msgstr (default: what the catalogue says)",
                 FJob.Language),
            Text("--source-language", "LANGUAGE", "the language of every msgid; without it these are not stored",
                 FJob.SourceLanguage),
            Text("--section-id", "ID", "make IDs in this resource; without it every msgctxt is one", FJob.SectionID),
            Choice<TFuzzyEntries>(
                "--fuzzy",
                "translations marked as fuzzy: refuse them, pass over them or take them; the report "
                "counts them (default: error)",
                {{"error", TFuzzyEntries::Refuse}, {"skip", TFuzzyEntries::Skip}, {"take", TFuzzyEntries::Take}},
                FJob.FuzzyEntries),
            TSharedOptions::AddLanguagesOption(FJob.AddLanguages), TSharedOptions::OverwriteTextsOption(Policies),
            TSharedOptions::DryRunOption(Policies), TSharedOptions::AllowLossOption(Policies)}},
          Shared.General()};
}

std::string TResourcesImportPo::ReportText() const {
  std::string Result;
  for (const TPoTexts& Texts : FJob.Texts()) {
    if (!Result.empty()) Result += '\n';
    Result += LText("M_Velkrund_Cli_ImportedPo", OnOneLine(Texts.Language), Texts.Added, Texts.Replaced, Texts.Same,
                    Texts.LeftAlone)
                  .Local();
    if (Texts.IsNew) Result += "\n  " + LText("M_Velkrund_Cli_PoNewLanguage").Local();
  }
  const TPoCounts& Counts = FJob.Counts();
  const bool TakesFuzzy = FJob.FuzzyEntries == TFuzzyEntries::Take;
  const auto Add = [&](std::string_view Key, std::int64_t Count) {
    if (Count > 0) Result += "\n  " + LText(Key, Count).Local();
  };
  Add("M_Velkrund_Cli_PoUntranslated", Counts.Untranslated);
  Add(TakesFuzzy ? "M_Velkrund_Cli_PoFuzzyTaken" : "M_Velkrund_Cli_PoFuzzySkipped", Counts.Fuzzy);
  Add("M_Velkrund_Cli_PoObsolete", Counts.Obsolete);
  Add("M_Velkrund_Cli_PoPlurals", Counts.Plurals);
  Add("M_Velkrund_Cli_PoContexts", Counts.Contexts);
  return Result;
}

int TResourcesImportPo::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (SayDryRun(Session, FJob)) return ExitDone;
  Session.Say(ReportText());
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeResourcesImportPo() { return std::make_unique<TResourcesImportPo>(); }

}  // namespace velkrund
