#include "hosts/cli/ExitCodes.h"
#include "hosts/cli/InputFile.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/report/Json.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

const TCommandTexts FileListTexts = {
    "file",
    "list",
    "lists the sections of an export/import file",
    "FILE",
    "Reads the headers only and takes no lock. Position is where a section's header begins, size the length of its "
    "body, both in bytes. Of a faulty file the sections before the fault are listed.",
    {{"file list orders.eif", "a table for people"}, {"file list orders.eif --json", "the same for programs"}}};

std::string EncodingText(TKvEncoding Encoding) { return Encoding == TKvEncoding::Utf8 ? "utf8" : "ansi"; }

class TFileList final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileListTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(Text("FILE", "FILE", "the file; - is standard input", FFile))}}, Shared.General()};
  }
  TApplicationOptions ApplicationOptions() const override {
    TApplicationOptions Result = TCommand::ApplicationOptions();
    Result.StrictText = false;  // a damaged name is to be seen, not to be refused
    return Result;
  }
  bool ReadsStandardInput() const override { return FFile == "-"; }
  int Run(TSession& Session) override;

 private:
  std::string TextOf(TEIFile& File) const;
  TJson JsonOf(TEIFile& File, const std::string& Error) const;

  std::string FFile;
};

std::string TFileList::TextOf(TEIFile& File) const {
  std::vector<std::vector<std::string>> Rows = {
      {"INDEX", "NAME", "TYPE", "VERSION", "ENCODING", "POSITION", "SIZE", "PARAMETERS"}};
  const TEISectionList& Sections = File.Sections();
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    const TEISection& Section = Sections[Index];
    std::vector<std::string> Parameters;
    for (int I = 0; I < Section.ParamCount(); ++I)
      Parameters.push_back(Printable(Section.ParamName(I) + "=" + Section.FParameters.ParamValues(I)));
    Rows.push_back({std::to_string(Index), Printable(Section.Name()), std::string(Section.TypeName()),
                    std::to_string(Section.Version()), EncodingText(Section.Encoding()),
                    std::to_string(Section.Position), std::to_string(Section.DataSize), Joined(Parameters)});
  }
  return ColumnsText(Rows, {true, false, false, true, false, true, true, false});
}

TJson TFileList::JsonOf(TEIFile& File, const std::string& Error) const {
  TJson Result;
  Result["file"] = FFile;
  Result["size"] = File.Stream().Size();
  Result["sections"] = TJson::array();
  const TEISectionList& Sections = File.Sections();
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    const TEISection& Section = Sections[Index];
    TJson Entry;
    Entry["index"] = Index;
    Entry["name"] = Section.Name();
    Entry["type"] = Section.TypeName();
    Entry["version"] = Section.Version();
    Entry["encoding"] = EncodingText(Section.Encoding());
    Entry["parameters"] = TJson::object();
    for (int I = 0; I < Section.ParamCount(); ++I)
      Entry["parameters"][Section.ParamName(I)] = Section.FParameters.ParamValues(I);
    Entry["position"] = Section.Position;
    Entry["dataPosition"] = Section.DataPosition;
    Entry["size"] = Section.DataSize;
    Result["sections"].push_back(std::move(Entry));
  }
  if (!Error.empty()) Result["error"] = Error;
  return Result;
}

int TFileList::Run(TSession& Session) {
  TInputFile Input(Session, FFile);
  std::string Error;
  try {
    Input.Open();
  } catch (const EEIError& Failure) {
    Error = Failure.what();
    if (Input.File().Sections().Count() == 0) throw;
  }
  Session.Console.Result(Shared.Json ? JsonText(JsonOf(Input.File(), Error)) : TextOf(Input.File()));
  if (Input.File().Losses().Any())
    Session.Console.Message("warning: headers hold malformed characters, shown as U+FFFD");
  if (Error.empty()) return ExitDone;
  Session.Console.Message("velkrund: " + Error);
  return ExitFailed;
}

}  // namespace

std::unique_ptr<TCommand> MakeFileList() { return std::make_unique<TFileList>(); }

}  // namespace velkrund
