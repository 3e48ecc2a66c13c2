#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/resources/StoredLanguages.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts ListTexts = {"languages",
                                 "list",
                                 "lists the languages of a database",
                                 "-d DB",
                                 "In the order in which they were added, with the number of strings that have a text.",
                                 {{"languages list -d sqlite:shop.db", "all languages"}}};

const TCommandTexts AddTexts = {
    "languages",
    "add",
    "adds a language to a database, or changes what it is called",
    "-d DB NAME [--russian R] [--english E] [--native N]",
    "Texts are addressed by the name; the others are what people see. What is not given is as it was, of a new "
    "language its name. A name with blanks, \"=\" or \"#\" is refused, since files would not bring it back.",
    {{"languages add -d sqlite:shop.db German --english German --native Deutsch", "a new one"}}};

const TCommandTexts RemoveTexts = {
    "languages",
    "remove",
    "removes a language from a database, with all texts in it",
    "-d DB NAME [--yes]",
    "At a terminal it is asked first, elsewhere --yes is needed; both are told how many texts go. Strings without a "
    "text in another language go too.",
    {{"languages remove -d sqlite:shop.db German --dry-run", "how many texts would go"}}};

class TList final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ListTexts; }
  std::vector<TOptionGroup> Options() override { return {{"Options", {Shared.DatabaseOption()}}, Shared.General()}; }
  int Run(TSession& Session) override;

 private:
  TJobListLanguagesInterface FInterface;
};

int TList::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (Session.Json()) return ExitDone;
  std::vector<std::vector<std::string>> Rows = {{"LANGUAGE", "RUSSIAN", "ENGLISH", "NATIVE", "TEXTS"}};
  for (const TStoredLanguage& Language : FInterface.Job().Found())
    Rows.push_back({OnOneLine(Language.Name), OnOneLine(Language.Record.RussianName),
                    OnOneLine(Language.Record.EnglishName), OnOneLine(Language.Record.NativeName),
                    std::to_string(Language.Texts)});
  Session.Console.Result(Rows.size() == 1 ? "no languages\n" : ColumnsText(Rows, {false, false, false, false, true}));
  return ExitDone;
}

class TAdd final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return AddTexts; }
  std::vector<TOptionGroup> Options() override {
    TOneLanguage& Record = FJob.Record;
    return {{"Arguments", {Required(Text("NAME", "NAME", "the language's name", FJob.LanguageName))}},
            {"Options",
             {Shared.DatabaseOption(), Text("--russian", "R", "what it is called in Russian", Record.RussianName),
              Text("--english", "E", "what it is called in English", Record.EnglishName),
              Text("--native", "N", "what it is called in the language itself", Record.NativeName),
              TSharedOptions::OverwriteTextsOption(FJob.Policies), TSharedOptions::DryRunOption(FJob.Policies)}},
            Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    if (!SayDryRun(Session, FJob))
      Session.Say(LText(FJob.WasThere() ? "M_Velkrund_Cli_LanguageIs" : "M_Velkrund_Cli_LanguageAdded",
                        OnOneLine(FJob.Found().Name), OnOneLine(FJob.Found().Record.RussianName),
                        OnOneLine(FJob.Found().Record.EnglishName), OnOneLine(FJob.Found().Record.NativeName))
                      .Local());
    return ExitDone;
  }

 private:
  TJobAddLanguageInterface FInterface;
  TJobAddLanguage& FJob = FInterface.Job();
};

class TRemove final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return RemoveTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(Text("NAME", "NAME", "the language's name, in any case", FJob.LanguageName))}},
            {"Options", {Shared.DatabaseOption(), TSharedOptions::DryRunOption(FJob.Policies)}},
            Shared.General()};
  }
  int Run(TSession& Session) override {
    RunJob(Session, FInterface);
    if (!SayDryRun(Session, FJob))
      Session.Say(LCounted("M_Velkrund_Cli_LanguageRemoved", FJob.Found().Texts, OnOneLine(FJob.Found().Name),
                           FJob.Found().Texts)
                      .Local());
    return ExitDone;
  }

 private:
  TJobRemoveLanguageInterface FInterface;
  TJobRemoveLanguage& FJob = FInterface.Job();
};

}  // namespace

std::unique_ptr<TCommand> MakeLanguagesList() { return std::make_unique<TList>(); }
std::unique_ptr<TCommand> MakeLanguagesAdd() { return std::make_unique<TAdd>(); }
std::unique_ptr<TCommand> MakeLanguagesRemove() { return std::make_unique<TRemove>(); }

}  // namespace velkrund
