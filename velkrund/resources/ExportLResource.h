#pragma once

#include <memory>
#include <string>

#include "velkrund/operations/ImportExportInterfaces.h"
#include "velkrund/operations/OverwriteQuestion.h"
#include "velkrund/resources/ItemResults.h"
#include "velkrund/resources/SingleLResource.h"

namespace velkrund {

/// What both exports of one section do: a section of their class that the target has under the same ID is asked about,
/// and replaced or left alone. It is gone before the new one is written, and is not brought back when that fails.
class TLResourceExport : public TExportUtilOperation, public TOverwriteQuestion {
 public:
  /// 1, also where an answer leaves the section of the target alone; 0: cancelled.
  int Execute() override;

  std::string SectionID;  // also the name of the section, where that has none of its own
  /// Of the question; the name of the section goes in.
  std::string_view ExistsKey = "M_Velkrund_DSPUtils_LResourceExists";

  /// Of the last run.
  const TLItemResult& Result() const { return FResult; }

 protected:
  explicit TLResourceExport(TEIObjectClass Replaced) : FReplaced(Replaced) {}

  /// The object that CreateEIObject gives, set up with what both kinds have.
  template <typename TSection>
  std::unique_ptr<TEIObject> SetUp(std::unique_ptr<TSection> Section) {
    Section->DatabaseName = DatabaseName;
    Section->SetSectionID(SectionID);
    Section->SetOverwriteAsk(RunAsk());
    return Section;
  }
  std::string SectionName() const override { return FSectionName.empty() ? SectionID : FSectionName; }

  TLItemResult FResult;

 private:
  bool Replaces();

  const TEIObjectClass FReplaced;
};

/// Saves the strings of a section in several languages: version 200 for rv20, 100 for rv17.
class TUOExportLResource : public TLResourceExport {
 public:
  TUOExportLResource() : TLResourceExport(TEIObjectClass(TEICommonLResource::Descriptor)) {}

  TStringList Languages;  // empty: all of the database
  TStringList Resources;  // the names of the strings; empty: all

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;
  void EndEIObject(const TEIObject& Object) override;
};

/// Saves the strings of several sections in one language, for programs that read nothing else.
class TUOExportSingleLResources : public TLResourceExport {
 public:
  TUOExportSingleLResources() : TLResourceExport(TEIObjectClass(TEICommonSingleLResource::Descriptor)) {}

  std::string Language;
  TStringList SectionIDs;  // empty: SectionID alone

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;
  void EndEIObject(const TEIObject& Object) override;
};

class TUOExportLResourceInterface
    : public TOperationInterface<TUOExportLResourceInterface, TUOExportLResource, TExportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& SectionID() const { return Operation().SectionID; }
  void SetSectionID(const std::string& ID) { Operation().SectionID = ID; }
};

class TUOExportSingleLResourcesInterface
    : public TOperationInterface<TUOExportSingleLResourcesInterface, TUOExportSingleLResources,
                                 TExportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& SectionID() const { return Operation().SectionID; }
  void SetSectionID(const std::string& ID) { Operation().SectionID = ID; }
};

}  // namespace velkrund
