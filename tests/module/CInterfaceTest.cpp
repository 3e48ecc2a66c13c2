#include "tests/module/CInterface.h"

#include <functional>

namespace velkrund::tests {
namespace {

constexpr const char* ImportFiles = "TUOImportFilesInterface";
constexpr const char* ImportTable = "TUOImportTableDataInterface";

TEST_F(CInterface, ExampleExportsImportsAndCancels) {
  constexpr const char* Rows = "SELECT ID || ',' || ifnull(NAME, 'NULL') FROM C ORDER BY ID";
  EXPECT_EQ(Example("--cancel shop T t.eif sqlite:copy.db C"), 3) << Messages;
  EXPECT_NE(Messages.find("export T: 0 %\n"), std::string::npos) << Messages;
  EXPECT_TRUE(Messages.ends_with("Cancelled\n")) << Messages;
  EXPECT_NE(Folder.Read("t.eif").find("[DATA]\r\n [FIELDS]\r\n  ID\r\n  NAME\r\n [RECORDS]\r\n  <1|'a'>\r\n"),
            std::string::npos);
  EXPECT_EQ(SQL("copy.db", Rows), "9,kept\n") << "a cancelled import changes nothing";
  EXPECT_EQ(Example("shop T t.eif sqlite:copy.db C"), 0) << Messages;
  EXPECT_EQ(SQL("copy.db", Rows), "1,a\n2,b\n3,NULL\n");
  EXPECT_EQ(Folder.Read("out"), "export: 3 rows\nt.eif: section 'T', TableData, version 200\nimport: 3 rows\n");

  const struct {
    const char* Arguments;
    int ExitCode;
    const char* Message;
  } Cases[] = {
      {"shop NOPE t.eif", 1, "(TableName:'NOPE')"},
      {"--config none.toml shop T t.eif", 1, "EConfigurationError: Cannot read the configuration 'none.toml'"},
      {"sqlite:none.db T t.eif", 1, "EDatabaseError: The database file"},
      {"shop T no/such/t.eif", 1, "EFCreateError: Cannot create file 'no/such/t.eif'"},
      {"shop T", 2, "export_table [--config FILE]"},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Example(Case.Arguments), Case.ExitCode) << Case.Arguments;
    EXPECT_NE(Messages.find(Case.Message), std::string::npos) << Messages;
  }
}

TEST_F(CPlatform, FailuresAreTexts) {
  VelkrundOperation* Import = VelkrundCreateOperation(ImportTable, nullptr);
  VelkrundOperation* Export = VelkrundCreateOperation("tuoEXPORTtabledatainterface", nullptr);
  ASSERT_TRUE(Import && Export) << VelkrundLastError();
  VelkrundFile* File = VelkrundOpenFile((Folder / "new.eif").c_str(), VELKRUND_CREATE);
  ASSERT_TRUE(File) << VelkrundLastError();
  VelkrundManager* const Manager = VelkrundCreateManager(std::data({VelkrundCallbacks(VELKRUND_CALLBACKS_INIT)}));
  ASSERT_TRUE(Manager) << VelkrundLastError();
  VelkrundSectionInfo Section = VELKRUND_SECTION_INFO_INIT;
  VelkrundPropertyInfo Property = VELKRUND_PROPERTY_INFO_INIT;
  VelkrundTableInfo Table = VELKRUND_TABLE_INFO_INIT;
  VelkrundCallbacks Callbacks = VELKRUND_CALLBACKS_INIT;
  VelkrundListener Listener = VELKRUND_LISTENER_INIT;
  VelkrundError Error = VELKRUND_ERROR_INIT;
  std::int64_t Number = 0;
  const auto Sized = [](auto& Struct, std::size_t Size) {
    Struct.Size = Size;
    return &Struct;
  };
  const std::string Existing = Folder.Write("existing.eif", "kept");
  const struct {
    std::function<std::int64_t()> Call;
    const char* Error;
    std::int64_t Failure = 0;
  } Cases[] = {
      {[&] { return VelkrundCreateOperation("TNone", nullptr) != nullptr; },
       "EPropertyError:There is no operation class 'TNone'; VelkrundClassName tells what there is"},
      {[&] { return VelkrundCreateOperation("TUOImportTableDateInterface", nullptr) != nullptr; },
       "EPropertyError:There is no operation class 'TUOImportTableDateInterface'; did you mean "
       "'TUOImportTableDataInterface'?"},
      {[&] { return VelkrundSetProperty(Import, "Nope", "1"); },
       "EPropertyError:TUOImportTableDataInterface has no property 'Nope'"},
      {[&] { return VelkrundSetProperty(Import, "Append", "maybe"); },
       "EPropertyError:'maybe' is not a value for property 'Append'; it takes true, false"},
      {[&] { return VelkrundSetProperty(Import, "Apend", "true"); },
       "EPropertyError:TUOImportTableDataInterface has no property 'Apend'; did you mean 'Append'?"},
      {[&] { return VelkrundSetProperty(Import, "LastError", "x"); },
       "EPropertyError:Property 'LastError' is read-only"},
      {[&] { return VelkrundSetFile(Export, "Table", File); }, "EPropertyError:Property 'Table' takes no file"},
      {[&] { return static_cast<std::int64_t>(VelkrundGetProperty(Import, "Source", nullptr, 0)); },
       "EPropertyError:Property 'Source' is an object, which has no text"},
      {[&] { return VelkrundSetList(Import, "TableName", nullptr, 0); },
       "EPropertyError:Property 'TableName' takes another type"},
      {[&] { return VelkrundDescribeSection(File, 0, &Section); }, "EListError:"},
      {[&] { return VelkrundDescribeSection(File, -1, &Section); }, "EListError:"},
      {[&] { return VelkrundDescribeProperty(ImportTable, 99, &Property); }, "EListError:Property 99 is out of bounds"},
      {[&] { return VelkrundDescribeProperty("TNone", 0, &Property); }, "EPropertyError:There is no operation class"},
      {[&] { return VelkrundClassName(-1) != nullptr; }, "EListError:Class -1 is out of bounds"},
      {[&] { return VelkrundGetInteger(Import, "TableName", &Number); },
       "EPropertyError:Property 'TableName' is no number"},
      {[&] { return VelkrundTableCount(Import); }, "EPropertyError:A TUOImportTableDataInterface finds no tables", -1},
      {[&] { return VelkrundDescribeTable(Import, 0, &Table); }, "EPropertyError:A TUOImportTableDataInterface finds"},
      {[&] { return VelkrundAddObject(Import, VELKRUND_VIEW, "V"); },
       "EPropertyError:A TUOImportTableDataInterface collects no objects; a TUORecreateContainerInterface does"},
      {[&] { return VelkrundClearObjects(Import); },
       "EPropertyError:A TUOImportTableDataInterface collects no objects"},
      {[&] { return VelkrundAddObject(nullptr, VELKRUND_VIEW, "V"); }, "EAccessViolation:The argument Operation"},
      {[&] { return VelkrundClearObjects(nullptr); }, "EAccessViolation:The argument Operation is NULL"},
      {[&] { return VelkrundOpenFile(Existing.c_str(), VELKRUND_CREATE_NEW) != nullptr; },
       "EFCreateError:Cannot create"},
      {[&] { return VelkrundOpenFile(Existing.c_str(), 4) != nullptr; }, "EEIError:There is no file mode 4"},
      // What is not there.
      {[&] { return VelkrundSectionCount(nullptr); }, "EAccessViolation:The argument File is NULL", -1},
      {[&] { return VelkrundOpenFile(nullptr, VELKRUND_READ) != nullptr; }, "EAccessViolation:The argument FileName"},
      {[&] { return VelkrundDescribeSection(nullptr, 0, &Section); }, "EAccessViolation:The argument File is NULL"},
      {[&] { return VelkrundPropertyCount(nullptr); }, "EAccessViolation:The argument ClassName is NULL"},
      {[&] { return VelkrundDescribeProperty(ImportTable, 0, nullptr); }, "EAccessViolation:The argument Info is NULL"},
      {[&] { return VelkrundCreateManager(nullptr) != nullptr; }, "EAccessViolation:The argument Callbacks is NULL"},
      {[&] { return VelkrundStartOperationProgress(nullptr, "", 1); }, "EAccessViolation:The argument Manager is NULL"},
      {[&] { return VelkrundStartOperationProgress(Manager, nullptr, 1); }, "EAccessViolation:The argument Name"},
      {[&] { return VelkrundCreateOperation(nullptr, nullptr) != nullptr; }, "EAccessViolation:The argument ClassName"},
      {[&] { return VelkrundSetProperty(nullptr, "Append", "1"); }, "EAccessViolation:The argument Operation is NULL"},
      {[&] { return VelkrundSetProperty(Import, nullptr, "1"); }, "EAccessViolation:The argument Name is NULL"},
      {[&] { return VelkrundSetProperty(Import, "Append", nullptr); }, "EAccessViolation:The argument Text is NULL"},
      {[&] { return VelkrundSetList(Import, "Fields", nullptr, 1); }, "EAccessViolation:The argument Items is NULL"},
      {[&] { return VelkrundSetFile(Import, nullptr, File); }, "EAccessViolation:The argument Name is NULL"},
      {[&] { return static_cast<std::int64_t>(VelkrundGetProperty(Import, "Append", nullptr, 9)); },
       "EAccessViolation:The argument Buffer is NULL"},
      {[&] { return static_cast<std::int64_t>(VelkrundGetProperty(nullptr, nullptr, nullptr, 0)); },
       "EAccessViolation:The argument Operation is NULL"},
      {[&] { return static_cast<std::int64_t>(VelkrundGetProperty(Import, nullptr, nullptr, 0)); },
       "EAccessViolation:The argument Name is NULL"},
      {[&] { return VelkrundGetInteger(Import, nullptr, nullptr); }, "EAccessViolation:The argument Name is NULL"},
      {[&] { return VelkrundGetInteger(Import, "Rows", nullptr); }, "EAccessViolation:The argument Value is NULL"},
      {[&] { return VelkrundSetListener(nullptr, &Listener); }, "EAccessViolation:The argument Operation is NULL"},
      {[&] { return VelkrundExecute(nullptr); }, "EAccessViolation:The argument Operation is NULL"},
      {[&] { return VelkrundLastEnd(nullptr); }, "EAccessViolation:The argument Operation is NULL", VELKRUND_NOT_RUN},
      {[&] { return VelkrundTableCount(nullptr); }, "EAccessViolation:The argument Operation is NULL", -1},
      {[&] { return VelkrundGetError(Import, nullptr); }, "EAccessViolation:The argument Error is NULL"},
      // Sizes that nobody has set.
      {[&] { return VelkrundGetError(Import, Sized(Error, 0)); }, "EAccessViolation:The field Size of Error is 0"},
      {[&] { return VelkrundDescribeProperty(ImportTable, 0, Sized(Property, sizeof Property - 1)); },
       "EAccessViolation:The field Size of Info is"},
      {[&] { return VelkrundCreateManager(Sized(Callbacks, 99999)) != nullptr; },
       "EAccessViolation:The field Size of Callbacks is 99999"},
      {[&] { return VelkrundSetListener(Import, Sized(Listener, 8)); }, "EAccessViolation:The field Size of Listener"},
      {[&] { return VelkrundOpenFile("nowhere.eif", VELKRUND_READ) != nullptr; }, "EEIError:"},
      {[&] { return VelkrundExecute(Import); }, "EAccessViolation:Access violation: the source"},
      {[&] { return VelkrundInstallPlatform(nullptr); }, "Exception:A platform is installed already"},
      {[&] { return VelkrundRemovePlatform(); },
       "Exception:The platform is in use: 3 operations or files have to be destroyed or closed first"},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Case.Call(), Case.Failure) << Case.Error;
    EXPECT_TRUE(std::string_view(VelkrundLastError()).starts_with(Case.Error)) << VelkrundLastError();
  }
  EXPECT_EQ(Folder.Read("existing.eif"), "kept");
  EXPECT_EQ(VelkrundSectionCount(File), 0);
  EXPECT_STREQ(VelkrundLastError(), "");
  EXPECT_TRUE(VelkrundSetFile(Export, "Target", File));
  EXPECT_TRUE(VelkrundCloseFile(File));
  EXPECT_TRUE(VelkrundSetProperty(Export, "DatabaseName", "shop") && VelkrundSetProperty(Export, "TableName", "T") &&
              VelkrundSetProperty(Export, "SectionName", "S"));
  EXPECT_TRUE(VelkrundExecute(Export)) << "a file stays usable while an operation has it: " << VelkrundLastError();
  // Whatever order they go in, NULL among them.
  VelkrundOperation* Managed = VelkrundCreateOperation(ImportTable, Manager);
  EXPECT_TRUE(VelkrundDestroyManager(Manager) && VelkrundDestroyManager(nullptr) && VelkrundCloseFile(nullptr));
  EXPECT_FALSE(VelkrundExecute(Managed));
  EXPECT_TRUE(VelkrundDestroyOperation(Import) && VelkrundDestroyOperation(Export) &&
              VelkrundDestroyOperation(Managed) && VelkrundDestroyOperation(nullptr));
}

TEST_F(CPlatform, PropertiesAreListedAndTravelAsTexts) {
  std::string Types;
  for (std::int32_t Class = 0; Class < VelkrundClassCount(); ++Class) {
    if (std::string_view(VelkrundClassName(Class)) != "TUOExportTableDataInterface") continue;
    for (std::int32_t Index = 0; Index < VelkrundPropertyCount(VelkrundClassName(Class)); ++Index) {
      VelkrundPropertyInfo Info = VELKRUND_PROPERTY_INFO_INIT;
      ASSERT_TRUE(VelkrundDescribeProperty(VelkrundClassName(Class), Index, &Info));
      EXPECT_STRNE(Info.Help, "") << Info.Name;
      Types += Info.Name + std::string(":") + std::to_string(Info.Type) + (Info.ReadOnly ? "r" : "") + Info.Choices;
      Types += ' ';
    }
  }
  EXPECT_EQ(Types,
            "DatabaseName:2 ShowProgress:0 LastError:2r Target:6 SectionName:2 ReleaseVersion:3rv17,rv20 "
            "Encoding:3ansi,utf8 TableName:2 Table:6 Fields:4 KeyOrder:0 Rows:1r ValuesChanged:1r ");

  VelkrundOperation* Export = VelkrundCreateOperation("TUOExportTableDataInterface", nullptr);
  const char* const Names[] = {"A,B", "C"};
  EXPECT_TRUE(VelkrundSetProperty(Export, "ShowProgress", "1") && VelkrundSetProperty(Export, "Encoding", "0") &&
              VelkrundSetProperty(Export, "tablename", "имя") && VelkrundSetList(Export, "Fields", Names, 2));
  EXPECT_EQ(Get(Export, "ShowProgress") + Get(Export, "Encoding") + Get(Export, "TableName") + Get(Export, "Fields"),
            "5:true5:ansi7:имя6:A,B,C");
  EXPECT_EQ(Get(Export, "Fields", 3), "6:A,");
  EXPECT_TRUE(VelkrundDestroyOperation(Export));
}

TEST_F(CPlatform, MessageBoxHookAnswers) {
  VelkrundSetMessageBox(&Answer);
  const std::string FileName = Folder.Write(
      "a,b.eif",
      "[SECTION]\rName=s\rType=TableData\rVersion=200\rTableName=NOPE\r[DATA]\r[FIELDS]\r[RECORDS]\r[END]\r");
  const struct {
    std::int32_t Answer, Result;
    const char* Error;
  } Cases[] = {{6, 1, ""}, {7, 0, "EEIError:Can not import table data"}, {0, 0, "EEIError:Can not import table data"}};
  for (const auto& Case : Cases) {
    VelkrundOperation* Import = VelkrundCreateOperation(ImportFiles, nullptr);
    const char* const Files[] = {FileName.c_str()};
    ASSERT_TRUE(VelkrundSetProperty(Import, "DatabaseName", "shop") && VelkrundSetList(Import, "Files", Files, 1));
    HookAnswer = Case.Answer, Asked.clear();
    EXPECT_EQ(VelkrundExecute(Import), Case.Result);
    EXPECT_TRUE(std::string_view(VelkrundLastError()).starts_with(Case.Error)) << VelkrundLastError();
    EXPECT_EQ(std::string_view(VelkrundLastError()).find("Nobody can be asked") != std::string_view::npos,
              Case.Answer == 0);
    EXPECT_NE(Asked.find(u"(TableName:'NOPE')"), std::u16string::npos);
    EXPECT_TRUE(VelkrundDestroyOperation(Import));
  }
}

TEST_F(CPlatform, HostsDecideAboutStructuresThatExist) {
  const auto Write = [&](const char* Name, const std::string& Lines) {
    return Folder.Write(Name,
                        "[SECTION]\r\nName = s\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\n"
                        "ObjectName = S\r\nTableName = \r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n" +
                            Lines + "[END]\r\n");
  };
  const auto Import = [&](const std::string& FileName, const char* Existing) {
    VelkrundFile* File = VelkrundOpenFile(FileName.c_str(), VELKRUND_READ);
    VelkrundOperation* Operation = VelkrundCreateOperation("TUOImportDSPStructureInterface", nullptr);
    EXPECT_TRUE(VelkrundSetProperty(Operation, "DatabaseName", "shop") && VelkrundSetFile(Operation, "Source", File) &&
                VelkrundSetProperty(Operation, "OverwriteExisting", Existing))
        << VelkrundLastError();
    const std::int32_t Result = VelkrundExecute(Operation);
    std::string Outcome = std::to_string(Result) + VelkrundLastError();
    EXPECT_TRUE(VelkrundDestroyOperation(Operation) && VelkrundCloseFile(File));
    return Outcome.substr(0, Outcome.find(':'));
  };
  const std::string Old = Write("old.eif", " [REMARKS]\r\n  old\r\n [TREE]\r\n  a\r\n  b\r\n");
  const std::string New = Write("new.eif", " [REMARKS]\r\n  new\r\n [TREE]\r\n  b:DELETED\r\n");
  constexpr std::int32_t NoHook = -1;
  const struct {
    const char* Existing;
    std::int32_t Answer;
    const char *Outcome, *Remarks;
    std::uint32_t Flags;  // of the question; 0: none is asked
  } Cases[] = {
      {"ask", NoHook, "0EQuestionUnanswered", "old\n", 0},
      {"ask", 0, "0EQuestionUnanswered", "old\n", 3},
      {"ask", 1, "0EQuestionUnanswered", "old\n", 3},
      {"ask", 2, "0", "old\n", 3},
      {"ask", 6, "1", "new\n", 3},
      {"ask", 7, "1", "old\n", 3},
      {"skip", NoHook, "1", "old\n", 0},
      {"replace", NoHook, "1", "new\n", 0},
      {"update", NoHook, "1", "new\n", 0},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(Import(Old, "replace"), "1");
    EXPECT_TRUE(VelkrundSetMessageBox(Case.Answer == NoHook ? nullptr : &Answer));
    HookAnswer = Case.Answer, Asked.clear(), AskedFlags = 0;
    EXPECT_EQ(Import(New, Case.Existing), Case.Outcome) << Case.Existing << Case.Answer;
    EXPECT_EQ(SQL("shop.db", "SELECT remarks FROM velkrund_structures"), Case.Remarks) << Case.Existing << Case.Answer;
    EXPECT_EQ(AskedFlags, Case.Flags);
    EXPECT_EQ(Asked.find(u"'S'") != std::u16string::npos, Case.Flags != 0);
    EXPECT_EQ(Asked.ends_with(u"\r\nYes: Replace\r\nNo: Skip"), Case.Flags != 0) << "what the answers mean";
  }
}

TEST_F(CPlatform, ObjectsThatNeedEachOtherAreCreatedAgain) {
  std::string Content;
  for (const auto& [Name, From] : {std::pair("V1", "V2"), {"V2", "T"}, {"BAD", "NOWHERE"}})
    Content += std::string("[SECTION]\r\nName = ") + Name +
               "\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 72\r\nObjectName = " + Name +
               "\r\nTableName = \r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n [REMARKS]\r\n  \r\n [TREE]\r\n"
               "  Layout:integer = 1\r\n  Name:string = '" +
               Name + "'\r\n  sqlite:integer = 1\r\n    L:string = 'SELECT * FROM \"" + From + "\"'\r\n[END]\r\n";
  const std::string FileName = Folder.Write("views.eif", Content);
  VelkrundFile* const File = VelkrundOpenFile(FileName.c_str(), VELKRUND_READ);
  for (std::int32_t Index = 0; Index < 3; ++Index) {
    VelkrundOperation* const Import = VelkrundCreateOperation("TUOImportDSPStructureInterface", nullptr);
    EXPECT_TRUE(VelkrundSetProperty(Import, "DatabaseName", "shop") && VelkrundSetFile(Import, "Source", File) &&
                VelkrundSetProperty(Import, "SectionNumber", std::to_string(Index).c_str()) && VelkrundExecute(Import))
        << VelkrundLastError();
    EXPECT_TRUE(VelkrundDestroyOperation(Import));
  }
  EXPECT_TRUE(VelkrundCloseFile(File));

  VelkrundOperation* const Container = VelkrundCreateOperation("TUORecreateContainerInterface", nullptr);
  ASSERT_TRUE(VelkrundSetProperty(Container, "DatabaseName", "shop") &&
              VelkrundSetProperty(Container, "ContinueOnError", "false"));
  EXPECT_FALSE(VelkrundAddObject(Container, 10, "T"));
  EXPECT_TRUE(
      std::string_view(VelkrundLastError()).starts_with("EPropertyError:Nobody creates objects of the type 10 "));
  EXPECT_FALSE(VelkrundAddObject(Container, VELKRUND_VIEW, nullptr));
  EXPECT_TRUE(VelkrundAddObject(Container, VELKRUND_VIEW, "V1") && VelkrundAddObject(Container, VELKRUND_VIEW, "v2"));
  EXPECT_TRUE(VelkrundExecute(Container)) << VelkrundLastError();
  EXPECT_EQ(SQL("shop.db", "SELECT count(*) FROM V1"), "3\n");
  EXPECT_TRUE(VelkrundClearObjects(Container));
  EXPECT_EQ(Get(Container, "Count"), "2:0");
  EXPECT_TRUE(VelkrundAddObject(Container, VELKRUND_VIEW, "BAD"));
  EXPECT_FALSE(VelkrundExecute(Container));
  EXPECT_NE(std::string_view(VelkrundLastError()).find("BAD;"), std::string_view::npos) << VelkrundLastError();
  EXPECT_TRUE(VelkrundDestroyOperation(Container));
}

}  // namespace
}  // namespace velkrund::tests
