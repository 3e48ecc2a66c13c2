#pragma once

#include <memory>
#include <string>

#include "velkrund/dsp/DSPOverwriteAsk.h"
#include "velkrund/dsp/NodeTexts.h"
#include "velkrund/eif/EIObject.h"
#include "velkrund/eif/EIStream.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

inline constexpr const char* DSPStructureType = "DSPStructure";

/// One stored structure, or a part of one, as a section. The header parameters "ObjectType", "ObjectName", "TableName",
/// "ParentObject" and "RootNode" say which; the body is
///
///    [REMARKS]
///     Clients of the shop      one line each of the remarks; an empty one when there are none
///    [TREE]
///     Caption:string = 'Clients'
///     Columns                  a node without value
///       ID:integer = 1         below it
///
/// TDSPTreeWriter draws the lines in full, TNodeTexts the names and values, in which the concrete classes differ.
/// Errors are EDSPUtilError; those of the store (EDSPError) and of number texts (EConvertError) pass through. Used for
/// one export or one import.
class TEIDSPStructureCommon : public TEIObject {
 public:
  TEIDSPStructureCommon();

  void FillParameters(TEISectionParameters& Parameters) override;
  void Initialize(const TEISection& Section) override;
  /// The settings are named after the class: the answers of the question, whether it is asked again, ClearRoot,
  /// and what was answered for all, if anything was.
  void SaveProperties(TKvParamsList& Properties) const override;
  void LoadProperties(const TKvParamsList& Properties) override;
  /// Cancelled: EAbort.
  void ExportData(TEIStream& Stream) override;
  /// Asks first where the structure exists, if OverwriteAsk says so; left alone, that is no failure, and LeftAlone() is
  /// true. In one transaction; cancelled or failed, the structure is as it was before. Cancelled: Stopped() is true.
  void ImportData(TEIStream& Stream) override;
  bool LeftAlone() const override { return FOverwriteAsk->FLeftAlone; }

  /// The question whether an existing structure is overwritten. Yes without asking unless the class says otherwise.
  TDSPOverwriteAsk& OverwriteAsk() const { return *FOverwriteAsk; }
  /// Takes a question that several sections share, so that an answer for all holds for them. Borrowed; it outlives the
  /// section.
  void SetOverwriteAsk(TDSPOverwriteAsk& Ask) { FOverwriteAsk = &Ask; }

  TDSPListItem Item;
  std::string RootNode;                   // full name of the part; empty: the whole tree
  bool ChangeStructureProperties = true;  // import: store the item's table name, parent object and remarks too
  bool ClearRoot = true;                  // import: empty the part before the tree is merged into it
  bool KeepNamesakes = false;             // import: as TDSPMergeOptions has it
  TDSPImportOverwriteOptions OverwriteOptions = TDSPImportOverwriteOptions::ioReplace;

  static const TEIObjectDescriptor Descriptor;

 protected:
  virtual std::unique_ptr<TNodeTexts> NodeTexts() const = 0;

 private:
  enum class TOverwriteAnswer { Yes, No, YesToAll, NoToAll };

  TOverwriteAnswer AskOverwrite();
  void RecordAnswer(TOverwriteAnswer Answer);
  void Take(TDSPImportOverwriteOptions Answer);
  bool MayImport();
  std::string Identity() const;
  /// Raises an error for a RootNode that names no node which a section can hold. Action: "export", "import".
  void CheckRootNode(const char* Action) const;
  [[noreturn]] void RootNodeNotFound(const char* Action) const;
  std::unique_ptr<TDSPFormManager> OpenForm() const;
  std::string SettingName(const char* Setting) const;
  void WriteBody(TEIStream& Stream);
  void WriteRemarks(TEIStream& Stream) const;
  void ReadRemarks(TEIStream& Stream);
  std::string_view NextLine(TEIStream& Stream) const;
  bool ReadTree(TEIStream& Stream, TDSPNode& Tree);
  void Save(TDSPFormManager& Manager);

  const std::unique_ptr<TDSPOverwriteAsk> FOwnAsk = std::make_unique<TDSPOverwriteAsk>();
  TDSPOverwriteAsk* FOverwriteAsk = FOwnAsk.get();  // borrowed
};

/// Version 200. Asks about every structure that exists.
class TEIDSPStructure : public TEIDSPStructureCommon {
 public:
  TEIDSPStructure() { OverwriteAsk().FAlwaysAsk = true; }
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;

 protected:
  std::unique_ptr<TNodeTexts> NodeTexts() const override;
};

/// Version 100.
class TEIDSPStructureOld final : public TEIDSPStructureCommon {
 public:
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }

  static const TEIObjectDescriptor Descriptor;

 protected:
  std::unique_ptr<TNodeTexts> NodeTexts() const override;
};

}  // namespace velkrund
