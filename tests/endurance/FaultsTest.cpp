#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <set>

#include "jobs/databases/RunProcedure.h"
#include "jobs/files/OutputFile.h"
#include "jobs/files/SectionRemoval.h"
#include "jobs/files/SectionRepair.h"
#include "jobs/resources/ImportResources.h"
#include "jobs/tables/CopyTables.h"
#include "tests/endurance/Faults.h"
#include "tests/roundtrip/RoundTrip.h"
#include "tests/support/Sanitizer.h"
#include "velkrund/dsp/Dsputils.h"
#include "velkrund/operations/ImportFileInterfaces.h"

namespace velkrund::tests {
namespace {

namespace fs = std::filesystem;

/// A folder with a.db, which has rows, b.db, which has others, F with the sections A and B, and S with a structure.
struct TScene {
  TTemporaryFolder Folder;
  std::string Database(const char* Name) const { return "sqlite:" + Folder / Name; }
  std::string F() const { return Folder / "F"; }
  std::string S() const { return Folder / "S"; }

  /// What is there: every file by name, and its content; of databases the rows.
  std::string State() const {
    std::vector<std::string> Parts;
    for (const auto& Entry : fs::directory_iterator(Folder / "")) {
      const std::string Name = Entry.path().filename();
      if (Name == "a.db") continue;  // nobody writes it
      Parts.push_back(Name + "\n" + (Name == "b.db" ? Rows(Name) : Folder.Read(Name)));
    }
    std::sort(Parts.begin(), Parts.end());
    std::string Result;
    for (const std::string& Part : Parts) Result += Part + "\n----\n";
    return Result;
  }
  std::string Rows(const std::string& Name) const {
    TRawDatabase Database(Folder / Name);
    const std::string Catalogue = Database.Cells("SELECT name FROM sqlite_schema WHERE name LIKE 'velkrund%'");
    return Database.Cells("PRAGMA integrity_check") + Database.Cells("SELECT ID, typeof(V), length(V) FROM A") + "\n" +
           Database.Cells("SELECT * FROM B") + Catalogue +
           (Catalogue.find("velkrund_structures") == std::string::npos
                ? ""
                : Database.Cells("SELECT * FROM velkrund_structures")) +
           (Catalogue.find("velkrund_texts") == std::string::npos
                ? ""
                : Database.Cells("SELECT * FROM velkrund_languages") +
                      Database.Cells("SELECT * FROM velkrund_strings") +
                      Database.Cells("SELECT * FROM velkrund_texts"));
  }
};

std::string ErrorOf(const std::function<void()>& Work) {
  try {
    Work();
  } catch (const std::exception& Error) {
    return ExceptionClassName(Error) + ":" + Error.what();
  }
  return {};
}

std::string ExportA(TFileSystem& Files, const TScene& Scene, const std::vector<int>& Replaced,
                    TOutputUse Use = TOutputUse::AddTo) {
  std::string Error = ErrorOf([&] {
    TOutputFile Output(Files, Scene.F(), false, Use);
    if (!Replaced.empty()) {
      Output.PrepareReplacing();
      Output.HoldBack();
    }
    TUOExportTableDataInterface Operation;
    Operation.SetTarget(&Output.File());
    Operation.SetDatabaseName(Scene.Database("a.db"));
    Operation.SetTableName("A");
    Operation.SetSectionName("A");
    if (!Operation.Execute()) throw Exception(Operation.LastError());
    Output.Finish(Replaced, {});
  });
  return Error;
}

template <typename TInterface>
std::string ImportFirst(TFileSystem& Files, const TScene& Scene, const std::string& FileName) {
  return ErrorOf([&] {
    TEIFile File(Files);
    File.SetFileName(FileName);
    File.SetReadonly(true);
    File.Open();
    TInterface Operation;
    Operation.SetSource(&File);
    Operation.SetDatabaseName(Scene.Database("b.db"));
    if (!Operation.Execute()) throw Exception(Operation.LastError());
  });
}

std::string ImportA(TFileSystem& Files, const TScene& Scene) {
  return ImportFirst<TUOImportTableDataInterface>(Files, Scene, Scene.F());
}

std::string ImportStructure(TFileSystem& Files, const TScene& Scene) {
  return ImportFirst<TUOImportDSPStructureInterface>(Files, Scene, Scene.S());
}

std::string ImportAll(TFileSystem& Files, const TScene& Scene) {
  TUOImportFilesInterface Operation;
  Operation.SetDatabaseName(Scene.Database("b.db"));
  Operation.SetFiles({Scene.F()});
  Operation.SetContinueOnError(false);
  static_cast<TUOImportFiles&>(Operation.Operation()).FileSystem = &Files;
  return Operation.Execute() ? std::string() : "!" + Operation.LastError();
}

std::string RemoveA(TFileSystem& Files, const TScene& Scene) {
  return ErrorOf([&] {
    TEIFile File(Files);
    File.SetFileName(Scene.F());
    File.Open();
    RemoveSections(Files, File, {0}, {});
  });
}

std::string Repair(TFileSystem& Files, const TScene& Scene) {
  return ErrorOf([&] { RepairFile(Files, Scene.F(), {}); });
}

std::string Halve(TFileSystem&, const TScene& Scene) {
  TJobRunProcedureInterface Operation;
  Operation.SetDatabaseName(Scene.Database("b.db"));
  Operation.Job().ProcedureName = "HALVE";
  return Operation.Execute() ? std::string() : "!" + Operation.LastError();
}

/// Selection: with one the rows come one by one, without by a statement of the engine.
std::string CopyA(const TScene& Scene, const std::string& Selection) {
  TJobCopyTablesInterface Operation;
  Operation.SetDatabaseName(Scene.Database("b.db"));
  Operation.Job().SourceDatabaseName = Scene.Database("a.db");
  Operation.Job().Tables = {"A"};
  Operation.Job().Policies.ExistingRows = TExisting::Replace;
  Operation.Job().Selection = Selection;
  return Operation.Execute() ? std::string() : "!" + Operation.LastError();
}

/// Sections of localized strings, in languages that are added.
std::string ImportTexts(TFileSystem&, const TScene& Scene) {
  TJobImportResourcesInterface Operation;
  Operation.SetDatabaseName(Scene.Database("b.db"));
  Operation.Job().FileName = Scene.Folder / "T";
  Operation.Job().AddLanguages = true;
  return Operation.Execute() ? std::string() : "!" + Operation.LastError();
}

struct TJob {
  const char* Name;
  std::function<void(const TScene&)> Prepare;
  std::function<std::string(TFileSystem&, const TScene&)> Run;
  /// Whether a state between the one before and the one after is one of whole parts.
  std::function<bool(const TScene&)> IsPartlyDone = [](const TScene&) { return false; };
};

class TFaultsTest : public testing::Test {
 protected:
  TFaultsTest() {
    MakeEngineFaulty();
    const std::string Big = std::to_string(150'000);
    TRawDatabase(FTemplate.Folder / "a.db")
        .Run(
            "CREATE TABLE A(ID INTEGER PRIMARY KEY, V); CREATE TABLE B(V UNIQUE);"
            "INSERT INTO A VALUES(1, 'one'), (2, hex(zeroblob(" +
            Big + "))), (3, x'00FF'); INSERT INTO B VALUES('b'), (2.5)");
    TRawDatabase(FTemplate.Folder / "b.db")
        .Run(
            "CREATE TABLE A(ID INTEGER PRIMARY KEY, V); CREATE TABLE B(V UNIQUE);"
            "INSERT INTO A VALUES(7, hex(zeroblob(20000))), (8, NULL); INSERT INTO B VALUES('old')");
    TRealPlatform Platform;
    TOutputFile Output(Platform.Manager.Files(), FTemplate.F(), false);
    for (const char* Table : {"A", "B"}) {
      TUOExportTableDataInterface Operation;
      Operation.SetTarget(&Output.File());
      Operation.SetDatabaseName(FTemplate.Database("a.db"));
      Operation.SetTableName(Table);
      Operation.SetSectionName(Table);
      EXPECT_EQ(Operation.Execute(), 1) << Operation.LastError();
    }
    Output.Finish({}, {});
    FContent = FTemplate.Folder.Read("F");
    FTemplate.Folder.Write("S",
                           "[SECTION]\r\nName = S\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\n"
                           "ObjectName = S\r\nTableName = A\r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n"
                           " [REMARKS]\r\n  \r\n [TREE]\r\n  a:integer = 1\r\n  b:string = '" +
                               std::string(20'000, 'x') + "'\r\n[END]\r\n");
  }

  void Prepare(const TJob& Job, const TScene& Scene) const {
    fs::copy(FTemplate.Folder / "", Scene.Folder / "", fs::copy_options::recursive);
    if (Job.Prepare) Job.Prepare(Scene);
  }

  std::string Run(const TJob& Job, const TScene& Scene) const {
    TRealPlatform Platform;
    TFaultyFiles Files(Platform.Manager.Files());
    return Job.Run(Files, Scene);
  }

  /// One run with the fault. False: it was not met.
  bool CheckFault(const TJob& Job, TOperation Operation, int Number, bool Lasting) const {
    const TScene Scene;
    Prepare(Job, Scene);
    TFault::Due() = {Operation, Number, Lasting};
    const std::string Error = Run(Job, Scene);
    const bool Met = TFault::Due().Met;
    TFault::Due() = {};
    const std::string State = Scene.State();
    const std::string Label = std::string(Job.Name) + ", operation " + std::to_string(static_cast<int>(Operation)) +
                              " number " + std::to_string(Number) + (Lasting ? " and on: " : ": ") + Error;
    if (Error.empty()) {
      EXPECT_TRUE(FAfter == State || Operation == TOperation::FileRemove) << Label;
    } else {
      EXPECT_TRUE(Met) << Label;
      const bool NamesPlace = Error.find(Scene.Folder / "") != std::string::npos ||
                              Error.find("'A'") != std::string::npos || Error.find("\"A\"") != std::string::npos ||
                              Error.find("velkrund_") != std::string::npos || Error.find("'B'") != std::string::npos ||
                              Error.find("\"B\"") != std::string::npos;
      const bool NamesReason = Error.find("Injected") != std::string::npos ||
                               Error.find("SQLite error") != std::string::npos ||
                               Error.find("out of memory") != std::string::npos;
      EXPECT_TRUE(NamesPlace && NamesReason) << Label;
      // What is left when nothing can be undone or removed any more is dealt with by the next run, below.
      const bool CanNotRemove = Operation == TOperation::FileRemove || Operation == TOperation::EngineDelete;
      EXPECT_TRUE(State == FBefore || State == FAfter || Job.IsPartlyDone(Scene) || Lasting || CanNotRemove) << Label;
      EXPECT_TRUE(FRows.contains(Scene.Rows("b.db")) || Job.IsPartlyDone(Scene)) << Label;
    }
    if (State == FAfter) return Met;
    if (Lasting) {
      TRealPlatform Platform;
      if (fs::exists(Scene.F())) RepairFile(Platform.Manager.Files(), Scene.F(), {});
      if (std::string(Job.Name) != "repair") fs::remove(Scene.F() + ".cut");
    }
    const bool Started = Job.IsPartlyDone(Scene);
    const std::string Again = Run(Job, Scene);
    EXPECT_TRUE(Scene.State() == FAfter || Started) << Label << "\nand again: " << Again;
    return Met;
  }

  /// Every fault of every operation.
  void Check(const TJob& Job) {
    const TScene Scene;
    Prepare(Job, Scene);
    FBefore = Scene.State();
    FRows = {Scene.Rows("b.db")};
    ASSERT_EQ(Run(Job, Scene), "") << Job.Name;
    FAfter = Scene.State();
    FRows.insert(Scene.Rows("b.db"));
    ASSERT_NE(FBefore, FAfter) << Job.Name;
    int Faults = 0;
    for (int Operation = 0; Operation <= static_cast<int>(TOperation::EngineMemory); ++Operation)
      for (const bool Lasting : {false, true}) {
        const auto Kind = static_cast<TOperation>(Operation);
        const bool IsAny = Kind == TOperation::AnyOfFiles || Kind == TOperation::AnyOfEngine;
        if (IsAny && !Lasting) continue;
        // There are many allocations, and they are much alike; and what follows a fault is much alike for the checker.
        const bool All = std::getenv("VELKRUND_EVERY_FAULT") || !(Kind == TOperation::EngineMemory || ChecksAddresses);
        for (int Number = 1; !HasFailure() && CheckFault(Job, Kind, Number, Lasting);
             Number += All ? 1 : 1 + Number / 4)
          ++Faults;
      }
    EXPECT_GT(Faults, 10) << Job.Name;
    std::cout << Job.Name << ": " << Faults << " faults" << std::endl;
  }

  TScene FTemplate;
  std::string FContent;  // of its F

 private:
  std::string FBefore, FAfter;
  std::set<std::string> FRows;  // of b.db, before and after
};

TEST_F(TFaultsTest, ExportLeavesTheFileOrTheFinishedSection) {
  const std::string& Before = FContent;
  Check({"export",
         {},
         [](TFileSystem& Files, const TScene& Scene) { return ExportA(Files, Scene, {}); },
         [&](const TScene& Scene) {
           return Scene.Folder.Read("F") != Before && !fs::exists(Scene.F() + ".cut") &&
                  Scene.Folder.Read("F").ends_with("[END]\r\n");
         }});
}

TEST_F(TFaultsTest, ExportIntoANewFileLeavesNoneOrAll) {
  Check({"export new", [](const TScene& Scene) { fs::remove(Scene.F()); },
         [](TFileSystem& Files, const TScene& Scene) { return ExportA(Files, Scene, {}); }});
}

TEST_F(TFaultsTest, AFileMadeAfreshIsOldOrNew) {
  const auto Export = [](TFileSystem& Files, const TScene& Scene) {
    return ExportA(Files, Scene, {}, TOutputUse::MakeAfresh);
  };
  Check({"export afresh", {}, Export});
  Check({"export afresh, none before", [](const TScene& Scene) { fs::remove(Scene.F()); }, Export});
}

TEST_F(TFaultsTest, ReplacingExportLeavesOldOrNew) {
  Check({"replace", {}, [](TFileSystem& Files, const TScene& Scene) { return ExportA(Files, Scene, {0}); }});
}

TEST_F(TFaultsTest, WhatWasLeftUnfinishedIsCutOrThere) {
  Check({"export behind an unfinished section",
         [&](const TScene& Scene) { Scene.Folder.Write("F", FContent + ";SECTION]\r\nName = x\r\n"); },
         [](TFileSystem& Files, const TScene& Scene) { return ExportA(Files, Scene, {}); },
         [&](const TScene& Scene) {
           const std::string Now = Scene.Folder.Read("F");
           return Now == FContent || (Now.starts_with(FContent + "[SECTION]") && Now.ends_with("[END]\r\n"));
         }});
}

TEST_F(TFaultsTest, ImportLeavesTheTable) { Check({"import", {}, &ImportA}); }

// Which makes the catalogue.
TEST_F(TFaultsTest, StructureImportLeavesTheStore) { Check({"import structure", {}, &ImportStructure}); }

TEST_F(TFaultsTest, FileImportLeavesWholeSections) {
  std::string First;
  {
    const TScene Scene;
    Prepare({}, Scene);
    EXPECT_EQ(Run({"", {}, &ImportA}, Scene), "");
    First = Scene.Rows("b.db");
  }
  Check({"import file", {}, &ImportAll, [=](const TScene& Scene) { return Scene.Rows("b.db") == First; }});
}

TEST_F(TFaultsTest, AProcedureRunsWhollyOrNotAtAll) {
  Check({"run-procedure",
         [](const TScene& Scene) {
           TRawDatabase(Scene.Folder / "b.db")
               .Run(
                   "CREATE TABLE velkrund_catalogue (version INTEGER NOT NULL, PRIMARY KEY (version));"
                   "INSERT INTO velkrund_catalogue VALUES (1); CREATE TABLE velkrund_structures (tree);"
                   "CREATE TABLE velkrund_procedures (name_key, name, kind, parameters, body);"
                   "INSERT INTO velkrund_procedures VALUES ('halve', 'HALVE', 74, '', 'DELETE FROM \"A\" WHERE ID = 8;"
                   "SELECT count(*) FROM \"A\"; UPDATE \"A\" SET V = hex(zeroblob(9000)); DELETE FROM \"B\"')");
         },
         &Halve});
}

TEST_F(TFaultsTest, AnImportOfTextsLeavesTheStore) {
  std::string File;
  for (const std::string Section : {"K", "L"})
    File += "[SECTION]\r\nName = " + Section +
            "\r\nType = LocalizedResource\r\nVersion = 200\r\nSectionID = " + Section +
            "\r\n[DATA]\r\n [LANGUAGES]\r\n  A\r\n  B\r\n [STRINGS]\r\n  X:\r\n   A = '" + std::string(20'000, 'x') +
            "'\r\n   B = 'b'\r\n  Y:\r\n   B = ''\r\n[END]\r\n";
  Check({"import resource", [=](const TScene& Scene) { Scene.Folder.Write("T", File); }, &ImportTexts});
}

TEST_F(TFaultsTest, ACopyLeavesTheTable) {
  for (const char* Selection : {"", "ID > 0"})
    Check({"copy", {}, [=](TFileSystem&, const TScene& Scene) { return CopyA(Scene, Selection); }});
}

TEST_F(TFaultsTest, RemovalLeavesTheOldFileOrTheNewOne) { Check({"remove", {}, &RemoveA}); }

TEST_F(TFaultsTest, RepairLeavesAllBytes) {
  Check({"repair",
         [&](const TScene& Scene) {
           Scene.Folder.Write("F", FContent.substr(0, FContent.size() - 9) + std::string(300'000, 'x'));
         },
         &Repair});
}

TEST_F(TFaultsTest, LineEndsAreMendedWhollyOrNotAtAll) {
  std::string Bare = FContent;
  std::erase(Bare, '\r');
  Check({"repair", [=](const TScene& Scene) { Scene.Folder.Write("F", Bare); }, &Repair});
}

// What went into it would be gone with the file.
TEST_F(TFaultsTest, ADatabaseWhoseFileIsGoneIsNotWrittenTo) {
  TRealPlatform Platform;
  const std::string Database = FTemplate.Database("b.db");
  ASSERT_TRUE(Platform.Manager.GetUserTable("A", Database, true));
  fs::remove(FTemplate.Folder / "b.db");
  EXPECT_NE(ErrorOf([&] {
              Platform.Manager.StartTransaction(Database, TIsolationLevel::RepeatableRead);
            }).find("b.db': its file was removed or replaced"),
            std::string::npos);
}

// Grown after its headers were read: nobody wants to wait for a hole to be searched.
TEST_F(TFaultsTest, AFailedAppendToAHugeFileKeepsAllOfIt) {
  constexpr std::int64_t Huge = 5'000'000'000;
  TRealPlatform Platform;
  TFaultyFiles Files(Platform.Manager.Files());
  TEIFile File(Files);
  File.SetFileName(FTemplate.F());
  File.Open();
  ASSERT_EQ(File.Sections().Count(), 2);
  File.Stream().SetSize(Huge);
  File.Stream().SetPosition(Huge);
  File.Stream().Write("\r\n" + FContent.substr(5));
  File.Stream().Flush();
  const auto Size = static_cast<std::int64_t>(fs::file_size(FTemplate.F()));
  ASSERT_GT(Size, Huge);
  TFault::Due() = {TOperation::FileWrite, 1};
  TUOExportTableDataInterface Operation;
  Operation.SetTarget(&File);
  Operation.SetDatabaseName(FTemplate.Database("a.db"));
  Operation.SetTableName("A");
  Operation.SetSectionName("A");
  EXPECT_EQ(Operation.Execute(), 0);
  EXPECT_NE(Operation.LastError().find("Cannot write file '" + FTemplate.F()), std::string::npos);
  EXPECT_TRUE(TFault::Due().Met);
  EXPECT_EQ(static_cast<std::int64_t>(fs::file_size(FTemplate.F())), Size);
  EXPECT_EQ(Operation.Execute(), 1);
  EXPECT_GT(File.Sections()[2].Position, Size);
}

}  // namespace
}  // namespace velkrund::tests
