#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jobs/run/JobInterface.h"
#include "velkrund/platform/localization/LContainer.h"

namespace velkrund {

VELKRUND_EXCEPTION(EStringMissing, EDatabaseError);

/// A string with its texts.
struct TStoredString {
  struct TText {
    std::string Language, Text;
  };

  std::string StringID, SectionID;
  std::vector<TText> Texts = {};  // in the order of the languages; of the languages that it has one in
};

/// Lists the sections of the localized strings of a database, or the strings of one of them.
class TJobListResources final : public TJob {
 public:
  std::string SectionID;               // empty: the sections
  std::vector<std::string> Languages;  // of the texts of a section's strings; none: all

  const std::vector<TLSectionInfo>& Sections() const { return FSections; }
  /// With SectionID, its strings, in the order of the store.
  const std::vector<TStoredString>& Strings() const { return FStrings; }
  std::string CommandName() const override { return "resources list"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override {
    FSections.clear();
    FStrings.clear();
  }
  std::string_view Schema() const override { return "resources"; }
  void Describe(TDocument& Document) const override;

 private:
  std::vector<TLSectionInfo> FSections;
  std::vector<TStoredString> FStrings;
};

/// Shows the texts of one string, or the one in a language.
class TJobGetString final : public TJob {
 public:
  std::string StringID;
  std::string Language;  // empty: all that it has

  void CheckSettings() const override { Require(StringID, "StringID"); }
  const TStoredString& Found() const { return FFound; }
  std::string CommandName() const override { return "resources get"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override { FFound = {}; }
  std::string_view Schema() const override { return "string"; }
  void Describe(TDocument& Document) const override;

 private:
  TStoredString FFound;
};

/// Writes one text of a string; the string is made when it is not there, in the section that its ID says, or SectionID.
class TJobSetString final : public TPolicyJob {
 public:
  std::string StringID, Language, Text;
  std::string SectionID;  // empty: the one it is in, else the longest there is whose ID its own begins with, else what
                          // stands before its last "_"

  void CheckSettings() const override;
  /// As it is after the last run.
  const TStoredString& Found() const { return FFound; }
  /// The text that was there.
  const std::optional<std::string>& Before() const { return FBefore; }
  std::string CommandName() const override { return "resources set"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
  void Forget() override;
  std::string_view Schema() const override { return "string"; }
  void Describe(TDocument& Document) const override;

 private:
  TStoredString FFound;
  std::optional<std::string> FBefore;
};

using TJobListResourcesInterface = TJobInterface<TJobListResources>;
using TJobGetStringInterface = TJobInterface<TJobGetString>;
using TJobSetStringInterface = TJobInterface<TJobSetString>;

}  // namespace velkrund
