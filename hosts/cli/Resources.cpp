#include "hosts/cli/RunJob.h"
#include "hosts/cli/TextInput.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/resources/StoredStrings.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts ListTexts = {
    "resources",
    "list",
    "lists the resources of a database, or the strings of one",
    "-d DB [--section-id ID] [--languages A,B]",
    "A resource is a section of strings. Texts are shown on one line each, control characters visible; --json has "
    "them as they are.",
    {{"resources list -d sqlite:shop.db", "the resources, with the numbers of strings and texts"},
     {"resources list -d shop --section-id K_CLIENTS --languages Russian", "the strings of one, in one language"}}};

const TCommandTexts GetTexts = {
    "resources",
    "get",
    "shows the texts of a localized string",
    "-d DB STRING-ID [LANGUAGE]",
    "With a language the text alone, as it is, with a line end behind it; otherwise a line for each language that the "
    "string has a text in.",
    {{"resources get -d sqlite:shop.db K_CLIENTS_Caption Russian", "one text"}}};

const TCommandTexts SetTexts = {
    "resources",
    "set",
    "writes one text of a localized string",
    "-d DB STRING-ID LANGUAGE TEXT",
    "What is there is replaced, and told. A new string goes into the section that --section-id names, else the longest "
    "one there is whose ID its own begins with, else the one that is what stands before its last \"_\".",
    {{"resources set -d sqlite:shop.db K_CLIENTS_Caption English Clients", "one text"},
     {"resources set -d shop K_CLIENTS_Help English --file help.txt", "a long one, from a file"}}};

class TList final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ListTexts; }
  std::vector<TOptionGroup> Options() override {
    return {
        {"Options",
         {Shared.DatabaseOption(), Text("--section-id", "ID", "the resource whose strings are listed", FJob.SectionID),
          TSharedOptions::LanguagesOption(FJob.Languages, "the database")}},
        Shared.General()};
  }
  int Run(TSession& Session) override;

 private:
  std::string SectionsText() const;
  std::string StringsText() const;

  TJobListResourcesInterface FInterface;
  TJobListResources& FJob = FInterface.Job();
};

std::string TList::SectionsText() const {
  if (FJob.Sections().empty()) return "no resources\n";
  std::vector<std::vector<std::string>> Rows = {{"RESOURCE", "STRINGS", "TEXTS"}};
  for (const TLSectionInfo& Section : FJob.Sections())
    Rows.push_back({OnOneLine(Section.SectionID), std::to_string(Section.Strings), std::to_string(Section.Texts)});
  return ColumnsText(Rows, {false, true, true});
}

std::string TList::StringsText() const {
  std::vector<std::vector<std::string>> Rows = {{"STRING", "LANGUAGE", "TEXT"}};
  for (const TStoredString& String : FJob.Strings())
    for (const TStoredString::TText& Text : String.Texts)
      Rows.push_back({OnOneLine(String.StringID), OnOneLine(Text.Language), OnOneLine(Text.Text)});
  return ColumnsText(Rows, {false, false, false});
}

int TList::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (!Session.Json()) Session.Console.Result(FJob.SectionID.empty() ? SectionsText() : StringsText());
  return ExitDone;
}

class TGet final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return GetTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments",
             {Required(Text("STRING-ID", "STRING-ID", "the string's whole ID, in any case", FJob.StringID)),
              Text("LANGUAGE", "LANGUAGE", "the language of the text", FJob.Language)}},
            {"Options", {Shared.DatabaseOption()}},
            Shared.General()};
  }
  int Run(TSession& Session) override;

 private:
  TJobGetStringInterface FInterface;
  TJobGetString& FJob = FInterface.Job();
};

int TGet::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (Session.Json()) return ExitDone;
  std::vector<std::vector<std::string>> Rows;
  for (const TStoredString::TText& Text : FJob.Found().Texts)
    Rows.push_back({OnOneLine(Text.Language), OnOneLine(Text.Text)});
  Session.Console.Result(FJob.Language.empty() ? ColumnsText(Rows, {false, false})
                                               : FJob.Found().Texts.front().Text + "\n");
  return ExitDone;
}

class TSet final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return SetTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool ReadsStandardInput() const override { return FFile == "-"; }
  int Run(TSession& Session) override;

 private:
  TJobSetStringInterface FInterface;
  TJobSetString& FJob = FInterface.Job();
  std::vector<std::string> FTexts;
  std::string FFile;
};

std::vector<TOptionGroup> TSet::Options() {
  return {{"Arguments",
           {Required(Text("STRING-ID", "STRING-ID", "the string's whole ID", FJob.StringID)),
            Required(Text("LANGUAGE", "LANGUAGE", "the language of the text", FJob.Language)),
            MayBeEmpty(List("TEXT", "TEXT", "the text; '' is an empty one", FTexts))}},
          {"Options",
           {Shared.DatabaseOption(),
            Text("--file", "FILE", "take the text from a file, as it is; - is standard input", FFile),
            Text("--section-id", "ID", "the resource of a new string", FJob.SectionID),
            TSharedOptions::DryRunOption(FJob.Policies)}},
          Shared.General()};
}

void TSet::CheckOptions() {
  if (FTexts.size() + (FFile.empty() ? 0 : 1) != 1)
    throw EUsage("say one text: as an argument, in quotes where it has blanks, or with --file FILE");
  FJob.CheckSettings();
}

int TSet::Run(TSession& Session) {
  FJob.Text = FFile.empty() ? FTexts.front() : ReadWholeText(FFile, "the text");
  RunJob(Session, FInterface);
  if (SayDryRun(Session, FJob)) return ExitDone;
  const std::string ID = OnOneLine(FJob.Found().StringID), Section = OnOneLine(FJob.Found().SectionID),
                    Language = OnOneLine(FJob.Found().Texts.front().Language);
  if (!FJob.Before())
    Session.Say(LText("M_Velkrund_Cli_TextAdded", ID, Section, Language).Local());
  else if (*FJob.Before() == FJob.Text)
    Session.Say(LText("M_Velkrund_Cli_TextAsItWas", ID, Section, Language).Local());
  else
    Session.Say(
        LText("M_Velkrund_Cli_TextChanged", ID, Section, Language, OnOneLine(Shortened(*FJob.Before()))).Local());
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeResourcesList() { return std::make_unique<TList>(); }
std::unique_ptr<TCommand> MakeResourcesGet() { return std::make_unique<TGet>(); }
std::unique_ptr<TCommand> MakeResourcesSet() { return std::make_unique<TSet>(); }

}  // namespace velkrund
