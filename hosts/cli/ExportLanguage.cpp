#include "hosts/cli/ExportOptions.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "jobs/resources/ExportToFolder.h"

namespace velkrund {

namespace {

const TCommandTexts ExportLanguageTexts = {
    "export",
    "language",
    "saves what the languages of a database are called as sections of an export/import file",
    "-d DB [--languages A,B] (-o FILE | --folder DIR)",
    "A language is a name, by which texts are addressed, and what people call it in Russian, in English and in the "
    "language itself. Sections are added to the file as export table does it; with --folder the file Languages.eif "
    "is made afresh there. The texts are saved by export resource.",
    {{"export languages -d sqlite:shop.db -o languages.eif", "all languages"},
     {"export languages -d shop --languages Russian,English --folder exchange", "two of them, into Languages.eif"}},
    "languages"};

class TExportLanguage final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportLanguageTexts; }
  std::vector<TOptionGroup> Options() override {
    std::vector<TOption> Own = {
        Shared.DatabaseOption(), TSharedOptions::LanguagesOption(FJob.Languages, "the database"),
        NotRequired(OutputOption(FJob)),
        NotWith(Text("--folder", "DIR", "the folder to make Languages.eif in", FFolderJob.Folder),
                {"--output", "--section", "--add", "--new"}),
        SectionOption(FJob, "the language's")};
    for (TOption& Option : OtherExportOptions(FJob, "language")) Own.push_back(std::move(Option));
    return {{"Options", Own}, Shared.General()};
  }
  void CheckOptions() override;
  bool WritesStandardOutput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override {
    if (!FFolderJob.Folder.empty()) return RunSectionsJob(Session, FFolderInterface);
    return RunSectionsJob(Session, FInterface);
  }

 private:
  TJobExportLanguagesInterface FInterface;
  TJobExportLanguages& FJob = FInterface.Job();
  TJobExportLanguagesFileInterface FFolderInterface;
  TJobExportLanguagesFile& FFolderJob = FFolderInterface.Job();
};

void TExportLanguage::CheckOptions() {
  if (FFolderJob.Folder.empty() == FJob.FileName.empty()) throw EUsage("say where to: --output FILE or --folder DIR");
  if (FFolderJob.Folder.empty()) return FJob.CheckSettings();
  TakeExportSettings(FFolderJob, FJob);
  FFolderJob.Languages = FJob.Languages;
  FFolderJob.CheckSettings();
}

}  // namespace

std::unique_ptr<TCommand> MakeExportLanguage() { return std::make_unique<TExportLanguage>(); }

}  // namespace velkrund
