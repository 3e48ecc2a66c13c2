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
    "an error too. An end that an export has not finished, since it was killed or is still at work, is named.",
    {{"file list orders.eif", "a table for people"}, {"file list orders.eif --json", "the same for programs"}}};

std::vector<std::string> CellsOf(const TEISection& Section, int Index) {
  std::vector<std::string> Parameters;
  for (int I = 0; I < Section.ParamCount(); ++I)
    Parameters.push_back(OnOneLine(Section.ParamName(I)) + "=" + OnOneLine(Section.FParameters.ParamValues(I)));
  return {std::to_string(Index),
          OnOneLine(Section.Name()),
          std::string(Section.TypeName()),
          std::to_string(Section.Version()),
          EncodingText(Section.Encoding()),
          std::to_string(Section.Position),
          std::to_string(Section.DataSize),
          Joined(Parameters)};
}

/// A file may have a million sections: their lines are not kept.
void Write(const TEISectionList& Sections, TConsole& Console) {
  const std::vector<std::string> Head = {"INDEX",    "NAME",     "TYPE", "VERSION",
                                         "ENCODING", "POSITION", "SIZE", "PARAMETERS"};
  WriteColumns(
      static_cast<std::size_t>(Sections.Count()) + 1,
      [&](std::size_t Number) {
        const int Index = static_cast<int>(Number) - 1;
        return Index < 0 ? Head : CellsOf(Sections[Index], Index);
      },
      {true, false, false, true, false, true, true, false},
      [&Console](std::string_view Piece) { Console.Result(Piece); });
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
  if (!Session.Json()) Write(FJob.Found(), Session.Console);
  if (FJob.HasMalformed())
    Session.Console.Message(LText("M_Velkrund_Jobs_Warning", LText("M_Velkrund_Jobs_MalformedShown")).Local());
  if (const std::int64_t Bytes = FJob.UnfinishedBytes(); Bytes > 0)
    Session.Console.Message(LText("M_Velkrund_Jobs_Warning",
                                  LCounted("M_Velkrund_Cli_UnfinishedAtEnd", Bytes, FJob.UnfinishedPosition(), Bytes))
                                .Local());
  if (FJob.HeaderFault()) SayError(Session, FactsOf(FJob.HeaderFault()));
  return static_cast<int>(FJob.End());
}

}  // namespace

std::unique_ptr<TCommand> MakeFileList() { return std::make_unique<TFileList>(); }

}  // namespace velkrund
