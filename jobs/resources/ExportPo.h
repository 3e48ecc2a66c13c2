#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jobs/resources/PoWriter.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

/// What became of the strings of one section.
struct TPoSectionReport {
  std::string SectionID;
  std::int64_t Strings = 0;        // written
  std::int64_t Untranslated = 0;   // of these
  std::int64_t WithoutSource = 0;  // left out, since they have no text in the source language
};

/// Saves localized strings as a gettext catalogue, for translators: every msgctxt is the ID of a string, msgid its text
/// in one language, msgstr that in another. All are read at one moment. TJobImportPo takes the catalogue back. A file
/// that is there is replaced when the policy ExistingFiles or a person says so.
class TJobExportPo final : public TPolicyJob {
 public:
  std::string FileName;                 // "-": standard output
  std::vector<std::string> SectionIDs;  // in any case; none: all of the database
  std::string Language, SourceLanguage;

  const std::vector<TPoSectionReport>& Sections() const { return FSections; }
  std::int64_t CountOf(std::int64_t TPoSectionReport::*What) const;
  /// Translations that are empty, which a catalogue cannot say.
  std::int64_t EmptyTexts() const { return FEmptyTexts; }
  std::int64_t MalformedTexts() const { return FMalformed; }
  /// Whether the file was there, and stays.
  bool LeftAlone() const { return FLeftAlone; }
  const std::vector<TLText>& Notes() const { return FNotes; }
  void CheckSettings() const override;
  std::string CommandName() const override { return "resources export-po"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  std::string_view Schema() const override { return "catalogue-export"; }
  void Describe(TDocument& Document) const override;

 private:
  void TakeSections();
  void WriteSections(TPoWriter* Writer);
  void WriteSection(TPoWriter* Writer, TPoSectionReport& Section);
  void TakeEmpty(const std::string& StringID);
  std::string Checked(std::string_view Text, const std::string& StringID, const std::string& What);

  TStringList FLanguages;  // the source, then the other one
  std::vector<TPoSectionReport> FSections;
  std::int64_t FEmptyTexts = 0, FMalformed = 0;
  bool FLeftAlone = false;
  std::vector<TLText> FNotes;
  std::string FShownName;  // of the file
};

using TJobExportPoInterface = TJobInterface<TJobExportPo>;

}  // namespace velkrund
