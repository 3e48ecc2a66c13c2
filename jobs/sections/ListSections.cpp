#include "jobs/sections/ListSections.h"

#include "jobs/files/FileKind.h"
#include "jobs/files/InputFile.h"
#include "jobs/files/StrayMarkers.h"

namespace velkrund {

namespace {

using TThis = TJobListSections;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::FileName>("FileName", "the file; - is standard input"),
    ReadOnlyOf<[](const TThis& Job) { return Job.Found().Count(); }>("Sections", "sections that the last run found"),
};

TDocument DocumentOf(const TEISection& Section, std::size_t Index) {
  TDocument Parameters;
  for (int I = 0; I < Section.ParamCount(); ++I)
    Parameters.Append(Section.ParamName(I), Section.FParameters.ParamValues(I));
  TDocument Result;
  Result.Set("index", Index).Set("name", Section.Name()).Set("type", Section.TypeName());
  Result.Set("version", Section.Version()).Set("encoding", EncodingText(Section.Encoding()));
  Result.Set("parameters", std::move(Parameters)).Set("position", Section.Position);
  Result.Set("dataPosition", Section.DataPosition).Set("size", Section.DataSize);
  return Result;
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobListSections");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobListSectionsInterface", {&JobProperties, Properties});

const char* EncodingText(TKvEncoding Encoding) { return Encoding == TKvEncoding::Utf8 ? "utf8" : "ansi"; }

void TJobListSections::Forget() {
  FFound.Clear();
  FSize = 0;
  FUnfinished = -1;
  FHasMalformed = false;
  FFault = nullptr;
}

void TJobListSections::Run() {
  TInputFile Input(Files(), FileName, Canceled());
  Input.File().SetStrictText(false);  // a damaged name is to be seen, not to be refused
  FFile = Input.Name();
  try {
    Input.Open();
  } catch (const EEIError&) {
    if (Input.File().Sections().Count() == 0) throw;
    FFault = std::current_exception();
  }
  RefuseForeignFile(Input.File(), Input.Name());
  try {
    RefuseHiddenSections(Input.File(), Input.Name());
  } catch (const EEIError&) {
    if (!FFault) FFault = std::current_exception();
  }
  FFound = Input.File().TakeSections();
  FSize = Input.File().Stream().Size();
  FUnfinished = Input.File().UnfinishedPosition();
  FHasMalformed = Input.File().Losses().Any();
}

void TJobListSections::Describe(TDocument& Document) const {
  Document.Set("file", FFile).Set("size", FSize);
  Document.Set("sections", TElements{static_cast<std::size_t>(FFound.Count()), [this](std::size_t Index) {
                                       return DocumentOf(FFound[static_cast<int>(Index)], Index);
                                     }});
  if (FUnfinished >= 0) {
    TDocument Unfinished;
    Unfinished.Set("position", FUnfinished).Set("size", UnfinishedBytes());
    Document.Set("unfinished", std::move(Unfinished));
  }
  std::vector<std::string> Notes;
  if (FHasMalformed) Notes.push_back(LText("M_Velkrund_Jobs_MalformedShown").English());
  Document.Set("notes", Notes);
}

}  // namespace velkrund
