#include "velkrund/dsp/DSPGeneratorStructure.h"

#include "velkrund/eif/Section.h"
#include "velkrund/platform/dictionary/DicDatabase.h"

namespace velkrund {

namespace {

constexpr const char* StartValueParameter = "StartValue";

template <typename TSection>
std::unique_ptr<TEIObject> Make() {
  return std::make_unique<TSection>();
}

}  // namespace

constinit const TEIObjectDescriptor TEIDSPGeneratorStructure::Descriptor{"TEIDSPGeneratorStructure",
                                                                         &TEIDSPStructure::Descriptor,
                                                                         DSPStructureType,
                                                                         200,
                                                                         TSectionRole::Structure,
                                                                         nullptr,
                                                                         &Make<TEIDSPGeneratorStructure>};
constinit const TEIObjectDescriptor TEIDSPGeneratorStructureOld::Descriptor{"TEIDSPGeneratorStructureOld",
                                                                            &TEIDSPGeneratorStructure::Descriptor,
                                                                            DSPStructureType,
                                                                            100,
                                                                            TSectionRole::Structure,
                                                                            nullptr,
                                                                            &Make<TEIDSPGeneratorStructureOld>};

void TEIDSPGeneratorStructure::FillParameters(TEISectionParameters& Parameters) {
  TEIDSPStructure::FillParameters(Parameters);
  if (ReadStartValue) {
    TDicDatabase& Database = DicDBContainer().Database(DatabaseName);
    if (Database.GeneratorExist(Item.ObjectName)) StartValue = std::to_string(Database.GeneratorValue(Item.ObjectName));
  }
  Parameters.AddParam(StartValueParameter, StartValue);
}

void TEIDSPGeneratorStructure::Initialize(const TEISection& Section) {
  TEIDSPStructure::Initialize(Section);
  StartValue = Section.ParamValue(StartValueParameter);
}

}  // namespace velkrund
