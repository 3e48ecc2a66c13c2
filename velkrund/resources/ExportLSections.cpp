#include "velkrund/resources/ExportLSections.h"

#include "velkrund/operations/ListProgress.h"
#include "velkrund/operations/PropertyAccess.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/resources/TargetSections.h"

namespace velkrund {

namespace {

using TThis = TUOExportLSections;

constexpr std::string_view ExistsKey = "M_Velkrund_DSPUtils_ResourceExists";

constexpr TProperty Properties[] = {
    PropertyOf<&TThis::SectionIDs>("SectionIDs", "sections of strings to save, in this order"),
    PropertyOf<&TThis::Languages>("Languages", "languages to save, in this order; empty: all of the database"),
    PropertyOf<&TThis::Target>("Target", "file to write into, opened"),
    ChoiceOf<&TThis::ReleaseVersion>("ReleaseVersion", "release whose readers the file must suit", ReleaseVersionNames),
    ChoiceOf<&TThis::Encoding>("Encoding", "encoding of new sections; ignored for rv17, which is always ANSI",
                               EncodingNames),
    PropertyOf<&TThis::ToFolder>("ToFolder", "write each section into a file of its own in Folder"),
    PropertyOf<&TThis::Folder>("Folder", "folder of these files"),
    ChoiceOf<&TThis::Overwrite, &TThis::SetOverwrite>(
        "Overwrite", "whether a section or a file that is there is replaced", RecreateOverwriteNames),
};

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TUOExportLSections");
constinit const TInterfaceDescriptor TUOExportLSectionsInterface::Descriptor =
    Describe("TUOExportLSectionsInterface", Properties);

int TUOExportLSections::Execute() {
  FResults.clear();
  BeginAsking();
  try {
    for (int Index = 0; Index < SectionIDs.Count(); ++Index) {
      const TNext Next = ExportOne(SectionIDs[Index], Index);
      if (Next == TNext::Cancelled) return 0;
      if (Next == TNext::End || IsCanceled()) break;
    }
  } catch (const EAbort&) {
    return 0;
  }
  return 1;
}

TUOExportLSections::TNext TUOExportLSections::ExportOne(const std::string& ID, int Index) {
  FResults.push_back({.Name = ID});
  std::unique_ptr<TEIFile> File;
  if (ToFolder && !(File = MakeFile(ID))) return TNext::End;
  if (!ExportInto(File ? File.get() : Target, ID, Index)) return TNext::Cancelled;
  if (File) File->Sync();
  return FResults.back().LeftAlone && RunAsk().FCancel ? TNext::End : TNext::Section;
}

/// Null: the file that is there stays. What is asked is whether its section may be replaced.
std::unique_ptr<TEIFile> TUOExportLSections::MakeFile(const std::string& ID) {
  auto File = std::make_unique<TEIFile>();
  File->SetFileName(PathInFolder(Folder, ID + ".eif"));
  FResults.back().LeftAlone = !ReplacesFile(File->FileName(), RunAsk(), Format(BaseMng().LString(ExistsKey), ID), this);
  if (FResults.back().LeftAlone) return nullptr;
  File->CreateNewFile();
  File->Open();
  return File;
}

/// 0: cancelled.
int TUOExportLSections::ExportInto(TEIFile* File, const std::string& ID, int Index) {
  ShowProgress(Index, SectionIDs.Count(), ID);
  TUOExportLResource Operation;
  Operation.Owner = this;
  Operation.DatabaseName = DatabaseName;
  Operation.SectionID = ID;
  Operation.ExistsKey = ExistsKey;
  Operation.Languages = Languages;
  Operation.FTarget = File;
  Operation.FReleaseVersion = ReleaseVersion;
  Operation.FEncoding = Encoding;
  Operation.SetOverwriteAsk(RunAsk());
  Operation.FOnShowProgress = ProgressOfItem(*this, Index, SectionIDs.Count());
  const int Result = Operation.Execute();
  FResults.back() = Operation.Result();
  return Result;
}

}  // namespace velkrund
