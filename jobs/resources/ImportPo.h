#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "jobs/files/InputBytes.h"
#include "jobs/policies/Questions.h"
#include "jobs/resources/PoSections.h"
#include "jobs/resources/PoStrings.h"
#include "jobs/run/JobInterface.h"

namespace velkrund {

/// What became of the texts in one language.
struct TPoTexts {
  std::string Language = {};  // as the database has it
  bool IsNew = false;         // the language
  std::int64_t Added = 0, Replaced = 0;
  std::int64_t LeftAlone = 0;  // are others, and stay because of an answer
  std::int64_t Same = 0;       // were there already, the very same
};

/// Loads the texts of a gettext catalogue into the store: in one transaction, after everything that can be known and
/// every question. New strings go into the section that a catalogue of TJobExportPo names; else as the store has it.
class TJobImportPo final : public TPolicyJob {
 public:
  std::string FileName;        // "-": standard input
  std::string Language;        // of every msgstr; empty: the one that the catalogue names
  std::string SourceLanguage;  // of every msgid; empty: these are not stored
  std::string SectionID;       // in which IDs are made; empty: every msgctxt is one
  TFuzzyEntries FuzzyEntries = TFuzzyEntries::Refuse;
  bool AddLanguages = false;  // that the database lacks

  const TPoCounts& Counts() const { return FCounts; }
  /// Of the source language where it is stored, then of the other one.
  const std::vector<TPoTexts>& Texts() const { return FTexts; }
  std::int64_t CountOf(std::int64_t TPoTexts::*What) const;
  void CheckSettings() const override;
  std::string CommandName() const override { return "resources import-po"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  std::string_view Schema() const override { return "catalogue-import"; }
  void Describe(TDocument& Document) const override;

 private:
  std::unique_ptr<TPoStrings> Open() const;
  void TakeLanguages(const TPoReader& Catalogue);
  void TakeLanguage(const std::string& Name);
  void Look(TPoStrings& Strings);
  void RefuseRepeated(const TPoString& String);
  const std::string* TextFor(const TPoString& String, const TPoTexts& Texts) const;
  void LookAt(const TPoString& String);
  bool MayReplace(const std::string& StringID, const std::string& InLanguage);
  void RefuseUnasked();
  void MakePlan();
  void Write(TPoStrings& Strings);
  void WriteRange(TPoStrings& Strings, const TPoRange& Range, TPoTexts& Texts);
  void WriteText(const std::string& StringID, const std::string& Text, TPoTexts& Texts);
  void Show(TPoStrings& Strings, std::size_t Pass) const;

  std::optional<TInputBytes> FBytes;  // during a run
  std::string FShownName;             // of the file
  TPoCounts FCounts;
  std::vector<TPoTexts> FTexts;
  bool FStoresSource = false;
  std::optional<TPoSections> FSections;
  std::unordered_set<std::uint64_t> FSeen;                       // digests of IDs
  std::map<std::pair<std::string, std::string>, bool> FAnswers;  // whether a text is replaced; by ID and language
  std::vector<std::string> FMet;                                 // others that are there, where nobody can be asked
  TRepeatedQuestion FQuestion;
};

using TJobImportPoInterface = TJobInterface<TJobImportPo>;

}  // namespace velkrund
