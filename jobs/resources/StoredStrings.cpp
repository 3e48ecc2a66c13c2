#include "jobs/resources/StoredStrings.h"

#include "jobs/resources/ResourceNames.h"
#include "jobs/resources/ResourceSearch.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

using TList = TJobListResources;
using TGet = TJobGetString;
using TSet = TJobSetString;

constexpr TProperty ListProperties[] = {
    PropertyOf<&TList::SectionID>("SectionID", "the section whose strings are listed; empty: the sections"),
    PropertyOf<&TList::Languages>("Languages", "of the texts of strings; empty: all"),
    ReadOnlyOf<[](const TList& Job) { return static_cast<std::int64_t>(Job.Sections().size()); }>(
        "Sections", "sections that the last run found"),
};

constexpr TProperty GetProperties[] = {
    PropertyOf<&TGet::StringID>("StringID", "the string's whole ID, in any case"),
    PropertyOf<&TGet::Language>("Language", "the language of the text; empty: all that it has"),
};

constexpr TProperty SetProperties[] = {
    PropertyOf<&TSet::StringID>("StringID", "the string's whole ID"),
    PropertyOf<&TSet::Language>("Language", "the language of the text"),
    PropertyOf<&TSet::Text>("Text", "the text; may be empty"),
    PropertyOf<&TSet::SectionID>("SectionID", "of a new string; empty: as its ID says"),
    TPolicyRows::DryRun,
};

TDocument StringDocument(const TStoredString& String) {
  TDocument Texts = TDocument::List();
  for (const TStoredString::TText& Text : String.Texts) {
    TDocument One;
    One.Set("language", Text.Language).Set("text", Text.Text);
    Texts.Add(std::move(One));
  }
  TDocument Result;
  Result.Set("id", String.StringID).Set("resource", String.SectionID).Set("texts", std::move(Texts));
  return Result;
}

/// Of a string that is there.
TStoredString StringOf(const std::string& DatabaseName, const std::string& StringID, const TStringList& Languages) {
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  TStoredString Result{StringID, Table.SectionOf(StringID).value_or(""), {}};
  for (const std::string& Language : Languages)
    if (std::string Text = Table.GetString(StringID, Language); Text != AbsentText)
      Result.Texts.push_back({Language, std::move(Text)});
  return Result;
}

/// What the ID says behind that of its section.
std::string_view NameIn(std::string_view StringID, std::string_view SectionID) {
  return StringID.size() <= SectionID.size() ? std::string_view() : StringID.substr(SectionID.size() + 1);
}

}  // namespace

constinit const TUtilOperationDescriptor TList::Descriptor = OperationDescriptor<TList>("TJobListResources");
constinit const TInterfaceDescriptor TList::Interface =
    TJobInterface<TList>::Describe("TJobListResourcesInterface", {&JobProperties, ListProperties});
constinit const TUtilOperationDescriptor TGet::Descriptor = OperationDescriptor<TGet>("TJobGetString");
constinit const TInterfaceDescriptor TGet::Interface =
    TJobInterface<TGet>::Describe("TJobGetStringInterface", {&JobProperties, GetProperties});
constinit const TUtilOperationDescriptor TSet::Descriptor = OperationDescriptor<TSet>("TJobSetString");
constinit const TInterfaceDescriptor TSet::Interface =
    TJobInterface<TSet>::Describe("TJobSetStringInterface", {&JobProperties, SetProperties});

void TJobListResources::Run() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  const TResourceSearch Search(DatabaseName, DatabaseText());
  if (SectionID.empty())
    FSections = Search.All();
  else
    FSections = {Search.Find(SectionID)};
  const TStringList Listed = LanguagesOf(DatabaseName, DatabaseText(), Languages);
  if (SectionID.empty()) return;
  const auto Texts = LContainer().GetLocalizatorTable(DatabaseName).ReadSection(FSections[0].SectionID, Listed);
  while (Texts->Next()) {
    if (IsCanceled()) throw EAbort("cancelled");
    TStoredString& String =
        FStrings.emplace_back(TStoredString{StringIDOf(FSections[0].SectionID, Texts->Name()), FSections[0].SectionID});
    for (int Index = 0; Index < Listed.Count(); ++Index)
      if (const auto Text = Texts->Text(Index)) String.Texts.push_back({Listed[Index], std::string(*Text)});
  }
}

void TJobListResources::Describe(TDocument& Document) const {
  TDocument Sections = TDocument::List(), Strings = TDocument::List();
  for (const TLSectionInfo& Section : FSections) {
    TDocument One;
    One.Set("id", Section.SectionID).Set("strings", Section.Strings).Set("texts", Section.Texts);
    Sections.Add(std::move(One));
  }
  Document.Set("database", DatabaseText()).Set("resources", std::move(Sections));
  for (const TStoredString& String : FStrings) Strings.Add(StringDocument(String));
  if (!SectionID.empty()) Document.Set("strings", std::move(Strings));
}

void TJobGetString::Run() {
  const TReadTransaction Moment(Manager().Databases(), DatabaseName);
  const TStringList Languages =
      LanguagesOf(DatabaseName, DatabaseText(), Language.empty() ? std::vector<std::string>{} : std::vector{Language});
  if (!LContainer().GetLocalizatorTable(DatabaseName).SectionOf(StringID))
    throw EStringMissing(Format("There is no string '%s' in the database %s", OnOneLine(StringID), DatabaseText()));
  FFound = StringOf(DatabaseName, StringID, Languages);
  if (FFound.Texts.empty() && !Language.empty())
    throw EStringMissing(Format("The string '%s' has no text in %s", OnOneLine(StringID), Languages[0]));
}

void TJobGetString::Describe(TDocument& Document) const {
  Document.Set("database", DatabaseText()).Set("string", StringDocument(FFound));
}

void TJobSetString::CheckSettings() const {
  Require(StringID, "StringID");
  Require(Language, "Language");
  RequireKept(TResourceName::String, StringID);
  if (SectionID.empty()) return;
  const std::string Section(SectionWithoutSeparator(SectionID));
  RequireKept(TResourceName::Section, Section);
  if (!SameText(StringID, Section) && !LowerCase(StringID).starts_with(LowerCase(Section) + "_"))
    throw ESettingsError(Format("The ID '%s' does not begin with that of the section, '%s_' (%s)", OnOneLine(StringID),
                                OnOneLine(Section), Setting("SectionID")));
}

void TJobSetString::Forget() {
  FFound = {};
  FBefore.reset();
  ForgetPlan();
}

void TJobSetString::Run() {
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  const std::string Stored = LanguagesOf(DatabaseName, DatabaseText(), {Language})[0];
  TTransaction Transaction(DatabaseName, TIsolationLevel::ReadCommitted);
  if (std::string There = Table.GetString(StringID, Stored); There != AbsentText) FBefore = std::move(There);
  if (SectionID.empty()) {
    Table.WriteString(StringID, Stored, Text);
  } else {
    Table.Lock(SectionID, Stored);
    Table.WriteString(StringID, Stored, Text);
    Table.UnLock(SectionID, Stored);
  }
  FFound = {StringID, Table.SectionOf(StringID).value_or(""), {{Stored, Text}}};
  RequireKept(TResourceName::Section, FFound.SectionID);
  const std::string_view Name = NameIn(StringID, FFound.SectionID);
  if (!Name.empty()) RequireKept(TResourceName::String, std::string(Name));
  AddToPlan({Format(FBefore ? "replace the text of '%s' in %s" : "add a text of '%s' in %s", OnOneLine(StringID),
                    OnOneLine(Stored))});
  // What the string would belong to is known for certain when it is written.
  if (!Policies.DryRun) Transaction.Commit();
}

void TJobSetString::Describe(TDocument& Document) const {
  Document.Set("database", DatabaseText()).Set("string", StringDocument(FFound));
  Document.Set("before", FBefore);
}

}  // namespace velkrund
