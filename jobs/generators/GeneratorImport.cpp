#include "jobs/generators/GeneratorImport.h"

#include "standalone/dictionary/Generators.h"
#include "velkrund/dictionary/GeneratorData.h"
#include "velkrund/platform/dictionary/DicDatabase.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

void TGeneratorImport::Add(TInputFile& Input, int Index, TItem& Item, std::size_t /*Number*/) {
  const auto Object = Input.File().CreateEIObject(Index);
  const auto& Data = dynamic_cast<const TEIGeneratorData&>(*Object);
  Item.Generator = TGeneratorState{Data.GeneratorName, Data.StartValue};
  const auto [Known, IsNew] = FNames.emplace(UpperCase(Data.GeneratorName), Data.GeneratorName);
  if (IsNew || Known->second == Data.GeneratorName) return;
  // Where one of them is missing, its section would move the other.
  for (const std::string& Name : {Known->second, Data.GeneratorName})
    if (KeyOf(Name) != Name || !DicDBContainer().Database(FDatabaseName).GeneratorExist(Name))
      throw EDatabaseError(
          Format("The generators '%s' and '%s' of '%s' differ in case only, and '%s' is not there: make it "
                 "first",
                 Known->second, Data.GeneratorName, Input.Name(), Name));
}

std::vector<TPlanStep> TGeneratorImport::Steps(const TItem& Item, std::size_t) const {
  const std::int64_t Value = Item.Generator->Value.value_or(0);
  if (Value < TEIGeneratorData::LeastStartValue) return {};
  return {{Format("move the generator '%s' to %d%s", Item.Generator->Name, Value,
                  FBackwards ? "" : ", unless it stands further")}};
}

/// Names that mean one generator have one key.
std::string TGeneratorImport::KeyOf(const std::string& Name) const {
  TGapBook Gaps;
  const auto Generators = GeneratorsOf(FManager.Databases().Connection(FDatabaseName), Gaps);
  const auto Found = Generators->Find(Name);
  return Found ? Found->FullName() : Name;
}

void TGeneratorImport::Begin(std::size_t /*Number*/, TEIObject& Object) {
  if (auto* const Data = dynamic_cast<TEIGeneratorData*>(&Object))
    Data->OnlyForward = !FBackwards || FMoved.contains(KeyOf(Data->GeneratorName));
}

void TGeneratorImport::End(TItem& Item, const TEIObject* Object) {
  const auto* const Data = dynamic_cast<const TEIGeneratorData*>(Object);
  if (!Data || Item.State != TItemState::Done) return;
  if (!Data->LeftAlone()) {
    FMoved.insert(KeyOf(Data->GeneratorName));
    return;
  }
  Item.State = TItemState::LeftOut;
  Item.Note = LText(Data->StartValue < TEIGeneratorData::LeastStartValue ? "M_Velkrund_Jobs_GeneratorBelow"
                                                                         : "M_Velkrund_Jobs_GeneratorFurther");
}

}  // namespace velkrund
