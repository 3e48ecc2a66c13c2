#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "jobs/run/ImportPart.h"
#include "standalone/databases/StandaloneManager.h"

namespace velkrund {

/// The generator data sections of an import. A generator stands in the end where the furthest of its sections says,
/// and no earlier than it stood before, unless it is told to.
class TGeneratorImport final : public TImportPart {
 public:
  /// Manager: borrowed. Backwards: the first section of a generator that is not left alone moves it wherever it says.
  TGeneratorImport(TStandaloneManager& Manager, std::string DatabaseName, bool Backwards)
      : FManager(Manager), FDatabaseName(std::move(DatabaseName)), FBackwards(Backwards) {}

  void Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) override;
  void Settle(TOutcome&) override {}
  std::vector<TPlanStep> Steps(const TItem& Item, std::size_t Number) const override;
  void Begin(std::size_t Number, TEIObject& Object) override;
  void End(TItem& Item, const TEIObject* Object) override;

 private:
  std::string KeyOf(const std::string& Name) const;

  TStandaloneManager& FManager;
  const std::string FDatabaseName;
  const bool FBackwards;
  std::set<std::string> FMoved;               // generators, each by one name
  std::map<std::string, std::string> FNames;  // of the file, by upper case
};

}  // namespace velkrund
