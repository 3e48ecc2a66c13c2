#pragma once

#include <memory>
#include <optional>
#include <string>

#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// Stores of structures that hold none and swallow what is written, for reading files through as an import reads them.
class TDiscardStructures final : public TDSPContainer, private TDSPTable {
 public:
  TDSPTable& Table(const std::string&) override { return *this; }
  /// Its tree is empty before every load.
  std::unique_ptr<TDSPFormManager> CreateFormManager(const std::string&) override;

 private:
  bool DSPStructureExist(const std::string&, int) override { return false; }
  std::optional<TDSPListItem> GetStructureProperties(const std::string&, int) override { return std::nullopt; }
  void ChangeStructureProperties(const TDSPListItem&) override {}
  TDSPList List() override { return {}; }
  bool DeleteStructure(const std::string&, int) override { return false; }
};

}  // namespace velkrund
