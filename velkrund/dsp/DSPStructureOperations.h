#pragma once

#include <string>
#include <utility>

#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/operations/ImportExportInterfaces.h"

namespace velkrund {

/// What a host has decided about structures that exist. Replace: as OverwriteOptions and ClearRoot say; Update: as the
/// answer of that name, whatever they say.
enum class TOverwriteExisting : int { Ask = 0, Skip = 1, Replace = 2, Update = 3 };

/// Loads a structure section into the structures of a database. An answer for all that a person gives about structures
/// that exist holds for later runs too, as long as they load from the same file into the same database.
class TUOImportDSPStructure : public TImportUtilOperation {
 public:
  TUOImportDSPStructure();

  std::string ObjectName;                 // empty: the structure that the section names
  int ObjectType = 0;                     // 0: the type that the section names
  std::string RootNode;                   // full name of the node to import into
  bool UseCustomRootNode = false;         // RootNode holds, otherwise the section's
  bool ClearRoot = true;                  // what is stored there goes first
  bool ChangeStructureproperties = true;  // table name, parent object and remarks are stored too
  TDSPImportOverwriteOptions OverwriteOptions = TDSPImportOverwriteOptions::ioReplace;
  TDSPOverwriteAsk OverwriteAsk;  // whether a structure that exists is overwritten; asked about unless told otherwise

  /// OverwriteAsk as one setting. Ask unless set.
  TOverwriteExisting OverwriteExisting() const;
  void SetOverwriteExisting(TOverwriteExisting Answer);

  /// Whether the last run left a structure that exists as it was, because of an answer.
  bool LeftAlone() const { return FSectionAsk.FLeftAlone; }

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void InitEIObject(TEIObject& Object) override;

 private:
  TDSPOverwriteAsk FSectionAsk;                     // the copy that sections ask with
  std::pair<std::string, std::string> FLastPlaces;  // the file and the database of the last run
};

/// Saves a structure, or a part of one, as a section: version 200 for rv20, 100 for rv17.
class TUOExportDSPStructure : public TExportUtilOperation {
 public:
  std::string ObjectName;
  int ObjectType = 0;
  std::string RootNode;  // full name of the part; empty: all

  static const TUtilOperationDescriptor Descriptor;

 protected:
  std::unique_ptr<TEIObject> CreateEIObject() override;
};

class TUOImportDSPStructureInterface
    : public TOperationInterface<TUOImportDSPStructureInterface, TUOImportDSPStructure, TImportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& ObjectName() const { return Operation().ObjectName; }
  void SetObjectName(const std::string& Name) { Operation().ObjectName = Name; }
  int ObjectType() const { return Operation().ObjectType; }
  void SetObjectType(int Type) { Operation().ObjectType = Type; }
  const std::string& RootNode() const { return Operation().RootNode; }
  void SetRootNode(const std::string& FullName) { Operation().RootNode = FullName; }
  bool UseCustomRootNode() const { return Operation().UseCustomRootNode; }
  void SetUseCustomRootNode(bool Value) { Operation().UseCustomRootNode = Value; }
  bool ClearRoot() const { return Operation().ClearRoot; }
  void SetClearRoot(bool Value) { Operation().ClearRoot = Value; }
  bool ChangeStructureproperties() const { return Operation().ChangeStructureproperties; }
  void SetChangeStructureproperties(bool Value) { Operation().ChangeStructureproperties = Value; }
  TDSPImportOverwriteOptions OverwriteOptions() const { return Operation().OverwriteOptions; }
  void SetOverwriteOptions(TDSPImportOverwriteOptions Options) { Operation().OverwriteOptions = Options; }
  TOverwriteExisting OverwriteExisting() const { return Operation().OverwriteExisting(); }
  void SetOverwriteExisting(TOverwriteExisting Answer) { Operation().SetOverwriteExisting(Answer); }
};

class TUOExportDSPStructureInterface
    : public TOperationInterface<TUOExportDSPStructureInterface, TUOExportDSPStructure, TExportUtilOperationInterface> {
 public:
  using TOperationInterface::TOperationInterface;
  static const TInterfaceDescriptor Descriptor;

  const std::string& ObjectName() const { return Operation().ObjectName; }
  void SetObjectName(const std::string& Name) { Operation().ObjectName = Name; }
  int ObjectType() const { return Operation().ObjectType; }
  void SetObjectType(int Type) { Operation().ObjectType = Type; }
  const std::string& RootNode() const { return Operation().RootNode; }
  void SetRootNode(const std::string& FullName) { Operation().RootNode = FullName; }
};

}  // namespace velkrund
