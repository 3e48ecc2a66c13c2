#include "velkrund/dsp/DSPStructure.h"

#include <algorithm>

#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/dsp/NodeNames.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

namespace {

template <typename TSection>
std::unique_ptr<TEIObject> Make() {
  return std::make_unique<TSection>();
}

// A word, or a number, of which 0 is false.
void TakeTruth(const std::optional<std::string>& Text, bool& Setting) {
  if (!Text) return;
  if (SameAsciiWord(*Text, "TRUE"))
    Setting = true;
  else if (SameAsciiWord(*Text, "FALSE"))
    Setting = false;
  else if (const auto Number = StrToReal(*Text))
    Setting = *Number != 0;
}

std::optional<TDSPImportOverwriteOptions> OverwriteOptionOf(const std::string& Text) {
  const auto Number = StrToInt32(Text);
  if (!Number || *Number < 0 || *Number > static_cast<int>(TDSPImportOverwriteOptions::ioDifference))
    return std::nullopt;
  return static_cast<TDSPImportOverwriteOptions>(*Number);
}

const char* TruthText(bool Setting) { return Setting ? "-1" : "0"; }

}  // namespace

constinit const TEIObjectDescriptor TEIDSPStructureCommon::Descriptor{
    "TEIDSPStructureCommon", nullptr, DSPStructureType, -1, TSectionRole::Structure, nullptr, nullptr};
constinit const TEIObjectDescriptor TEIDSPStructure::Descriptor{
    "TEIDSPStructure",     &TEIDSPStructureCommon::Descriptor, DSPStructureType, 200, TSectionRole::Structure, nullptr,
    &Make<TEIDSPStructure>};
constinit const TEIObjectDescriptor TEIDSPStructureOld::Descriptor{
    "TEIDSPStructureOld",     &TEIDSPStructureCommon::Descriptor,
    DSPStructureType,         100,
    TSectionRole::Structure,  nullptr,
    &Make<TEIDSPStructureOld>};

TEIDSPStructureCommon::TEIDSPStructureCommon() { FOwnAsk->FYes = true; }

std::unique_ptr<TNodeTexts> TEIDSPStructure::NodeTexts() const { return std::make_unique<TCurrentNodeTexts>(); }

std::unique_ptr<TNodeTexts> TEIDSPStructureOld::NodeTexts() const {
  return std::make_unique<TOldNodeTexts>(*WorkSettings().AnsiCodePage);
}

void TEIDSPStructureCommon::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam("ObjectType", Format("%d", Item.ObjectType));
  Parameters.AddParam("ObjectName", Item.ObjectName);
  Parameters.AddParam("TableName", Item.TableName);
  Parameters.AddParam("ParentObject", Item.ParentObject);
  Parameters.AddParam("RootNode", RootNode);
}

void TEIDSPStructureCommon::Initialize(const TEISection& Section) {
  const std::string Type = Section.ParamValue("ObjectType");
  const auto ObjectType = StrToInt32(Type);
  if (!ObjectType) throw EConvertError(Format("'%s' is not a valid integer value", Type));
  Item.ObjectType = *ObjectType;
  Item.ObjectName = Section.ParamValue("ObjectName");
  Item.TableName = Section.ParamValue("TableName");
  Item.ParentObject = Section.ParamValue("ParentObject");
  RootNode = Section.ParamValue("RootNode");
}

std::string TEIDSPStructureCommon::SettingName(const char* Setting) const {
  return std::string(ClassType().Name()) + Setting;
}

void TEIDSPStructureCommon::SaveProperties(TKvParamsList& Properties) const {
  TEIObject::SaveProperties(Properties);
  Properties.Add(SettingName(".OverwriteAsk.Yes"), TruthText(FOverwriteAsk->FYes));
  Properties.Add(SettingName(".OverwriteAsk.Cancel"), TruthText(FOverwriteAsk->FCancel));
  Properties.Add(SettingName(".OverwriteAsk.AlwaysAsk"), TruthText(FOverwriteAsk->FAlwaysAsk));
  Properties.Add(SettingName(".ClearRoot"), TruthText(ClearRoot));
  // Otherwise a section would be left with what an answer for another one made of its settings.
  if (FOverwriteAsk->FForAll)
    Properties.Add(SettingName(".OverwriteAsk.ForAll"), Format("%d", static_cast<int>(*FOverwriteAsk->FForAll)));
}

void TEIDSPStructureCommon::LoadProperties(const TKvParamsList& Properties) {
  TEIObject::LoadProperties(Properties);
  TakeTruth(Properties.Find(SettingName(".OverwriteAsk.Yes")), FOverwriteAsk->FYes);
  TakeTruth(Properties.Find(SettingName(".OverwriteAsk.Cancel")), FOverwriteAsk->FCancel);
  TakeTruth(Properties.Find(SettingName(".OverwriteAsk.AlwaysAsk")), FOverwriteAsk->FAlwaysAsk);
  TakeTruth(Properties.Find(SettingName(".ClearRoot")), ClearRoot);
  if (const auto ForAll = Properties.Find(SettingName(".OverwriteAsk.ForAll")))
    if (const auto Answer = OverwriteOptionOf(*ForAll)) FOverwriteAsk->FForAll = Answer;
}

std::string TEIDSPStructureCommon::Identity() const {
  return Format("OT:%d;ON:'%s'", Item.ObjectType, Item.ObjectName);
}

void TEIDSPStructureCommon::CheckRootNode(const char* Action) const {
  if (RootNode.empty()) return;
  if (std::count(RootNode.begin(), RootNode.end(), DSPNameSeparator) >= DSPDeepestTree)
    throw EDSPUtilError(Format("Can not %s DSP structure. The root node lies below more than %d levels (%s).", Action,
                               DSPDeepestTree, Identity()));
  for (std::string_view Rest = RootNode;;) {
    const std::size_t End = Rest.find(DSPNameSeparator);
    if (!IsWritableName(Rest.substr(0, End))) RootNodeNotFound(Action);
    if (End == std::string_view::npos) return;
    Rest.remove_prefix(End + 1);
  }
}

void TEIDSPStructureCommon::RootNodeNotFound(const char* Action) const {
  throw EDSPUtilError(
      Format("Can not %s DSP structure. Specified node not found (%s;Node:'%s').", Action, Identity(), RootNode));
}

std::unique_ptr<TDSPFormManager> TEIDSPStructureCommon::OpenForm() const {
  auto Manager = DSPContainer().CreateFormManager(DatabaseName);
  Manager->ObjectType = Item.ObjectType;
  Manager->ObjectName = Item.ObjectName;
  return Manager;
}

}  // namespace velkrund
