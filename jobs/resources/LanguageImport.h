#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "jobs/policies/Policies.h"
#include "jobs/run/ImportPart.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

/// The languages that an import brings, in upper case; shared by its parts.
using TComingLanguages = std::set<std::string>;

/// The language sections of an import: languages that are new are stored, those that are called otherwise already are
/// replaced or left as the policy or a person wishes.
class TLanguageImport final : public TImportPart {
 public:
  TLanguageImport(std::string DatabaseName, TExisting Existing, std::shared_ptr<TComingLanguages> Coming)
      : FDatabaseName(std::move(DatabaseName)), FExisting(Existing), FComing(std::move(Coming)) {}

  void Announce(TInputFile& Input, int Index) override;
  void Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) override;
  void Settle(TOutcome& Outcome) override;
  std::vector<TPlanStep> Steps(const TItem& Item, std::size_t Number) const override;
  void Begin(std::size_t Number, TEIObject& Object) override;
  void End(TItem& Item, const TEIObject* Object) override;

 private:
  static std::optional<TOneLanguage> RecordOf(TInputFile& Input, int Index);
  bool IsOther(const TItem& Item, const TOneLanguage& New) const;

  const std::string FDatabaseName;
  const TExisting FExisting;
  const std::shared_ptr<TComingLanguages> FComing;
  std::map<std::size_t, TOneLanguage> FRecords;  // what the sections say, by the number of the item
};

}  // namespace velkrund
