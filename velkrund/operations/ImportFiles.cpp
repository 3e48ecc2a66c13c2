#include "velkrund/operations/ImportFiles.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUOImportFiles::Descriptor{
    "TUOImportFiles", &TUOImportFile::Descriptor,
    []() -> std::unique_ptr<TUtilOperation> { return std::make_unique<TUOImportFiles>(); }};

int TUOImportFiles::ImportAll() {
  if (FFiles.empty()) throw Exception("There is no file to import: the list of files is empty");
  if (FFiles.size() > 1) return ImportSeveral();
  FFileName = FFiles.front();
  return TUOImportFile::ImportAll();
}

int TUOImportFiles::ImportSeveral() {
  FEIObjectProperties.Clear();
  TUORecreateContainer Container;
  SetUpContainer(Container);
  std::vector<std::unique_ptr<TEIFile>> Files;
  std::int64_t TableBytes = 0;
  for (const std::string& Name : FFiles) {
    try {
      Files.push_back(OpenFile(Name, Container));
    } catch (const EAbort&) {
      throw;
    } catch (const EQuestionUnanswered&) {
      throw;
    } catch (const std::exception& Error) {
      ContinueOrRaise(Error, "M_Velkrund_ComUtils_ErrorOnImportFile", Name);
      continue;
    }
    TEIFile& File = *Files.back();
    TableBytes += BytesOf(File, TPart::Tables);
    BeginPass(BytesOf(File, TPart::Structures));
    if (!ImportSections(File, TPart::Structures)) return 0;
    EndPass();
  }
  if (!fCreateDBStructures) return 0;
  BeginPass(TableBytes);
  for (const auto& File : Files)
    if (!ImportSections(*File, TPart::Tables)) return 0;
  EndPass();
  return Container.Execute();
}

}  // namespace velkrund
