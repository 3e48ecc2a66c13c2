// Uses the installed jobs: an application, started whole, whose database a job saves, and its report.

#include <cstdio>
#include <exception>
#include <fstream>

#include "jobs/application/Application.h"
#include "jobs/tables/ExportTables.h"
#include "velkrund/platform/database/ApplicationManager.h"

int main() {
  try {
    velkrund::TApplicationOptions Options;
    Options.ConfigFile = "jobs.toml";
    std::ofstream(Options.ConfigFile).flush();
    std::ofstream("jobs.db").flush();
    const velkrund::TApplication Application(Options);
    const char* const Database = "sqlite:jobs.db";
    velkrund::BaseMng().ExecuteSQL("CREATE TABLE SHOPS (ID INTEGER PRIMARY KEY, CITY TEXT)", Database);
    velkrund::BaseMng().ExecuteSQL("INSERT INTO SHOPS VALUES (1, 'Tula'), (2, 'Bonn')", Database);

    velkrund::TJobExportTablesInterface Export;
    Export.SetDatabaseName(Database);
    Export.Job().FileName = "shops.eif";
    const bool Exported = Export.Execute() == 1;
    std::printf("%s%s", Export.Job().Report().c_str(), Export.LastError().c_str());
    return Exported && Export.Job().Outcome().Totals().Rows == 2 ? 0 : 1;
  } catch (const std::exception& Error) {
    std::printf("%s\n", Error.what());
    return 1;
  }
}
