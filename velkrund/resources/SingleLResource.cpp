#include "velkrund/resources/SingleLResource.h"

#include "velkrund/eif/Section.h"
#include "velkrund/platform/localization/LContainer.h"
#include "velkrund/platform/localization/StringIDs.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/resources/LUtilErrors.h"
#include "velkrund/resources/TextLines.h"

namespace velkrund {

namespace {

constexpr const char* SectionParameter = "SectionID";

template <typename TSection>
std::unique_ptr<TEIObject> Make() {
  return std::make_unique<TSection>();
}

/// Text without Beginning, if it begins with that, ignoring case.
std::string_view Without(std::string_view Beginning, std::string_view Text) {
  std::size_t At = 0, Behind = 0;
  while (At < Beginning.size()) {
    if (Behind == Text.size()) return Text;
    if (UpperCase(NextCodePoint(Beginning, At)) != UpperCase(NextCodePoint(Text, Behind))) return Text;
  }
  return Text.substr(Behind);
}

}  // namespace

constinit const TEIObjectDescriptor TEICommonSingleLResource::Descriptor{
    "TEICommonSingleLResource", nullptr, SingleLResourceType, -1, TSectionRole::SingleResource, nullptr, nullptr};
constinit const TEIObjectDescriptor TEISingleLResource::Descriptor{
    "TEISingleLResource",         &TEICommonSingleLResource::Descriptor,
    SingleLResourceType,          200,
    TSectionRole::SingleResource, nullptr,
    &Make<TEISingleLResource>};
constinit const TEIObjectDescriptor TEIOldSingleLResource::Descriptor{
    "TEIOldSingleLResource",      &TEICommonSingleLResource::Descriptor,
    SingleLResourceType,          100,
    TSectionRole::SingleResource, nullptr,
    &Make<TEIOldSingleLResource>};

void TEICommonSingleLResource::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam(SectionParameter, FSectionID);
}

void TEICommonSingleLResource::Initialize(const TEISection& Section) {
  SetSectionID(Section.ParamValue(SectionParameter));
}

void TEICommonSingleLResource::SetSectionID(const std::string& ID) {
  FSectionID = ID;
  if (ExportSectionID.empty()) ExportSectionID = ID;
}

void TEICommonSingleLResource::ExportData(TEIStream& Stream) {
  if (Language.find_first_of(" =") != std::string::npos)
    throw ELUtilError(
        Format("Can not export ActiveX local resource. Language '%s' contains incorrect symbols", Language));
  Counted() = {};
  TLocalizatorTable& Table = LContainer().GetLocalizatorTable(DatabaseName);
  std::string ID, Line;
  for (const std::string& Section : SectionIDs) {
    const auto Texts = Table.ReadSection(Section, {Language});
    for (std::int64_t Index = 0; Texts->Next(); ++Index) {
      ShowProgress(Index, Texts->Count(), Texts->Name());
      if (IsCanceled()) throw EAbort("Export of localized strings is cancelled");
      const auto Text = Texts->Text(0);
      if (!Text) continue;
      SetStringID(ID, Section, Texts->Name());
      Line = "   ";
      ConvertString(Line, Without(SectionWithoutSeparator(FSectionID), ID));
      Line += " = '";
      ConvertString(Line, *Text);
      WriteTextLine(Stream, Line += '\'');
      ++Counted().Texts;
    }
    Counted().Strings += Texts->Count();
  }
}

void TEICommonSingleLResource::ImportData(TEIStream&) {
  throw Exception("Importing ActiveXLocalizedResource's not supporting");
}

void TEISingleLResource::ConvertString(std::string& Out, std::string_view Line) const { AppendEscapedLine(Out, Line); }

void TEIOldSingleLResource::ConvertString(std::string& Out, std::string_view Line) const {
  AppendOldEscapedLine(Out, Line);
}

}  // namespace velkrund
