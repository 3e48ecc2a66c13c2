#include "velkrund/dictionary/GeneratorData.h"

#include "velkrund/dictionary/DicErrors.h"
#include "velkrund/eif/Section.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"

namespace velkrund {

namespace {

constexpr const char* NameParameter = "GeneratorName";
constexpr const char* StartValueParameter = "StartValue";
// A generator that has given out less is as good as a new one.

}  // namespace

constinit const TEIObjectDescriptor TEIGeneratorData::Descriptor{
    "TEIGeneratorData",
    nullptr,
    "GeneratorData",
    200,
    TSectionRole::GeneratorData,
    nullptr,
    []() -> std::unique_ptr<TEIObject> { return std::make_unique<TEIGeneratorData>(); }};

void TEIGeneratorData::FillParameters(TEISectionParameters& Parameters) {
  Parameters.AddParam(NameParameter, GeneratorName);
  Parameters.AddParam(StartValueParameter, std::to_string(StartValue));
}

void TEIGeneratorData::Initialize(const TEISection& Section) {
  GeneratorName = Section.ParamValue(NameParameter);
  const std::string Text = Section.ParamValue(StartValueParameter);
  const auto Value = StrToInt64(Text);
  if (!Value)
    throw EConvertError(Format("'%s' is not a valid integer value (%s)", Text, StartValueParameter),
                        {.Code = TErrorCode::Value, .Value = Shortened(Text)});
  StartValue = *Value;
}

void TEIGeneratorData::ImportData(TEIStream&) {
  FStopped = IsCanceled();
  FLeftAlone = StartValue < LeastStartValue;
  if (FStopped || FLeftAlone) return;
  if (GeneratorName.empty()) throw EDicUtilError("Can not import generator data. The section names no generator");
  TDicDatabase& Database = DicDBContainer().Database(DatabaseName);
  TTransaction Transaction(DatabaseName);
  if (OnlyForward && Database.GeneratorExist(GeneratorName)) {
    Database.AdvanceGenerator(GeneratorName, StartValue);
    FLeftAlone = Database.GeneratorValue(GeneratorName) != StartValue;
  } else {
    Database.SetGenerator(GeneratorName, 1, StartValue);
  }
  Transaction.Commit();
}

}  // namespace velkrund
