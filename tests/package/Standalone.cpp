// Uses the installed stand-alone platform: what the application installs through one library, the other one finds.

#include <cstdio>
#include <exception>

#include "standalone/databases/StandaloneManager.h"
#include "velkrund/platform/ormtools/InstalledService.h"

int main() {
  try {
    velkrund::TStandaloneManager Manager{velkrund::TConfiguration()};
    Manager.Databases().SetCreateMissing(true);
    const velkrund::TServiceGuard<velkrund::TApplicationManager> Guard(&Manager);

    const char* const Database = "sqlite:consumer.db";
    velkrund::BaseMng().ExecuteSQL("CREATE TABLE SHOPS (ID INTEGER PRIMARY KEY, CITY TEXT)", Database);
    const auto Rows = velkrund::BaseMng().ExecuteSQL("INSERT INTO SHOPS VALUES (1, 'Tula'), (2, 'Bonn')", Database);
    const bool Found = velkrund::BaseMng().GetUserTable("Shops", Database, false) != nullptr;
    std::printf("%d rows, table %s\n", static_cast<int>(Rows), Found ? "found" : "not found");
    return Rows == 2 && Found ? 0 : 1;
  } catch (const std::exception& Error) {
    std::printf("%s\n", Error.what());
    return 1;
  }
}
