#pragma once

#include <string>
#include <vector>

#include "jobs/resources/TextsJob.h"
#include "jobs/run/JobInterface.h"
#include "velkrund/operations/AskObjects.h"

namespace velkrund {

/// A job that copies texts into DatabaseName.
class TCopyTextsJob : public TTextsJob {
 public:
  std::string SourceDatabaseName;

 protected:
  void Forget() override;
  void Describe(TDocument& Document) const override;
  /// Notes what the source is. Raises ESettingsError for one that is the target.
  void CheckSource();

  std::string FSourceText;
};

/// Copies sections of localized strings, with all languages that they have texts in, from one database into another, or
/// one section into another of the same database.
class TJobCopyResources final : public TCopyTextsJob {
 public:
  std::vector<std::string> SectionIDs;  // in any case; none: all of the source
  std::string TargetSectionID;          // of one section, within one database; empty: that of its name
  bool AddLanguages = false;            // that the target lacks, called as in the source

  void CheckSettings() const override;
  std::string CommandName() const override { return TargetSectionID.empty() ? "copy resources" : "copy resource"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;

 private:
  bool IsWithin() const { return !TargetSectionID.empty(); }
  const std::string& From() const { return IsWithin() ? DatabaseName : SourceDatabaseName; }
  void Plan();
  void PlanLanguages(const std::string& SectionID);
  void RefuseUnanswered() const;
  void AddMissingLanguages() const;
  void CopyOne(TItem& Item);
  void CopyWithin(TItem& Item);

  TStringList FOfSource, FToAdd;  // languages
  TYesNoCancelAsk FAsk;           // shared by all sections
};

/// Copies what languages are called.
class TJobCopyLanguages final : public TCopyTextsJob {
 public:
  std::vector<std::string> Languages;  // in any case; none: all of the source

  std::string CommandName() const override { return "copy languages"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override;
};

using TJobCopyResourcesInterface = TJobInterface<TJobCopyResources>;
using TJobCopyLanguagesInterface = TJobInterface<TJobCopyLanguages>;

}  // namespace velkrund
