#include "velkrund/dsp/DSPStructure.h"
#include "velkrund/dsp/DSPUtilErrors.h"
#include "velkrund/dsp/TreeWriter.h"
#include "velkrund/eif/RecordPieces.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/structures/DSPContainer.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

void TEIDSPStructureCommon::WriteRemarks(TEIStream& Stream) const {
  std::string_view Rest = Item.Remarks;
  for (bool More = true; More;) {
    const std::size_t End = Rest.find('\r');
    More = End != std::string_view::npos;
    Stream.Writeln(std::string(Indentation).append(Rest.substr(0, End)));
    if (!More) break;
    const bool IsPair = Rest.substr(End + 1).starts_with('\n');
    if (!IsPair)
      ReportAltered(Stream, "Readers of the file would add a line feed to a carriage return that stands alone",
                    "(remarks)");
    Rest.remove_prefix(End + (IsPair ? 2 : 1));
  }
}

void TEIDSPStructureCommon::ExportData(TEIStream& Stream) {
  try {
    WriteBody(Stream);
  } catch (Exception& Error) {
    Error.Add({.Structure = Format("%s (%d)", Item.ObjectName, Item.ObjectType)});
    throw;
  }
}

void TEIDSPStructureCommon::WriteBody(TEIStream& Stream) {
  CheckRootNode("export");
  Stream.Writeln(" [REMARKS]");
  WriteRemarks(Stream);
  Stream.Writeln(" [TREE]");
  const auto Manager = OpenForm();
  // What is not stored would be an empty tree.
  if (!DSPContainer().Table(DatabaseName).DSPStructureExist(Item.ObjectName, Item.ObjectType) ||
      !Manager->LoadPureStructure())
    throw EDSPUtilError(Format("Can not export DSP structure. Error loading DSP form (%s).", Identity()));
  TDSPNode* const Start = Manager->FindSection(RootNode);
  if (!Start) RootNodeNotFound("export");
  const auto Texts = NodeTexts();
  TDSPTreeWriter Writer(Stream, *Texts, Item.ObjectType == ExecStoredProcObjectType);
  Writer.Write(*Start, !RootNode.empty(), [this] {
    if (IsCanceled()) throw EAbort("Export of a structure is cancelled");
  });
}

}  // namespace velkrund
