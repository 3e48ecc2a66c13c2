#include <algorithm>
#include <set>

#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/files/FileOpening.h"
#include "jobs/files/SectionRemoval.h"
#include "jobs/report/Json.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts FileRemoveTexts = {
    "file",
    "remove",
    "takes sections out of an export/import file",
    "FILE (INDEX... | --name NAME...)",
    "Everything else in the file stays as it is, byte for byte. The work is done on a copy in the same folder, which "
    "then takes the file's place: whatever happens, the old file is there or the new one. A run that is killed can "
    "leave "
    "the copy, FILE.velkrund-new; the next one that writes the file removes it. Indexes are those of file list.",
    {{"file remove orders.eif 0 3", "the first section and the fourth"},
     {"file remove orders.eif --name ORDERS", "by name; several of that name need --yes"}}};

class TFileRemove final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileRemoveTexts; }
  std::vector<TOptionGroup> Options() override {
    return {
        {"Arguments",
         {Required(Text("FILE", "FILE", "the file", FFile)), List("INDEX", "INDEX", "a section's index", FIndexes)}},
        {"Options", {List("--name", "NAME", "a section's name", FNames)}},
        Shared.General()};
  }
  void CheckOptions() override;
  TApplicationOptions ApplicationOptions() const override {
    TApplicationOptions Result = TCommand::ApplicationOptions();
    Result.StrictText = false;  // texts are not touched
    return Result;
  }
  int Run(TSession& Session) override;

 private:
  std::set<int> Chosen(const TSession& Session, const TEISectionList& Sections) const;

  std::string FFile;
  std::vector<std::string> FIndexes, FNames;
};

void TFileRemove::CheckOptions() {
  if (FIndexes.empty() && FNames.empty()) throw EUsage("say which sections: INDEX or --name NAME");
  const auto IsDigit = [](char C) { return C >= '0' && C <= '9'; };
  for (const std::string& Index : FIndexes)
    if (!std::all_of(Index.begin(), Index.end(), IsDigit))
      throw EUsage(Format("'%s' is no index; sections are named with --name", Index));
  if (IsPipe(FFile)) throw EUsage(Format("'%s' is a pipe: there is nothing to take a section out of", FFile));
}

std::set<int> TFileRemove::Chosen(const TSession& Session, const TEISectionList& Sections) const {
  std::set<int> Result;
  for (const std::string& Index : FIndexes) Result.insert(TheSection(Sections, Index, FFile));
  for (const std::string& Name : FNames) {
    const std::vector<int> Found = SectionsNamed(Sections, Name);
    if (Found.size() > 1 && !Shared.Yes) {
      std::vector<std::string> Texts;
      for (const int Index : Found) Texts.push_back(SectionText(Sections, Index));
      const TQuestion Question{Format("'%s' has several of that name: %s. Remove all of them?", FFile, Joined(Texts)),
                               {TAnswer::Yes, TAnswer::Cancel},
                               "--yes, or choose by index"};
      if (Session.Answers.Ask(Question) != TAnswer::Yes) throw EAbort("Cancelled at a question");
    }
    if (Found.empty()) TheSection(Sections, Name, FFile);
    Result.insert(Found.begin(), Found.end());
  }
  return Result;
}

int TFileRemove::Run(TSession& Session) {
  TEIFile File(Session.Files());
  File.SetFileName(FFile);
  OpenPlainly(File);
  const std::set<int> Indexes = Chosen(Session, File.Sections());
  TJson Removed = TJson::array();
  std::string Text;
  for (const int Index : Indexes) {
    const TEISection& Section = File.Sections()[Index];
    Removed.push_back({{"index", Index}, {"name", Section.Name()}, {"type", Section.TypeName()}});
    Text += Format("removed %s\n", SectionText(File.Sections(), Index));
  }
  const int Left = File.Sections().Count() - static_cast<int>(Indexes.size());
  RemoveSections(Session.Files(), File, {Indexes.begin(), Indexes.end()}, &TInterrupt::Requested);
  if (Shared.Json) Session.Console.Result(JsonText({{"file", FFile}, {"removed", Removed}, {"sectionsLeft", Left}}));
  Session.Console.Message(Text + Counted(Left, "section") + " left");
  return ExitDone;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileRemove() { return std::make_unique<TFileRemove>(); }

}  // namespace velkrund
