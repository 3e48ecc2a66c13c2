#include <iterator>

#include "hosts/cli/Errors.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/sections/ListSections.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts FileListTexts = {
    "file",
    "list",
    "lists the sections of an export/import file",
    "FILE",
    "Reads the headers only and takes no lock. Position is where a section's header begins, size the length of its "
    "body, both in bytes. Of a faulty file the sections before the fault are listed; sections that no reader sees are "
    "an "
    "error too.",
    {{"file list orders.eif", "a table for people"}, {"file list orders.eif --json", "the same for programs"}}};

std::string TextOf(const std::vector<TListedSection>& Sections) {
  std::vector<std::vector<std::string>> Rows = {
      {"INDEX", "NAME", "TYPE", "VERSION", "ENCODING", "POSITION", "SIZE", "PARAMETERS"}};
  Rows.reserve(Sections.size() + 1);
  for (std::size_t Index = 0; Index < Sections.size(); ++Index) {
    const TListedSection& Section = Sections[Index];
    std::vector<std::string> Parameters;
    for (const auto& [Name, Value] : Section.Parameters)
      Parameters.push_back(Printable(Name).append(1, '=').append(Printable(Value)));
    std::string Cells[] = {std::to_string(Index),
                           Printable(Section.Name),
                           Section.Type,
                           std::to_string(Section.Version),
                           EncodingText(Section.Encoding),
                           std::to_string(Section.Position),
                           std::to_string(Section.Size),
                           Joined(Parameters)};
    Rows.emplace_back(std::make_move_iterator(std::begin(Cells)), std::make_move_iterator(std::end(Cells)));
  }
  return ColumnsText(Rows, {true, false, false, true, false, true, true, false});
}

class TFileList final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileListTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(Text("FILE", "FILE", "the file; - is standard input", FJob.FileName))}},
            Shared.General()};
  }
  bool ReadsStandardInput() const override { return FJob.FileName == "-"; }
  int Run(TSession& Session) override;

 private:
  TJobListSectionsInterface FInterface;
  TJobListSections& FJob = FInterface.Job();
};

int TFileList::Run(TSession& Session) {
  RunJob(Session, FInterface);
  if (!Session.Json()) Session.Console.Result(TextOf(FJob.Found()));
  if (FJob.HasMalformed())
    Session.Console.Message(LText("M_Velkrund_Jobs_Warning", LText("M_Velkrund_Jobs_MalformedShown")).Local());
  if (FJob.HeaderFault()) SayError(Session, FactsOf(FJob.HeaderFault()));
  return static_cast<int>(FJob.End());
}

}  // namespace

std::unique_ptr<TCommand> MakeFileList() { return std::make_unique<TFileList>(); }

}  // namespace velkrund
