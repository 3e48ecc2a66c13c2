#include "jobs/application/Registration.h"

#include "jobs/databases/DatabaseInfo.h"
#include "jobs/databases/RunProcedure.h"
#include "jobs/dictionary/AdoptObjects.h"
#include "jobs/dictionary/ScriptObjects.h"
#include "jobs/generators/ExportGenerators.h"
#include "jobs/generators/ImportGenerators.h"
#include "jobs/queries/ExportQuery.h"
#include "jobs/queries/ImportQueries.h"
#include "jobs/recreation/RecreateObjects.h"
#include "jobs/recreation/RecreateTables.h"
#include "jobs/resources/CopyTexts.h"
#include "jobs/resources/DeleteTexts.h"
#include "jobs/resources/ExportPo.h"
#include "jobs/resources/ExportToFolder.h"
#include "jobs/resources/ExportXml.h"
#include "jobs/resources/ImportPo.h"
#include "jobs/resources/ImportResources.h"
#include "jobs/resources/StoredLanguages.h"
#include "jobs/resources/StoredStrings.h"
#include "jobs/sections/CheckFiles.h"
#include "jobs/sections/ImportFiles.h"
#include "jobs/sections/ListSections.h"
#include "jobs/sections/RemoveSections.h"
#include "jobs/sections/RepairFile.h"
#include "jobs/structures/ExportStructures.h"
#include "jobs/structures/ImportStructures.h"
#include "jobs/structures/StoredStructures.h"
#include "jobs/tables/CopyTables.h"
#include "jobs/tables/ExportTables.h"
#include "jobs/tables/ImportTables.h"

namespace velkrund {

void RegisterJobClasses() {
  TInterfaceClassList& Classes = InterfaceClasses();
  for (const TInterfaceDescriptor* Job : {&TJobExportTables::Interface,
                                          &TJobImportTables::Interface,
                                          &TJobExportQuery::Interface,
                                          &TJobImportQueries::Interface,
                                          &TJobExportGenerators::Interface,
                                          &TJobImportGenerators::Interface,
                                          &TJobCopyTables::Interface,
                                          &TJobExportStructures::Interface,
                                          &TJobImportStructures::Interface,
                                          &TJobImportFiles::Interface,
                                          &TJobListStructures::Interface,
                                          &TJobShowStructure::Interface,
                                          &TJobDropStructure::Interface,
                                          &TJobListSections::Interface,
                                          &TJobCheckFiles::Interface,
                                          &TJobRemoveSections::Interface,
                                          &TJobRepairFile::Interface,
                                          &TJobAdoptObjects::Interface,
                                          &TJobScriptObjects::Interface,
                                          &TJobRecreateTables::Interface,
                                          &TJobRecreateObjects::Interface,
                                          &TJobDatabaseInfo::Interface,
                                          &TJobRunProcedure::Interface,
                                          &TJobExportResources::Interface,
                                          &TJobExportSingleResources::Interface,
                                          &TJobExportLanguages::Interface,
                                          &TJobExportResourceFiles::Interface,
                                          &TJobExportLanguagesFile::Interface,
                                          &TJobExportXml::Interface,
                                          &TJobImportResources::Interface,
                                          &TJobImportLanguages::Interface,
                                          &TJobCopyResources::Interface,
                                          &TJobCopyLanguages::Interface,
                                          &TJobDeleteResources::Interface,
                                          &TJobDeleteStrings::Interface,
                                          &TJobListLanguages::Interface,
                                          &TJobAddLanguage::Interface,
                                          &TJobRemoveLanguage::Interface,
                                          &TJobListResources::Interface,
                                          &TJobGetString::Interface,
                                          &TJobSetString::Interface,
                                          &TJobImportPo::Interface,
                                          &TJobExportPo::Interface})
    Classes.Register(TInterfaceClass(*Job));
}

}  // namespace velkrund
