#pragma once

#include <string>

#include "velkrund/operations/OperationInterface.h"
#include "velkrund/operations/OverwriteQuestion.h"
#include "velkrund/resources/ItemResults.h"

namespace velkrund {

/// Copies sections of strings, in all languages of the database, into another database: each in one transaction, which
/// is taken back when it fails or is cancelled. A language that the target lacks is an error before anything of that
/// section is written. Strings that are there are asked about, unless Overwrite says otherwise. After an error
/// a person is asked whether to go on; No raises it.
class TUOCopyLSections : public TCopyDatabaseUtilOperation, public TOverwriteQuestion, public TLItemResults {
 public:
  TUOCopyLSections() { SetOverwritesAll(false); }

  /// 1; 0: cancelled, or ended by an answer; sections that were copied by then stay so.
  int Execute() override;

  TStringList SectionIDs;

  static const TUtilOperationDescriptor Descriptor;

 private:
  bool CopyOne(TLItemResult& Result, int Index);
};

/// Copies the strings of one section into another one of the same database, in all languages: all in one transaction,
/// which is taken back when an error or a wish to stop ends it. Strings that are there are asked about, unless
/// Overwrite says otherwise. After the error of one a person is asked whether to go on without it; No raises it, and
/// otherwise all others are copied anew.
class TUOCopyLResources : public TDatabaseUtilOperation, public TOverwriteQuestion, public TLItemResults {
 public:
  TUOCopyLResources() { SetOverwritesAll(false); }

  /// 1; 0: cancelled, or ended by an answer, and nothing is copied.
  int Execute() override;

  std::string SourceSectionID, TargetSectionID;

  static const TUtilOperationDescriptor Descriptor;

 private:
  class TRun;

  void RefuseMoves() const;
};

class TUOCopyLSectionsInterface
    : public TOperationInterface<TUOCopyLSectionsInterface, TUOCopyLSections, TCopyDatabaseUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TStringList& SectionIDs() const { return Operation().SectionIDs; }
  bool Overwrite() const { return Operation().OverwritesAll(); }
  void SetOverwrite(bool Value) { Operation().SetOverwritesAll(Value); }
};

class TUOCopyLResourcesInterface : public TOperationInterface<TUOCopyLResourcesInterface, TUOCopyLResources> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& SourceSectionID() const { return Operation().SourceSectionID; }
  void SetSourceSectionID(const std::string& ID) { Operation().SourceSectionID = ID; }
  const std::string& TargetSectionID() const { return Operation().TargetSectionID; }
  void SetTargetSectionID(const std::string& ID) { Operation().TargetSectionID = ID; }
  bool OverWrite() const { return Operation().OverwritesAll(); }
  void SetOverWrite(bool Value) { Operation().SetOverwritesAll(Value); }
};

}  // namespace velkrund
