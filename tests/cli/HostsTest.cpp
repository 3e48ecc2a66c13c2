#include <signal.h>

#include "tests/cli/HostsTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

TEST_F(THostsTest, DoAndRefuseTheSame) {
  const std::string Tables = "TJobImportTablesInterface", Files = "TJobImportFilesInterface",
                    D = "DatabaseName=sqlite:w.db";
  const std::string ExportTables = "TJobExportTablesInterface", Structures = "TJobImportStructuresInterface";
  const std::string Broken = "2 values refer to rows that are not there (before: 0), for example row 1 to a row of 'O'";
  const TArguments ImportTable = {"import", "table", "-d", "sqlite:w.db", "-i", "w.eif"};
  const TArguments ImportFile = {"import", "file", "-d", "sqlite:w.db", "-i", "w.eif"};
  const auto With = [](TArguments Line, const TArguments& More) {
    Line.insert(Line.end(), More.begin(), More.end());
    return Line;
  };
  Check({
      // Parents before children, circles, and references to nothing.
      {ImportTable, {Tables, D, "FileName=w.eif"}},
      {ImportFile, {Files, D, "FileNames=w.eif"}},
      {ImportTable, {Tables, D, "FileName=w.eif"}, "empty.db", "l.eif", 1, Broken},
      {ImportFile, {Files, D, "FileNames=w.eif"}, "empty.db", "l.eif", 1, Broken},
      {With(ImportFile, {"-i", "o.eif"}), {Files, D, "FileNames=w.eif,o.eif"}, "empty.db", "l.eif"},
      {With(ImportTable, {"--section", "X"}),
       {Tables, D, "FileName=w.eif", "Sections=X"},
       "empty.db",
       "all.eif",
       1,
       "Foreign keys of the table 'X' would be broken"},
      {ImportTable, {Tables, D, "FileName=w.eif"}, "broken.db", "o.eif"},
      // Rows that are there.
      {ImportTable,
       {Tables, D, "FileName=w.eif"},
       "rows.db",
       "all.eif",
       1,
       "Table 'L' has 1 row, table 'O' has 1 row."},
      {ImportFile, {Files, D, "FileNames=w.eif"}, "rows.db", "all.eif", 1, "Table 'L' has 1 row, table 'O' has 1 row."},
      {With(ImportTable, {"--replace"}), {Tables, D, "FileName=w.eif", "ExistingRows=replace"}, "rows.db"},
      {With(ImportFile, {"--append"}), {Files, D, "FileNames=w.eif", "ExistingRows=append"}, "rows.db"},
      {With(ImportTable, {"--replace"}),
       {Tables, D, "FileName=w.eif", "ExistingRows=replace"},
       "rows.db",
       "o.eif",
       1,
       "Foreign keys of the table 'L' would be broken"},
      // What does not fit, and what fails on the way.
      {ImportTable, {Tables, D, "FileName=w.eif"}, "other.db", "o.eif", 1, "The table 'O' has none of the fields of"},
      {ImportFile, {Files, D, "FileNames=w.eif"}, "other.db", "o.eif", 1, "The table 'O' has none of the fields of"},
      {ImportTable, {Tables, D, "FileName=w.eif"}, "other.db", "l.eif", 1, "CHECK constraint failed"},
      {{"import", "file", "-d", "sqlite:w.db", "-i", "w.eif", "--on-error", "continue"},
       {Files, D, "FileNames=w.eif", "OnError=continue"},
       "empty.db",
       "bad.eif",
       1,
       "FileName: w.eif"},
      {ImportTable, {Tables, D, "FileName=w.eif"}, "empty.db", "cut.eif", 1, "w.eif"},
  });
  Check({
      {{"export", "table", "-d", "sqlite:w.db", "--all", "-o", "w.eif"},
       {ExportTables, D, "FileName=w.eif"},
       "full.db",
       ""},
      {{"export", "table", "-d", "sqlite:w.db", "--all", "-o", "w.eif", "--row-order", "any"},
       {ExportTables, D, "FileName=w.eif", "RowOrder=any"},
       "full.db",
       ""},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "O", "-o", "w.eif"},
       {ExportTables, D, "Tables=O", "FileName=w.eif"},
       "full.db",
       "all.eif",
       1,
       "Already in 'w.eif': the section 'O'."},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "O", "-o", "w.eif", "--overwrite", "yes"},
       {ExportTables, D, "Tables=O", "FileName=w.eif", "ExistingSections=replace"},
       "rows.db"},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "O", "-o", "w.eif", "--new"},
       {ExportTables, D, "Tables=O", "FileName=w.eif", "NewFile=true"},
       "full.db",
       "all.eif"},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "NONE", "-o", "w.eif"},
       {ExportTables, D, "Tables=NONE", "FileName=w.eif"},
       "full.db",
       "",
       1,
       "There is no table 'NONE'"},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "NONE", "-t", "O", "-o", "w.eif", "--missing", "skip"},
       {ExportTables, D, "Tables=NONE,O", "FileName=w.eif", "MissingSources=skip"},
       "full.db",
       ""},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "NONE", "-o", "w.eif", "--new", "--missing", "skip"},
       {ExportTables, D, "Tables=NONE", "FileName=w.eif", "NewFile=true", "MissingSources=skip"},
       "full.db",
       "all.eif",
       1,
       "There is nothing to export"},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "NONE", "-t", "O", "-o", "w.eif", "--missing", "ask"},
       {ExportTables, D, "Tables=NONE,O", "FileName=w.eif", "MissingSources=ask"},
       "full.db",
       "",
       1,
       "Go on without it?"},
      {{"export", "table", "-d", "sqlite:w.db", "--all", "-o", "w.eif", "--release", "rv17"},
       {ExportTables, D, "FileName=w.eif", "ReleaseVersion=rv17"},
       "full.db",
       "w.db",
       1,
       "is an SQLite database: nothing is added to it"},
      {{"export", "structure", "-d", "sqlite:w.db", "--all", "-o", "w.eif"},
       {"TJobExportStructuresInterface", D, "FileName=w.eif"},
       "rows.db",
       ""},
      {{"export", "structure", "-d", "sqlite:w.db", "--name", "Z", "--name", "A", "-o", "w.eif", "--missing", "skip"},
       {"TJobExportStructuresInterface", D, "Names=Z,A", "FileName=w.eif", "MissingSources=skip"},
       "rows.db",
       ""},
      {{"import", "structure", "-d", "sqlite:w.db", "-i", "w.eif"},
       {Structures, D, "FileName=w.eif"},
       "rows.db",
       "forms.eif",
       1,
       "Structures that are there already: A (12), B (12)."},
      {{"import", "structure", "-d", "sqlite:w.db", "-i", "w.eif", "--overwrite", "no"},
       {Structures, D, "FileName=w.eif", "ExistingStructures=skip"},
       "rows.db",
       "forms.eif"},
      {{"import", "structure", "-d", "sqlite:w.db", "-i", "w.eif", "--section", "A", "--name", "C"},
       {Structures, D, "FileName=w.eif", "Sections=A", "ObjectName=C"},
       "rows.db",
       "forms.eif"},
      // One section with a faulty header fails alone.
      {{"import", "structure", "-d", "sqlite:w.db", "-i", "w.eif", "--on-error", "continue"},
       {Structures, D, "FileName=w.eif", "OnError=continue"},
       "rows.db",
       "typeless.eif",
       1,
       "x"},
      // What nobody can read is added to by permission alone.
      {{"export", "table", "-d", "sqlite:w.db", "-t", "L", "-o", "w.eif"},
       {ExportTables, D, "Tables=L", "FileName=w.eif"},
       "full.db",
       "malformed.eif",
       1,
       "Allow losses"},
      {{"export", "table", "-d", "sqlite:w.db", "-t", "L", "-o", "w.eif", "--allow-loss"},
       {ExportTables, D, "Tables=L", "FileName=w.eif", "AllowLoss=true"},
       "full.db",
       "malformed.eif"},
      {{"import", "file", "-d", "sqlite:w.db", "-i", "w.eif"},
       {"TJobImportFilesInterface", D, "FileNames=w.eif"},
       "empty.db",
       "lines.eif",
       1,
       "holds no section"},
      {{"export", "table", "-d", "sqlite:w.db", "--all", "--structures", "-o", "w.eif"},
       {ExportTables, D, "FileName=w.eif", "Structures=true"},
       "full.db",
       ""},
      {ImportFile,
       {Files, D, "FileNames=w.eif"},
       "empty.db",
       "made.eif",
       1,
       "Tables that are not there, and that structures describe: 'M'."},
      {With(ImportFile, {"--create-tables", "yes", "--overwrite", "no"}),
       {Files, D, "FileNames=w.eif", "CreateTables=yes", "ExistingStructures=skip"},
       "empty.db",
       "made.eif",
       1,
       "The database has no words for"},
      {With(ImportFile, {"--create-tables", "yes", "--allow-missing", "references"}),
       {Files, D, "FileNames=w.eif", "CreateTables=yes", "AllowMissing=references"},
       "empty.db",
       "made.eif"},
      {With(ImportFile, {"--create-tables", "yes", "--allow-missing", "nothing"}),
       {Files, D, "FileNames=w.eif", "CreateTables=yes", "AllowMissing=nothing"},
       "empty.db",
       "made.eif",
       2,
       "'nothing' is no kind"},
      {With(ImportFile, {"--create-tables", "no", "--dry-run"}),
       {Files, D, "FileNames=w.eif", "CreateTables=no", "DryRun=true"},
       "empty.db",
       "made.eif"},
      {{"dictionary", "adopt", "-d", "sqlite:w.db", "--all"}, {"TJobAdoptObjectsInterface", D}, "rows.db"},
      {{"dictionary", "adopt", "-d", "sqlite:w.db", "-t", "NONE"},
       {"TJobAdoptObjectsInterface", D, "Names=NONE"},
       "rows.db",
       "",
       1,
       "There is no table, view, generator or procedure 'NONE'"},
      {{"dictionary", "script", "-d", "sqlite:w.db"}, {"TJobScriptObjectsInterface", D}, "rows.db"},
      {{"database", "run-procedure", "-d", "sqlite:w.db", "NONE", "--param", "A=1"},
       {"TJobRunProcedureInterface", D, "ProcedureName=NONE", "Parameters=A=1", "KeepRows=true"},
       "rows.db",
       "",
       1,
       "There is no procedure 'NONE'"},
      {{"database", "run-procedure", "-d", "sqlite:w.db", "P", "--param", "A=1"},
       {"TJobRunProcedureInterface", D, "ProcedureName=P", "Parameters=A=1", "KeepRows=true"},
       "procedure.db",
       ""},
      {{"database", "run-procedure", "-d", "sqlite:w.db", "P", "--param", "A=1", "--dry-run"},
       {"TJobRunProcedureInterface", D, "ProcedureName=P", "Parameters=A=1", "KeepRows=true", "DryRun=true"},
       "procedure.db",
       ""},
      {{"copy", "table", "--from", "sqlite:w.db", "--to", "sqlite:w.db", "-t", "NONE"},
       {"TJobCopyTablesInterface", D, "SourceDatabaseName=sqlite:w.db", "Tables=NONE"},
       "rows.db",
       "",
       1,
       "There is no table 'NONE'"},
      {{"export", "query", "-d", "sqlite:w.db", "--sql", "SELECT :A AS A", "--param", "A=int", "-o", "w.eif"},
       {"TJobExportQueryInterface", D, "Query=SELECT :A AS A", "Parameters=A=int", "FileName=w.eif"},
       "rows.db",
       "",
       1,
       "there is no type 'int'"},
      {{"export", "query", "-d", "sqlite:w.db", "--sql", "SELECT :A AS A", "--param", "A=integer:1", "-o", "w.eif"},
       {"TJobExportQueryInterface", D, "Query=SELECT :A AS A", "Parameters=A=integer:1", "FileName=w.eif"},
       "rows.db"},
      {{"export", "generator", "-d", "sqlite:w.db", "--name", "NONE", "-o", "w.eif"},
       {"TJobExportGeneratorsInterface", D, "GeneratorNames=NONE", "FileName=w.eif"},
       "rows.db",
       "",
       1,
       "There is no generator 'NONE'"},
      {{"dictionary", "list", "-d", "sqlite:w.db"}, {"TJobListStructuresInterface", D}, "rows.db"},
      {{"dictionary", "show", "-d", "sqlite:w.db", "--name", "a"},
       {"TJobShowStructureInterface", D, "ObjectName=a"},
       "rows.db"},
      {{"dictionary", "show", "-d", "sqlite:w.db", "--name", "Z"},
       {"TJobShowStructureInterface", D, "ObjectName=Z"},
       "rows.db",
       "",
       1,
       "There is no structure 'Z'"},
      {{"dictionary", "drop", "-d", "sqlite:w.db", "--name", "A"},
       {"TJobDropStructureInterface", D, "ObjectName=A"},
       "rows.db",
       "",
       1,
       "Drop the structure 'A' of type 12?"},
      {{"dictionary", "drop", "-d", "sqlite:w.db", "--name", "A", "--yes"},
       {"TJobDropStructureInterface", D, "ObjectName=A", "Yes=true"},
       "rows.db"},
      {{"database", "info", "-d", "sqlite:w.db"}, {"TJobDatabaseInfoInterface", D}, "rows.db"},
      {{"file", "list", "w.eif"}, {"TJobListSectionsInterface", "FileName=w.eif"}},
      {{"file", "list", "w.eif"}, {"TJobListSectionsInterface", "FileName=w.eif"}, "empty.db", "cut.eif", 1, "w.eif"},
      {{"file", "check", "w.eif"}, {"TJobCheckFilesInterface", "FileNames=w.eif"}},
      {{"file", "check", "w.eif"}, {"TJobCheckFilesInterface", "FileNames=w.eif"}, "empty.db", "bad.eif", 1, "faulty"},
      {{"file", "remove", "w.eif", "--name", "O"},
       {"TJobRemoveSectionsInterface", "FileName=w.eif", "Names=O"},
       "empty.db",
       "twice.eif",
       1,
       "'w.eif' has several of that name"},
      {{"file", "remove", "w.eif", "1"},
       {"TJobRemoveSectionsInterface", "FileName=w.eif", "Indexes=1"},
       "empty.db",
       "twice.eif"},
      {{"file", "remove", "w.eif", "9"},
       {"TJobRemoveSectionsInterface", "FileName=w.eif", "Indexes=9"},
       "empty.db",
       "twice.eif",
       1,
       "no section with the index 9"},
      {{"file", "repair", "w.eif"}, {"TJobRepairFileInterface", "FileName=w.eif"}, "empty.db", "cut.eif"},
  });
}

TEST_F(THostsTest, ProgramsInCTakePipes) {
  const std::string D = "DatabaseName=sqlite:full.db";
  const auto Job = [this](const TArguments& Arguments, const std::string& Input = {}) {
    TArguments Line = {VELKRUND_RUN_JOB, "--report", "report"};
    Line.insert(Line.end(), Arguments.begin(), Arguments.end());
    const TOutcome Outcome = Run(Line, Input);
    return std::to_string(Outcome.ExitCode) + Outcome.Output;
  };
  EXPECT_EQ(Job({"TJobExportTablesInterface", D, "FileName=-"}), "0" + Read("all.eif"));
  EXPECT_EQ(nlohmann::json::parse(Read("report"))["rows"], 6);
  EXPECT_EQ(Job({"TJobCheckFilesInterface", "FileNames=-"}, Read("all.eif")), "0");
  EXPECT_EQ(nlohmann::json::parse(Read("report"))["rows"], 6);
  EXPECT_EQ(Job({"TJobCheckFilesInterface", "FileNames=-"}, Read("bad.eif")), "1");
  EXPECT_EQ(Job({"TJobListSectionsInterface", "FileName=-"}, Read("all.eif")), "0");
  EXPECT_EQ(nlohmann::json::parse(Read("report"))["sections"].size(), 4U);
  EXPECT_EQ(Job({"TJobImportFilesInterface", "DatabaseName=sqlite:empty.db", "FileNames=-"}, Read("all.eif")), "0");
  EXPECT_EQ(Query("empty.db", "SELECT * FROM L"), "1|1\n2|2");
  EXPECT_EQ(Job({"TJobImportTablesInterface", "DatabaseName=sqlite:broken.db", "FileName=-"}, Read("o.eif")), "0");
  for (const char* const Class : {"TJobRepairFileInterface", "TJobRemoveSectionsInterface"})
    EXPECT_EQ(Job({Class, "FileName=-"}), "2") << Class;
}

TEST_F(THostsTest, MindPostgreSQLsKeysAlike) {
  TPostgreSQLDatabase Database;
  const TArguments Lines[] = {
      {"import", "file", "-d", Database.Url(), "-i", "l.eif", "-i", "o.eif"},
      {VELKRUND_RUN_JOB, "TJobImportFilesInterface", "DatabaseName=" + Database.Url(), "FileNames=l.eif,o.eif"}};
  const TArguments Broken[] = {{"import", "table", "-d", Database.Url(), "-i", "l.eif", "--append"},
                               {VELKRUND_RUN_JOB, "TJobImportTablesInterface", "DatabaseName=" + Database.Url(),
                                "FileName=l.eif", "ExistingRows=append"}};
  for (std::size_t Host = 0; Host < std::size(Lines); ++Host) {
    Database.Run(
        "DROP TABLE IF EXISTS \"L\"; DROP TABLE IF EXISTS \"O\"; CREATE TABLE \"O\" (\"I\" integer PRIMARY KEY, \"N\" "
        "text); CREATE TABLE \"L\" (\"I\" integer PRIMARY KEY, \"P\" integer REFERENCES \"O\")");
    const TOutcome Refused = Run(Broken[Host]);
    EXPECT_EQ(Refused.ExitCode, 1);
    EXPECT_NE(Refused.Errors.find("violates foreign key constraint"), std::string::npos) << Refused.Errors;
    const TOutcome Outcome = Run(Lines[Host]);
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
    EXPECT_EQ(Database.Rows("SELECT (SELECT count(*) FROM \"O\") || '|' || (SELECT count(*) FROM \"L\")"), "2|2\n");
  }
}

TEST_F(THostsTest, KilledRunsLeaveWhatWasThere) {
  Query("big.db",
        "CREATE TABLE O (I INTEGER PRIMARY KEY, N TEXT);"
        "WITH RECURSIVE R(I) AS (SELECT 1 UNION ALL SELECT I + 1 FROM R WHERE I < 300000)"
        "INSERT INTO O SELECT I, 'a text of the row ' || I FROM R");
  ASSERT_EQ(Run({"export", "table", "-d", "sqlite:big.db", "--all", "-o", "big.eif"}).ExitCode, 0);
  const TArguments Lines[] = {{"import", "table", "-d", "sqlite:w.db", "-i", "big.eif", "--replace"},
                              {VELKRUND_RUN_JOB, "TJobImportTablesInterface", "DatabaseName=sqlite:w.db",
                               "FileName=big.eif", "ExistingRows=replace"}};
  for (const TArguments& Line : Lines) {
    Write("w.db", Read("rows.db"));
    const std::size_t Before = Read("w.db").size();
    const pid_t Process = Start(Line);
    // In the middle of the rows: they have begun to go to the disk, and a transaction is open.
    EXPECT_TRUE(WaitUntil([&] { return Exists("w.db-journal") && Read("w.db").size() > Before; })) << Joined(Line);
    kill(Process, SIGKILL);
    EXPECT_EQ(Finish(Process).ExitCode, 128 + SIGKILL) << Joined(Line);
    EXPECT_EQ(Query("w.db", "SELECT * FROM O; SELECT * FROM L"), "7|old\n8|7") << Joined(Line);
  }
}

}  // namespace
}  // namespace velkrund::tests
