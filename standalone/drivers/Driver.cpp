#include "standalone/drivers/Driver.h"

#include <algorithm>

namespace velkrund {

void TDriverRegistry::Add(std::unique_ptr<TDriver> Driver) {
  const auto Same = [&](const std::unique_ptr<TDriver>& Known) { return Known->Scheme() == Driver->Scheme(); };
  std::erase_if(FDrivers, Same);
  FDrivers.push_back(std::move(Driver));
}

const TDriver* TDriverRegistry::Find(std::string_view Scheme) const {
  for (const auto& Driver : FDrivers)
    if (Driver->Accepts(Scheme)) return Driver.get();
  return nullptr;
}

std::vector<std::string> TDriverRegistry::Schemes() const {
  std::vector<std::string> Result;
  for (const auto& Driver : FDrivers) Result.emplace_back(Driver->Scheme());
  return Result;
}

}  // namespace velkrund
