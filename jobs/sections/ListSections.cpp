#include "jobs/sections/ListSections.h"

#include "jobs/files/FileKind.h"
#include "jobs/files/InputFile.h"
#include "jobs/files/StrayMarkers.h"

namespace velkrund {

namespace {

using TThis = TJobListSections;

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::FileName>("FileName", "the file; - is standard input"),
    ReadOnlyOf<[](const TThis& Job) { return static_cast<std::int64_t>(Job.Found().size()); }>(
        "Sections", "sections that the last run found"),
};

TListedSection Listed(const TEISection& Section) {
  TListedSection Result{Section.Name(), std::string(Section.TypeName()), Section.Version(), Section.Encoding()};
  Result.Parameters.reserve(static_cast<std::size_t>(Section.ParamCount()));
  for (int I = 0; I < Section.ParamCount(); ++I)
    Result.Parameters.emplace_back(Section.ParamName(I), Section.FParameters.ParamValues(I));
  Result.Position = Section.Position;
  Result.DataPosition = Section.DataPosition;
  Result.Size = Section.DataSize;
  return Result;
}

TDocument DocumentOf(const TListedSection& Section, std::size_t Index) {
  TDocument Parameters;
  for (const auto& [Name, Value] : Section.Parameters) Parameters.Set(Name, Value);
  TDocument Result;
  Result.Set("index", Index).Set("name", Section.Name).Set("type", Section.Type).Set("version", Section.Version);
  Result.Set("encoding", EncodingText(Section.Encoding)).Set("parameters", std::move(Parameters));
  Result.Set("position", Section.Position).Set("dataPosition", Section.DataPosition).Set("size", Section.Size);
  return Result;
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobListSections");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobListSectionsInterface", {&JobProperties, Properties});

const char* EncodingText(TKvEncoding Encoding) { return Encoding == TKvEncoding::Utf8 ? "utf8" : "ansi"; }

void TJobListSections::Forget() {
  FFound.clear();
  FSize = 0;
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
  const TEISectionList& Sections = Input.File().Sections();
  FFound.reserve(static_cast<std::size_t>(Sections.Count()));
  for (int Index = 0; Index < Sections.Count(); ++Index) FFound.push_back(Listed(Sections[Index]));
  FSize = Input.File().Stream().Size();
  FHasMalformed = Input.File().Losses().Any();
}

void TJobListSections::Describe(TDocument& Document) const {
  TDocument Sections = TDocument::List();
  for (std::size_t Index = 0; Index < FFound.size(); ++Index) Sections.Add(DocumentOf(FFound[Index], Index));
  Document.Set("file", FFile).Set("size", FSize).Set("sections", std::move(Sections));
  std::vector<std::string> Notes;
  if (FHasMalformed) Notes.push_back(LText("M_Velkrund_Jobs_MalformedShown").English());
  Document.Set("notes", Notes);
}

}  // namespace velkrund
