#include "standalone/discard/DiscardStructures.h"

namespace velkrund {
namespace {

class TDiscardForm final : public TDSPFormManager {
 public:
  bool LoadPureStructure() override {
    Root().Clear();
    return true;
  }
  bool SavePureStructure() override { return true; }
};

}  // namespace

std::unique_ptr<TDSPFormManager> TDiscardStructures::CreateFormManager(const std::string&) {
  return std::make_unique<TDiscardForm>();
}

}  // namespace velkrund
