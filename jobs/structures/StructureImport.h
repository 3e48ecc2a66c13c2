#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jobs/dictionary/TableCreation.h"
#include "jobs/policies/Policies.h"
#include "jobs/run/ImportPart.h"
#include "velkrund/dsp/DSPOverwriteAsk.h"

namespace velkrund {

/// The structure sections of an import: which structure each goes into, and what becomes of those that are stored.
class TStructureImport final : public TImportPart {
 public:
  struct TSettings {
    std::string DatabaseName;
    std::string ObjectName = {};  // empty: the structure that the section names
    std::int32_t ObjectType = 0;  // 0: the type that it names
    std::string RootNode = {};    // empty: the node that it names
    bool ClearRoot = true;        // what is replaced is emptied first
    bool ChangeStructureProperties = true;
    TDSPImportOverwriteOptions OverwriteOptions = TDSPImportOverwriteOptions::ioReplace;
    TTableCreation* Creation = nullptr;  // borrowed; null: no tables are made
  };

  TStructureImport(TExisting Existing, TSettings Settings);

  void Announce(TInputFile& Input, int Index) override;
  void Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) override;
  std::vector<TPlanStep> Steps(const TItem& Item, std::size_t Number) const override;
  void Settle(TOutcome& Outcome) override;
  void Begin(std::size_t Number, TEIObject& Object) override;
  void End(TItem& Item, const TEIObject* Object) override;

 private:
  struct TTarget {
    TStructureId Structure;
    int Count = 0;
  };

  void RefuseUnanswered() const;

  const TSettings FSettings;
  TDSPOverwriteAsk FAsk;  // shared by all sections
  std::vector<TTarget> FTargets;
  std::map<std::pair<int, std::string>, std::size_t> FPlaces;  // by type and name in lower case
};

}  // namespace velkrund
