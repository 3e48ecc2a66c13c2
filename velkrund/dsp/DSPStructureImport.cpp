#include <utility>

#include "velkrund/dialogs/DSPConfirmForm.h"
#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/dsp/TreeMerge.h"
#include "velkrund/dsp/TreeReader.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/lctrls/WindowSystem.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

namespace {

// Structures of this type are told what became of their parts when they are replaced without being emptied.
constexpr int ReportingType = 14;

}  // namespace

std::string_view TEIDSPStructureCommon::NextLine(TEIStream& Stream) const {
  ShowProgress(Stream.Position(), Stream.Size(), Item.ObjectName);
  return Stream.Readln();
}

void TEIDSPStructureCommon::ReadRemarks(TEIStream& Stream) {
  // A file that another program cuts off meanwhile ends before its size.
  const auto AtEnd = [&Stream] { return Stream.Peek().empty(); };
  do {
    if (AtEnd()) throw EDSPUtilError("Can not import DSP structure. Remarks section not found");
  } while (!NextLine(Stream).starts_with(" [REMARKS]"));
  std::string Remarks;
  for (bool First = true;; First = false) {
    if (AtEnd()) throw EDSPUtilError("Can not import DSPStructure. Tree section not found");
    const std::string_view Line = NextLine(Stream);
    if (Line.starts_with(" [TREE]")) break;
    if (!Line.starts_with(Indentation))
      throw EDSPUtilError(Format("Can not import DSP structure. Remarks section contains invalid data (Position:%d).",
                                 Stream.SourcePosition()));
    if (!First) Remarks += "\r\n";
    Remarks += Line.substr(Indentation.size());
  }
  Item.Remarks = std::move(Remarks);
}

void TEIDSPStructureCommon::Take(TDSPImportOverwriteOptions Answer) {
  OverwriteOptions = Answer;
  // What is only to be added to has to be there.
  ClearRoot = OverwriteOptions != TDSPImportOverwriteOptions::ioDifference;
}

TEIDSPStructureCommon::TOverwriteAnswer TEIDSPStructureCommon::AskOverwrite() {
  bool ForAll = false;
  Take(DSPConfirmation(
      Format(BaseMng().LString("M_Catalox_DODSPStr_StructureAlreadyExistsConfirm"), Item.ObjectName, Item.ObjectType),
      ForAll));
  if (OverwriteOptions == TDSPImportOverwriteOptions::ioSkip)
    return ForAll ? TOverwriteAnswer::NoToAll : TOverwriteAnswer::No;
  return ForAll ? TOverwriteAnswer::YesToAll : TOverwriteAnswer::Yes;
}

void TEIDSPStructureCommon::RecordAnswer(TOverwriteAnswer Answer) {
  FOverwriteAsk->FYes = Answer == TOverwriteAnswer::Yes || Answer == TOverwriteAnswer::YesToAll;
  if (Answer == TOverwriteAnswer::Yes || Answer == TOverwriteAnswer::No) return;
  FOverwriteAsk->FAlwaysAsk = false;
  FOverwriteAsk->FForAll = OverwriteOptions;
}

bool TEIDSPStructureCommon::MayImport() {
  FOverwriteAsk->FLeftAlone = false;
  if (!DSPContainer().Table(DatabaseName).DSPStructureExist(Item.ObjectName, Item.ObjectType)) return true;
  if (FOverwriteAsk->FAlwaysAsk)
    Synchronize([this] { RecordAnswer(AskOverwrite()); });
  else if (FOverwriteAsk->FForAll)
    Take(*FOverwriteAsk->FForAll);
  FOverwriteAsk->FLeftAlone = !FOverwriteAsk->FYes || FOverwriteAsk->FCancel;
  return !FOverwriteAsk->FLeftAlone;
}

bool TEIDSPStructureCommon::ReadTree(TEIStream& Stream, TDSPNode& Tree) {
  const auto Texts = NodeTexts();
  TDSPTreeReader Reader(Stream, *Texts, StrictLines);
  return Reader.Read(Tree, RootNode, [&] {
    ShowProgress(Stream.Position(), Stream.Size(), Item.ObjectName);
    return !IsCanceled();
  });
}

void TEIDSPStructureCommon::Save(TDSPFormManager& Manager) {
  TStringList Report;
  const bool Reports =
      Item.ObjectType == ReportingType && OverwriteOptions == TDSPImportOverwriteOptions::ioReplace && !ClearRoot;
  const bool Saved = Manager.SpecialSaveMode() ? Manager.SavePureStructureEx(ClearRoot, Reports ? &Report : nullptr)
                                               : Manager.SavePureStructure();
  if (!Saved) throw EDSPUtilError(Format("Can not import DSP structure. Error saving DSP form (%s).", Identity()));
}

void TEIDSPStructureCommon::ImportData(TEIStream& Stream) {
  FStopped = false;
  CheckRootNode("import");
  // Nothing could name it afterwards, to export or to remove it.
  if (Item.ObjectName.empty())
    throw EDSPUtilError(Format(
        "Can not import DSP structure. The structure has no name (%s): the section's ObjectName is empty, and no "
        "other name is given",
        Identity()));
  ReadRemarks(Stream);
  if (!MayImport()) return;
  TTransaction Transaction(DatabaseName);
  const auto Manager = OpenForm();
  if (!Manager->LoadPureStructure())
    throw EDSPUtilError(Format("Can not import DSP structure. Error loading DSP form (%s).", Identity()));
  TDSPNode Tree;
  if (!ReadTree(Stream, Tree)) {
    FStopped = true;
    return;
  }
  MergeTree(*Manager, std::move(Tree), {OverwriteOptions, RootNode, ClearRoot, KeepNamesakes});
  // The properties wait until the tree could be read, so that no store is left with half of the import.
  if (ChangeStructureProperties) DSPContainer().Table(DatabaseName).ChangeStructureProperties(Item);
  Save(*Manager);
  Transaction.Commit();
}

}  // namespace velkrund
