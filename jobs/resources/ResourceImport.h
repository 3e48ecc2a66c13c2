#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jobs/policies/Policies.h"
#include "jobs/resources/LanguageImport.h"
#include "jobs/run/ImportPart.h"
#include "velkrund/operations/AskObjects.h"
#include "velkrund/platform/ormtools/StringLists.h"
#include "velkrund/resources/LResource.h"

namespace velkrund {

/// The sections of localized strings of an import: into which section of the database each goes, in which languages,
/// and what becomes of texts that are there.
class TResourceImport final : public TImportPart {
 public:
  struct TSettings {
    std::string DatabaseName, DatabaseText;
    TExisting Existing = TExisting::Ask;
    std::string SectionID = {};               // empty: the one that the section names
    std::vector<std::string> Languages = {};  // none: all of the file
    bool AddLanguages = false;                // that the database lacks
  };

  TResourceImport(TSettings Settings, std::shared_ptr<TComingLanguages> Coming);

  void Add(TInputFile& Input, int Index, TItem& Item, std::size_t Number) override;
  void Settle(TOutcome& Outcome) override;
  std::vector<TPlanStep> Steps(const TItem& Item, std::size_t Number) const override;
  void Begin(std::size_t Number, TEIObject& Object) override;
  void End(TItem& Item, const TEIObject* Object) override;

 private:
  /// A section of a file.
  struct TSource {
    TInputFile& Input;
    int Index;
    TStringList Languages;  // those of its languages that are imported
  };

  TStringList LanguagesIn(const TSource& Source) const;
  std::unique_ptr<TEICommonLResource> OpenSection(const TSource& Source) const;
  void RefuseMissing(const TSource& Source, const std::string& Section);
  void FindTexts(const TSource& Source, std::vector<std::string>& Met) const;

  const TSettings FSettings;
  const std::shared_ptr<TComingLanguages> FComing;
  TYesNoCancelAsk FAsk;                     // shared by all sections
  std::map<std::size_t, TSource> FSources;  // by the number of the item
  TLResourceReport FReport;                 // of the section that is imported
  TStringList FInFiles;                     // languages
  TStringList FToAdd;                       // languages
};

}  // namespace velkrund
