#include "hosts/cli/line/Commands.h"

namespace velkrund {

TCommands AllCommands() {
  TCommands Result;
  Result.push_back(MakeExportTable());
  Result.push_back(MakeExportStructure());
  Result.push_back(MakeExportQuery());
  Result.push_back(MakeExportGenerator());
  Result.push_back(MakeExportResource());
  Result.push_back(MakeExportSingleResources());
  Result.push_back(MakeExportLanguage());
  Result.push_back(MakeExportXml());
  Result.push_back(MakeImportTable());
  Result.push_back(MakeImportStructure());
  Result.push_back(MakeImportQuery());
  Result.push_back(MakeImportGenerator());
  Result.push_back(MakeImportResource());
  Result.push_back(MakeImportLanguage());
  Result.push_back(MakeImportFile());
  Result.push_back(MakeCopyTable());
  Result.push_back(MakeCopyResource());
  Result.push_back(MakeCopyLanguage());
  Result.push_back(MakeDeleteResource());
  Result.push_back(MakeDeleteSection());
  Result.push_back(MakeDeleteString());
  Result.push_back(MakeRecreateTable());
  Result.push_back(MakeRecreateView());
  Result.push_back(MakeRecreateGenerator());
  Result.push_back(MakeRecreateProcedure());
  Result.push_back(MakeDictionaryList());
  Result.push_back(MakeDictionaryShow());
  Result.push_back(MakeDictionaryDrop());
  Result.push_back(MakeDictionaryAdopt());
  Result.push_back(MakeDictionaryScript());
  Result.push_back(MakeLanguagesList());
  Result.push_back(MakeLanguagesAdd());
  Result.push_back(MakeLanguagesRemove());
  Result.push_back(MakeResourcesList());
  Result.push_back(MakeResourcesGet());
  Result.push_back(MakeResourcesSet());
  Result.push_back(MakeResourcesImportPo());
  Result.push_back(MakeResourcesExportPo());
  Result.push_back(MakeFileList());
  Result.push_back(MakeFileCheck());
  Result.push_back(MakeFileRemove());
  Result.push_back(MakeFileRepair());
  Result.push_back(MakeDatabaseInfo());
  Result.push_back(MakeDatabaseRunProcedure());
  return Result;
}

}  // namespace velkrund
