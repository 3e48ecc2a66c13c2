#pragma once

#include <memory>
#include <vector>

#include "hosts/cli/line/Command.h"

namespace velkrund {

using TCommands = std::vector<std::unique_ptr<TCommand>>;

/// Every command of the program, in the order in which help shows them.
TCommands AllCommands();

// One file each.
std::unique_ptr<TCommand> MakeExportTable();
std::unique_ptr<TCommand> MakeExportStructure();
std::unique_ptr<TCommand> MakeExportQuery();
std::unique_ptr<TCommand> MakeExportGenerator();
std::unique_ptr<TCommand> MakeExportResource();
std::unique_ptr<TCommand> MakeExportSingleResources();
std::unique_ptr<TCommand> MakeExportLanguage();
std::unique_ptr<TCommand> MakeExportXml();
std::unique_ptr<TCommand> MakeImportTable();
std::unique_ptr<TCommand> MakeImportStructure();
std::unique_ptr<TCommand> MakeImportQuery();
std::unique_ptr<TCommand> MakeImportGenerator();
std::unique_ptr<TCommand> MakeImportResource();
std::unique_ptr<TCommand> MakeImportLanguage();
std::unique_ptr<TCommand> MakeImportFile();
std::unique_ptr<TCommand> MakeCopyTable();
std::unique_ptr<TCommand> MakeCopyResource();
std::unique_ptr<TCommand> MakeCopyLanguage();
std::unique_ptr<TCommand> MakeDeleteResource();
std::unique_ptr<TCommand> MakeDeleteSection();
std::unique_ptr<TCommand> MakeDeleteString();
std::unique_ptr<TCommand> MakeRecreateTable();
std::unique_ptr<TCommand> MakeRecreateView();
std::unique_ptr<TCommand> MakeRecreateGenerator();
std::unique_ptr<TCommand> MakeRecreateProcedure();
std::unique_ptr<TCommand> MakeDictionaryList();
std::unique_ptr<TCommand> MakeDictionaryShow();
std::unique_ptr<TCommand> MakeDictionaryDrop();
std::unique_ptr<TCommand> MakeDictionaryAdopt();
std::unique_ptr<TCommand> MakeDictionaryScript();
std::unique_ptr<TCommand> MakeLanguagesList();
std::unique_ptr<TCommand> MakeLanguagesAdd();
std::unique_ptr<TCommand> MakeLanguagesRemove();
std::unique_ptr<TCommand> MakeResourcesList();
std::unique_ptr<TCommand> MakeResourcesGet();
std::unique_ptr<TCommand> MakeResourcesSet();
std::unique_ptr<TCommand> MakeResourcesImportPo();
std::unique_ptr<TCommand> MakeResourcesExportPo();
std::unique_ptr<TCommand> MakeFileList();
std::unique_ptr<TCommand> MakeFileCheck();
std::unique_ptr<TCommand> MakeFileRemove();
std::unique_ptr<TCommand> MakeFileRepair();
std::unique_ptr<TCommand> MakeDatabaseInfo();
std::unique_ptr<TCommand> MakeDatabaseRunProcedure();

}  // namespace velkrund
