#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "velkrund/platform/dictionary/DicDatabase.h"

namespace velkrund {

/// Databases without generators, views and procedures that swallow what is made, for reading files through as an import
/// reads them.
class TDiscardObjects final : public TDicDBContainer, private TDicDatabase {
 public:
  TDicDatabase& Database(const std::string&) override { return *this; }

 private:
  bool GeneratorExist(const std::string&) override { return false; }
  std::int64_t GeneratorValue(const std::string&) override { return 0; }
  void SetGenerator(const std::string&, std::int64_t, std::int64_t) override {}
  void AdvanceGenerator(const std::string&, std::int64_t) override {}
  void CreateGenerator(const std::string&, std::optional<std::int64_t>, bool) override {}
  void DropGenerator(const std::string&) override {}
  bool ViewExist(const std::string&) override { return false; }
  void CreateView(const std::string&, bool, bool) override {}
  void DropView(const std::string&) override {}
  bool ExecStoredProcExist(const std::string&) override { return false; }
  bool SelectStoredProcExist(const std::string&) override { return false; }
  void CreateExecStoredProc(const std::string&, bool) override {}
  void CreateSelectStoredProc(const std::string&, bool) override {}
  void DropStoredProc(const std::string&) override {}
};

}  // namespace velkrund
