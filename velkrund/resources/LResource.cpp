#include "velkrund/resources/LResource.h"

#include "velkrund/dialogs/YesNoConfirmationForm.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/resources/TextLines.h"

namespace velkrund {

namespace {

constexpr const char* SectionParameter = "SectionID";

template <typename TSection>
std::unique_ptr<TEIObject> Make() {
  return std::make_unique<TSection>();
}

}  // namespace

constinit const TEIObjectDescriptor TEICommonLResource::Descriptor{"TEICommonLResource",   nullptr, LResourceType, -1,
                                                                   TSectionRole::Resource, nullptr, nullptr};
constinit const TEIObjectDescriptor TEILResource::Descriptor{
    "TEILResource",     &TEICommonLResource::Descriptor, LResourceType, 200, TSectionRole::Resource, nullptr,
    &Make<TEILResource>};
constinit const TEIObjectDescriptor TEIOldLResource::Descriptor{
    "TEIOldLResource", &TEICommonLResource::Descriptor, LResourceType, 100, TSectionRole::Resource,
    nullptr,           &Make<TEIOldLResource>};

void TEICommonLResource::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam(SectionParameter, ExportSectionID);
}

void TEICommonLResource::Initialize(const TEISection& Section) { SetSectionID(Section.ParamValue(SectionParameter)); }

void TEICommonLResource::SetSectionID(const std::string& ID) {
  FSectionID = ID;
  if (ExportSectionID.empty()) ExportSectionID = ID;
}

int TEICommonLResource::AskOverwrite(const std::string& StringID) const { return AskOverwriteString(StringID); }

int AskOverwriteString(const std::string& StringID) {
  return YesNoConfirmation(Format(BaseMng().LString("M_Catalox_LUtils_OverwriteCopyLSectionsConfirm"), StringID));
}

void TEILResource::ConvertString(std::string& Out, std::string_view Line) const { AppendEscapedLine(Out, Line); }

bool TEILResource::UnConvertString(std::string& Text) const { return UnescapeText(Text); }

void TEIOldLResource::ConvertString(std::string& Out, std::string_view Line) const { AppendOldEscapedLine(Out, Line); }

bool TEIOldLResource::UnConvertString(std::string& Text) const {
  return UnescapeOldText(Text, *WorkSettings().AnsiCodePage);
}

}  // namespace velkrund
