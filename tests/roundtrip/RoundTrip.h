#pragma once

#include <string>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/localization/LocalizationStore.h"
#include "standalone/relations/StandaloneRelations.h"
#include "standalone/structures/StructureStore.h"
#include "tests/roundtrip/TestDatabase.h"
#include "tests/support/TemporaryFolder.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/module/Module.h"
#include "velkrund/platform/installation/Platform.h"

namespace velkrund::tests {

/// The module on the real platform, strict as the command is.
class TRealPlatform {
 public:
  TRealPlatform()
      : Manager(TConfiguration()),
        FGuard(TPlatform{.ApplicationManager = &Manager,
                         .DSPContainer = &FStructures,
                         .Relations = &FRelations,
                         .LContainer = &FLocalization}) {
    StartModule();
    Manager.ChangeSettings().StrictText = true;
  }

  /// Exports into a new file; the error text, empty on success.
  std::string Export(const TTestDatabase& Database, const std::string& Table, const std::string& Path,
                     TExportReleaseVersion Release = TExportReleaseVersion::rv20) {
    TEIFile File;
    File.SetFileName(Path);
    File.CreateFile();
    File.Open();
    TUOExportTableDataInterface Operation;
    Operation.SetTarget(&File);
    Operation.SetDatabaseName(Database.Url);
    Operation.SetTableName(Table);
    Operation.SetSectionName("rows");
    Operation.SetReleaseVersion(Release);
    const int Result = Operation.Execute();
    Lost = Operation.Operation().Report.ValuesChanged + File.Losses().Unrepresentable;
    return Result ? std::string() : Operation.LastError();
  }

  /// Imports the first section; the error text, empty on success.
  std::string Import(const TTestDatabase& Database, const std::string& Path) {
    TEIFile File;
    File.SetFileName(Path);
    File.SetReadonly(true);
    File.Open();
    TUOImportTableDataInterface Operation;
    Operation.SetSource(&File);
    Operation.SetDatabaseName(Database.Url);
    const int Result = Operation.Execute();
    Lost = Operation.Operation().Report.ValuesChanged + File.Losses().Unrepresentable;
    return Result ? std::string() : Operation.LastError();
  }

  TStandaloneManager Manager;
  std::int64_t Lost = 0;  // values and characters, by the last run

 private:
  TStructureStore FStructures{Manager.Databases()};
  TStandaloneRelations FRelations{Manager};
  TLocalizationStore FLocalization{Manager.Databases()};
  TPlatformGuard FGuard;
};

}  // namespace velkrund::tests
