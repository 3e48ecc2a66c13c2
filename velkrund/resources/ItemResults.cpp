#include "velkrund/resources/ItemResults.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

int TLItemResults::RunItems(const TUtilOperation& Operation, const TStringList& Names, TListWords Words,
                            const std::function<bool(TLItemResult& Result, int Index)>& Item) {
  FResults.clear();
  const auto RunItem = [&](const std::string& Name, int Index) {
    return Item(FResults.emplace_back(TLItemResult{.Name = Name}), Index);
  };
  try {
    const bool Done = RunList(Operation, Names, Words, RunItem,
                              [this](std::exception_ptr Error) { FResults.back().Error = std::move(Error); });
    return Done ? 1 : 0;
  } catch (const EAbort&) {
    return 0;
  }
}

std::int64_t TLItemResults::Sum(std::int64_t TLResourceReport::*Count) const {
  std::int64_t Result = 0;
  for (const TLItemResult& Item : FResults) Result += Item.Report.*Count;
  return Result;
}

std::int64_t TLItemResults::Texts() const { return Sum(&TLResourceReport::Texts); }
std::int64_t TLItemResults::TextsLeftAlone() const { return Sum(&TLResourceReport::LeftAlone); }
std::int64_t TLItemResults::Strings() const { return Sum(&TLResourceReport::Strings); }

std::vector<std::string> TLItemResults::Failed() const {
  std::vector<std::string> Names;
  for (const TLItemResult& Item : FResults)
    if (Item.Error) Names.push_back(Item.Name);
  return Names;
}

}  // namespace velkrund
