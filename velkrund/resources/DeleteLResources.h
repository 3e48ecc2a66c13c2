#pragma once

#include <cstdint>
#include <string>

#include "velkrund/operations/OperationInterface.h"
#include "velkrund/resources/ItemResults.h"

namespace velkrund {

/// Deletes one string, in all languages.
class TUODeleteLResource : public TDatabaseUtilOperation {
 public:
  /// 1, also where there is no such string.
  int Execute() override;

  std::string StringID;

  /// Whether the last run has found it.
  bool Deleted() const { return FDeleted; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  bool FDeleted = false;
};

/// Deletes several strings, one after the other. After an error a person is asked whether to go on; No raises it.
class TUODeleteLResources : public TDatabaseUtilOperation, public TLItemResults {
 public:
  /// 1; 0: cancelled; strings that were deleted by then are gone. This list too.
  int Execute() override;

  TStringList StringIDs;

  static const TUtilOperationDescriptor Descriptor;
};

/// Deletes all strings of a section, in one transaction.
class TUODeleteLSection : public TDatabaseUtilOperation {
 public:
  /// 1, also where the section has no strings; 0: cancelled, and nothing is deleted.
  int Execute() override;

  std::string SectionID;

  /// Strings of the last run.
  std::int64_t Deleted() const { return FDeleted; }

  static const TUtilOperationDescriptor Descriptor;

 private:
  std::int64_t FDeleted = 0;
};

/// Deletes several sections, each in a transaction of its own; more than ten as one change of the store, which is
/// quicker. After an error a person is asked whether to go on; No raises it.
class TUODeleteLSections : public TDatabaseUtilOperation, public TLItemResults {
 public:
  int Execute() override;

  TStringList SectionIDs;

  static const TUtilOperationDescriptor Descriptor;

 private:
  int DeleteAll();
};

class TUODeleteLResourceInterface : public TOperationInterface<TUODeleteLResourceInterface, TUODeleteLResource> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& StringID() const { return Operation().StringID; }
  void SetStringID(const std::string& ID) { Operation().StringID = ID; }
};

class TUODeleteLResourcesInterface : public TOperationInterface<TUODeleteLResourcesInterface, TUODeleteLResources> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TStringList& StringIDs() const { return Operation().StringIDs; }
};

class TUODeleteLSectionInterface : public TOperationInterface<TUODeleteLSectionInterface, TUODeleteLSection> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& SectionID() const { return Operation().SectionID; }
  void SetSectionID(const std::string& ID) { Operation().SectionID = ID; }
};

class TUODeleteLSectionsInterface : public TOperationInterface<TUODeleteLSectionsInterface, TUODeleteLSections> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  TStringList& SectionIDs() const { return Operation().SectionIDs; }
};

}  // namespace velkrund
