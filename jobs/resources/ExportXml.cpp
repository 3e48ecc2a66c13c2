#include "jobs/resources/ExportXml.h"

#include "jobs/files/WholeFile.h"
#include "jobs/resources/FolderFiles.h"
#include "jobs/resources/ResourceNames.h"
#include "jobs/resources/ResourceSearch.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Wording.h"
#include "velkrund/resources/XMLResources.h"

namespace velkrund {

namespace {

using TThis = TJobExportXml;

constexpr TProperty Properties[] = {
    TPolicyRows::ExistingFiles,
    TPolicyRows::AllowLoss,
    TPolicyRows::DryRun,
    PropertyOf<&TThis::FileName>("FileName", "the file to write; - is standard output"),
    PropertyOf<&TThis::SectionIDs>("SectionIDs", "the sections of strings to save; empty: all of the database"),
    PropertyOf<&TThis::Languages>("Languages", "the languages to save; empty: all of the database"),
};

/// Whether XML takes it as the name of an element. Aliases have no control characters; of the others nearly all do.
bool IsElementName(const std::string& Alias) {
  constexpr std::string_view Never = "!\"#$%&'()*+,/;<=>?@[\\]^`{|}~ ";
  constexpr std::string_view NotFirst = "-.0123456789";
  return !Alias.empty() && Alias.find_first_of(Never) == std::string::npos &&
         NotFirst.find(Alias.front()) == std::string_view::npos;
}

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobExportXml");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobExportXmlInterface", {&JobProperties, Properties});

void TJobExportXml::Run() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  Plan();
  AddToPlan({Format("write %s into '%s'", Joined(FWritten.SectionIDs), FileName)});
  if (Policies.DryRun) return;
  if (!TFolderFiles(Files(), {}, Policies.ExistingFiles).MayWrite(FileName)) {
    FWritten.LeftAlone = true;
    return;
  }
  Write();
}

void TJobExportXml::Plan() {
  const TStringList Found = LanguagesOf(DatabaseName, DatabaseText(), Languages);
  FWritten.Languages = Found.Items();
  if (FWritten.Languages.empty())
    throw EDatabaseError(Format("There are no languages in the database %s", DatabaseText()));
  FWritten.Aliases = LanguageAliases(Found).Items();
  for (std::size_t Index = 0; Index < FWritten.Aliases.size(); ++Index)
    if (!IsElementName(FWritten.Aliases[Index]))
      throw EResourceName(
          Format("The language '%s' gets the alias '%s' in this document, which cannot be the name of an XML element",
                 OnOneLine(FWritten.Languages[Index]), OnOneLine(FWritten.Aliases[Index])),
          {.Code = TErrorCode::Value});
  for (const TLSectionInfo& Section : TResourceSearch(DatabaseName, DatabaseText()).Those(SectionIDs))
    FWritten.SectionIDs.push_back(Section.SectionID);
  if (FWritten.SectionIDs.empty())
    throw EDatabaseError(Format("There are no resources in the database %s", DatabaseText()));
}

void TJobExportXml::Write() {
  const TStringList Sections(FWritten.SectionIDs), OfLanguages(FWritten.Languages);
  TWholeFile Output(Files(), FileName);
  TExportXMLLResourceUtilOperation Operation;
  Operation.Owner = this;
  Operation.DatabaseName = DatabaseName;
  Operation.Stream = &Output.Stream();
  Operation.Sections = &Sections;
  Operation.Languages = &OfLanguages;
  Operation.StrictText = !Policies.AllowLoss;
  Operation.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    ShowPart(Current, Total, Name);
  };
  BeginPart(Output.Name(), "sections");
  const int Result = Operation.Execute();
  EndPart();
  if (Result == 0 || IsCanceled()) throw EAbort("cancelled; nothing was written");
  FWritten.Strings = Operation.Strings();
  FWritten.Texts = Operation.Texts();
  FWritten.CharactersLost = Operation.Losses().Unrepresentable;
  FWritten.Bytes = Output.Stream().Size();
  Output.Finish(Canceled());
}

void TJobExportXml::Describe(TDocument& Document) const {
  TDocument Named = TDocument::List();
  for (std::size_t Index = 0; Index < FWritten.Languages.size(); ++Index) {
    TDocument One;
    One.Set("language", FWritten.Languages[Index]).Set("alias", FWritten.Aliases[Index]);
    Named.Add(std::move(One));
  }
  Document.Set("database", DatabaseText()).Set("file", FileName).Set("state", FWritten.LeftAlone ? "left-out" : "done");
  Document.Set("resources", FWritten.SectionIDs).Set("languages", std::move(Named));
  Document.Set("strings", FWritten.Strings).Set("texts", FWritten.Texts).Set("size", FWritten.Bytes);
  Document.Set("charactersLost", FWritten.CharactersLost);
}

}  // namespace velkrund
