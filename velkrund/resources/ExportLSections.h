#pragma once

#include <memory>
#include <string>
#include <vector>

#include "velkrund/resources/ExportLResource.h"

namespace velkrund {

/// Saves several sections of strings, each as TUOExportLResource does, into one target or each into a file of its own.
/// In a target the answer No leaves one section alone; about a file it ends the export.
class TUOExportLSections : public TDatabaseUtilOperation, public TOverwriteQuestion {
 public:
  /// 1, also where an answer ends it or it is cancelled between two sections; 0: cancelled within one.
  int Execute() override;

  TStringList SectionIDs;     // in this order
  TStringList Languages;      // empty: all of the database
  TEIFile* Target = nullptr;  // borrowed, opened; the caller closes it. Not used where the sections go to a folder
  TExportReleaseVersion ReleaseVersion = TExportReleaseVersion::rv20;
  TKvEncoding Encoding = TKvEncoding::Utf8;  // ignored for rv17, which is always ANSI
  bool ToFolder = false;                     // each section into the file of its ID and ".eif" in Folder
  std::string Folder;

  /// What became of the sections of the last run that it has come to.
  const std::vector<TLItemResult>& Results() const { return FResults; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  enum class TNext { Section, End, Cancelled };

  TNext ExportOne(const std::string& ID, int Index);
  std::unique_ptr<TEIFile> MakeFile(const std::string& ID);
  int ExportInto(TEIFile* File, const std::string& ID, int Index);

  std::vector<TLItemResult> FResults;
};

class TUOExportLSectionsInterface : public TOperationInterface<TUOExportLSectionsInterface, TUOExportLSections> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TStringList& SectionIDs() const { return Operation().SectionIDs; }
  /// Borrowed: an opened file that outlives the run.
  TEIFile* Target() const { return Operation().Target; }
  void SetTarget(TEIFile* Target) { Operation().Target = Target; }
  TExportReleaseVersion ReleaseVersion() const { return Operation().ReleaseVersion; }
  void SetReleaseVersion(TExportReleaseVersion Release) { Operation().ReleaseVersion = Release; }
  TKvEncoding Encoding() const { return Operation().Encoding; }
  void SetEncoding(TKvEncoding Encoding) { Operation().Encoding = Encoding; }
};

}  // namespace velkrund
