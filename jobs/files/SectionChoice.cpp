#include "jobs/files/SectionChoice.h"

#include <algorithm>
#include <unordered_set>

#include "velkrund/dictionary/QueryData.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {

namespace {

/// What a file holds, for messages.
std::string ContentText(const TEISectionList& Sections) {
  if (Sections.Count() == 0) return "it holds no section";
  std::vector<std::string> Texts;
  for (int Index = 0; Index < Sections.Count(); ++Index) Texts.push_back(SectionText(Sections, Index));
  return "it holds " + JoinedInShort(std::move(Texts));
}

/// In messages behind "without".
TLText LContentText(const TSectionChoice& Choice) {
  switch (Choice.Role) {
    case TSectionRole::TableData:
      return LText("M_Velkrund_Jobs_TableData");
    case TSectionRole::QueryData:
      return LText("M_Velkrund_Jobs_QueryData");
    case TSectionRole::GeneratorData:
      return LText("M_Velkrund_Jobs_GeneratorData");
    case TSectionRole::Structure:
      return LText("M_Velkrund_Jobs_Structure");
    case TSectionRole::Resource:
      return LText("M_Velkrund_Jobs_Resource");
    case TSectionRole::Language:
      return LText("M_Velkrund_Jobs_Language");
    default:
      return Choice.Content;
  }
}

}  // namespace

bool IsTableData(const TEISection& Section) { return Section.ObjectClass.Role() == TSectionRole::TableData; }

std::string SectionText(const TEISectionList& Sections, int Index) {
  const TEISection& Section = Sections[Index];
  return Format("section %d '%s' (%s)", Index, Section.Name(), Section.TypeName());
}

TLText LSectionText(const TEISectionList& Sections, int Index) {
  const TEISection& Section = Sections[Index];
  return LText("M_Velkrund_Jobs_SectionText", Index, Section.Name(), Section.TypeName());
}

TSectionNames::TSectionNames(const TEISectionList& Sections)
    : FSections(Sections), FNext(static_cast<std::size_t>(Sections.Count()), -1) {
  const auto Name = [this](int Index) { return NameAt(Index); };
  std::vector<int> Last(FNext.size());
  for (int Index = 0; Index < Sections.Count(); ++Index) {
    const auto First = static_cast<std::size_t>(FFirst.Add(Index, Name));
    if (First != static_cast<std::size_t>(Index)) FNext[static_cast<std::size_t>(Last[First])] = Index;
    Last[First] = Index;
  }
}

std::vector<int> TSectionNames::Named(const std::string& Name) const {
  std::vector<int> Result;
  for (int Index = FFirst.Find(Name, [this](int Place) { return NameAt(Place); }); Index >= 0;
       Index = FNext[static_cast<std::size_t>(Index)])
    Result.push_back(Index);
  return Result;
}

int TheSection(const TSectionNames& Names, const std::string& Text, const std::string& FileName) {
  const TEISectionList& Sections = Names.Sections();
  const bool IsNumber = std::all_of(Text.begin(), Text.end(), [](char C) { return C >= '0' && C <= '9'; });
  if (IsNumber) {
    const std::optional<std::int32_t> Index = StrToInt32(Text);
    if (Index && *Index < Sections.Count()) return *Index;
    throw EEIError(Format("'%s' has no section with the index %s: %s", FileName, Text, ContentText(Sections)),
                   {.Code = TErrorCode::SectionMissing, .File = FileName, .Section = Text});
  }
  const std::vector<int> Found = Names.Named(Text);
  if (Found.size() == 1) return Found.front();
  if (Found.empty()) {
    std::vector<std::string> Known;
    for (int Index = 0; Index < Sections.Count(); ++Index) Known.push_back(Sections[Index].Name());
    throw EEIError(
        Format("'%s' has no section '%s': %s%s", FileName, Text, ContentText(Sections), NearestHint(Text, Known)),
        {.Code = TErrorCode::SectionMissing, .File = FileName, .Section = Text});
  }
  std::vector<std::string> Texts;
  for (const int Index : Found) Texts.push_back(SectionText(Sections, Index));
  throw EEIError(Format("'%s' has several sections of that name, choose by index: %s", FileName, Joined(Texts)));
}

std::vector<int> ChosenSections(const TEISectionList& Sections, const TSectionChoice& Choice,
                                std::vector<TLText>& Notes) {
  const auto Fits = [&](int Index) { return Sections[Index].ObjectClass.Role() == Choice.Role; };
  std::vector<int> Result;
  std::unordered_set<int> Seen;
  const TSectionNames Names(Sections);
  for (const std::string& Text : Choice.Texts) {
    const int Index = TheSection(Names, Text, Choice.FileName);
    if (!Fits(Index))
      throw EEIError(Format("In '%s' %s holds no %s", Choice.FileName, SectionText(Sections, Index), Choice.Content));
    if (Seen.insert(Index).second) Result.push_back(Index);
  }
  std::vector<TLText> Others;
  for (int Index = 0; Choice.Texts.empty() && Index < Sections.Count(); ++Index) {
    if (Fits(Index))
      Result.push_back(Index);
    else
      Others.push_back(LSectionText(Sections, Index));
  }
  if (Result.empty())
    throw EEIError(Format("'%s' holds no %s section: %s", Choice.FileName, Choice.Content, ContentText(Sections)),
                   {.Code = TErrorCode::SectionMissing, .File = Choice.FileName});
  if (!Others.empty()) {
    const auto Count = static_cast<std::int64_t>(Others.size());
    Notes.push_back(LCounted("M_Velkrund_Jobs_OtherSections", Count, Count, Choice.FileName, LContentText(Choice),
                             LJoinedInShort(Others)));
  }
  return Result;
}

std::string TableOf(const TEISection& Section) {
  const auto Name = Section.FindParam("TableName");
  return Name ? *Name : std::string();
}

std::string QueryTextOf(TEISource& Source, int Index) {
  return dynamic_cast<TEICommonQueryData&>(*Source.CreateEIObject(Index)).QueryText;
}

std::optional<std::vector<std::string>> FieldsOf(TEISource& Source, int Index) {
  const TEISection& Section = Source.Sections()[Index];
  Source.Stream().SetPosition(Section.DataPosition);
  TEIStream Body(Source.Stream(), Section.DataSize);
  Body.SetEncoding(Section.Encoding());
  Body.SetStrictText(Source.StrictText());
  try {
    return dynamic_cast<TEIRecordData&>(*Source.CreateEIObject(Index)).ReadFieldNames(Body);
  } catch (const Exception&) {
    return std::nullopt;
  }
}

}  // namespace velkrund
