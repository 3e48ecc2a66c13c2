#pragma once

#include <string>
#include <vector>

#include "jobs/run/JobInterface.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

/// A language of a database.
struct TStoredLanguage {
  std::string Name;
  TOneLanguage Record;
  std::int64_t Texts = 0;  // strings that have one in it
};

/// Lists the languages of a database, in the order in which they were stored first.
class TJobListLanguages final : public TJob {
 public:
  const std::vector<TStoredLanguage>& Found() const { return FFound; }
  std::string CommandName() const override { return "languages list"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override { FFound.clear(); }
  std::string_view Schema() const override { return "languages"; }
  void Describe(TDocument& Document) const override;

 private:
  std::vector<TStoredLanguage> FFound;
};

/// A job about one language.
class TLanguageJob : public TPolicyJob {
 public:
  std::string LanguageName;

  void CheckSettings() const override { Require(LanguageName, "LanguageName"); }
  /// What the last run was about; of a language that is added, as it is now.
  const TStoredLanguage& Found() const { return FFound; }

 protected:
  void Forget() override {
    FFound = {};
    ForgetPlan();
  }
  std::string_view Schema() const override { return "language"; }
  void Describe(TDocument& Document) const override;

  TStoredLanguage FFound;
};

/// Adds a language, or changes what one is called.
class TJobAddLanguage final : public TLanguageJob {
 public:
  TOneLanguage Record;  // empty names: those that it has, of a new language its own name

  void CheckSettings() const override;
  /// Whether the last run found it there.
  bool WasThere() const { return FWasThere; }
  std::string CommandName() const override { return "languages add"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;

 private:
  bool FWasThere = false;
};

/// Removes a language with all texts in it. The policy Yes, or a person, has to agree.
class TJobRemoveLanguage final : public TLanguageJob {
 public:
  std::string CommandName() const override { return "languages remove"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
};

using TJobListLanguagesInterface = TJobInterface<TJobListLanguages>;
using TJobAddLanguageInterface = TJobInterface<TJobAddLanguage>;
using TJobRemoveLanguageInterface = TJobInterface<TJobRemoveLanguage>;

}  // namespace velkrund
