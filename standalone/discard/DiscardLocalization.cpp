#include "standalone/discard/DiscardLocalization.h"

namespace velkrund {
namespace {

class TDiscardLocalizator final : public TLocalizator {
 public:
  bool DeleteString(const std::string&) override { return false; }
};

}  // namespace

std::unique_ptr<TLocalizator> TDiscardLocalization::CreateLocalizator(const std::string&) {
  return std::make_unique<TDiscardLocalizator>();
}

bool TDiscardLocalization::GetLanguage(const std::string&, TOneLanguage& Record) {
  Record = {};
  return true;
}

}  // namespace velkrund
