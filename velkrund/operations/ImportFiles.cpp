#include "velkrund/operations/ImportFiles.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

constinit const TUtilOperationDescriptor TUOImportFiles::Descriptor =
    OperationDescriptor<TUOImportFiles>("TUOImportFiles", &TUOImportFile::Descriptor);

int TUOImportFiles::ImportAll() {
  if (FFiles.empty()) throw Exception("There is no file to import: the list of files is empty");
  if (FFiles.size() > 1) return ImportSeveral();
  FFileName = FFiles.front();
  return TUOImportFile::ImportAll();
}

int TUOImportFiles::ImportSeveral() {
  FEIObjectProperties.Clear();
  std::vector<TSource> Sources;
  std::int64_t TableBytes = 0;
  for (const std::string& Name : FFiles) {
    try {
      Sources.push_back(OpenFile(Name));
    } catch (const EAbort&) {
      throw;
    } catch (const EQuestionUnanswered&) {
      throw;
    } catch (const std::exception& Error) {
      ContinueOrRaise(Error, "M_Velkrund_ComUtils_ErrorOnImportFile", Name);
      continue;
    }
    const TSource& Source = Sources.back();
    TableBytes += BytesOf(*Source.File, Source.Tables);
    BeginPass(BytesOf(*Source.File, Source.Structures));
    if (!ImportStructures(Source)) return 0;
    EndPass();
  }
  if (!fCreateDBStructures) {
    ImportAllBehind(Sources);
    return 0;
  }
  BeginPass(TableBytes);
  if (!ImportTables(Sources)) return 0;
  EndPass();
  return FinishObjects(Sources);
}

}  // namespace velkrund
