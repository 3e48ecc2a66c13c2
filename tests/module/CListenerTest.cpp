#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "tests/module/CInterface.h"

namespace velkrund::tests {
namespace {

/// What a host keeps behind the user data: what it was told, and what it answers.
struct THost {
  VelkrundOperation* Operation = nullptr;
  std::vector<std::string> Names = {}, Log = {};
  std::string Question = {};
  std::int32_t BoxAnswer = 0, Stop = 0;
  std::int64_t Reached = 0;
  std::function<void()> Call = {};  // once, from within the first progress

  VelkrundListener Listener() {
    VelkrundListener Result = VELKRUND_LISTENER_INIT;
    Result.UserData = this;
    Result.Progress = [](void* This, std::int64_t Current, std::int64_t Total, const char* Name) {
      THost& Host = *static_cast<THost*>(This);
      Host.Names.emplace_back(Name);
      Host.Reached = Total > 0 ? Current * 100 / Total : 0;
      if (const auto Now = std::exchange(Host.Call, nullptr)) Now();
    };
    Result.Cancel = [](void* This) { return static_cast<THost*>(This)->Stop; };
    Result.Log = [](void* This, std::int32_t Level, const char* Message) {
      static_cast<THost*>(This)->Log.push_back(std::to_string(Level) + Message);
    };
    Result.Ask = [](void* This, const char* Text, const char*, std::uint32_t) {
      static_cast<THost*>(This)->Question = Text;
      return static_cast<THost*>(This)->BoxAnswer;
    };
    return Result;
  }
};

class CListener : public CPlatform {
 protected:
  VelkrundOperation* Make(const char* ClassName, const std::vector<std::pair<const char*, std::string>>& Properties,
                          VelkrundManager* Manager = nullptr) {
    VelkrundOperation* Result = VelkrundCreateOperation(ClassName, Manager);
    for (const auto& [Name, Text] : Properties)
      EXPECT_TRUE(VelkrundSetProperty(Result, Name, Text.c_str())) << VelkrundLastError();
    return Result;
  }
  std::int64_t Number(VelkrundOperation* Operation, const char* Name) {
    std::int64_t Value = -99;
    EXPECT_TRUE(VelkrundGetInteger(Operation, Name, &Value)) << VelkrundLastError();
    return Value;
  }
};

TEST_F(CListener, HearsAnswersAndStopsInUtf8) {
  SQL("shop.db", "CREATE TABLE \"таблица\" AS SELECT * FROM T");
  THost Host;
  const VelkrundListener Listener = Host.Listener();
  VelkrundOperation* Export = Make("TJobExportTablesInterface",
                                   {{"DatabaseName", "shop"}, {"Tables", "таблица"}, {"FileName", Folder / "t.eif"}});
  EXPECT_EQ(VelkrundLastEnd(Export), VELKRUND_NOT_RUN);
  ASSERT_TRUE(VelkrundSetListener(Export, &Listener)) << VelkrundLastError();
  EXPECT_TRUE(VelkrundExecute(Export)) << VelkrundLastError();
  EXPECT_NE(std::find(Host.Names.begin(), Host.Names.end(), "таблица"), Host.Names.end());
  EXPECT_EQ(Host.Reached, 100);
  EXPECT_EQ(Number(Export, "Rows"), 3);
  EXPECT_GT(Number(Export, "Bytes"), 0);
  // The file's section is there now: the listener is asked, before the message box of the process.
  EXPECT_TRUE(VelkrundSetMessageBox(&Answer));
  const struct {
    std::int32_t Own, Box, Stop;
    VelkrundEnd End;
    bool IsBoxAsked;
    std::int64_t Done, LeftOut;
  } Cases[] = {
      {6, 2, 0, VELKRUND_DONE, false, 1, 0},      {7, 2, 0, VELKRUND_DONE, false, 0, 1},
      {2, 6, 0, VELKRUND_CANCELLED, false, 0, 0}, {0, 6, 0, VELKRUND_DONE, true, 1, 0},
      {0, 0, 0, VELKRUND_FAILED, true, 0, 0},     {6, 6, 1, VELKRUND_CANCELLED, false, 0, 0},
  };
  for (const auto& Case : Cases) {
    Host.BoxAnswer = Case.Own, Host.Stop = Case.Stop, HookAnswer = Case.Box, Asked.clear();
    EXPECT_EQ(VelkrundExecute(Export), Case.End == VELKRUND_DONE);
    EXPECT_EQ(VelkrundLastEnd(Export), Case.End) << Case.Own << Case.Box;
    EXPECT_EQ(*VelkrundLastError() != '\0', Case.End == VELKRUND_FAILED) << VelkrundLastError();
    EXPECT_EQ(!Asked.empty(), Case.IsBoxAsked) << Case.Own << Case.Box;
    EXPECT_EQ(Number(Export, "SectionsDone"), Case.Done) << Case.Own << Case.Box;
    EXPECT_EQ(Number(Export, "SectionsLeftOut"), Case.LeftOut) << Case.Own << Case.Box;
  }
  EXPECT_NE(Host.Question.find("таблица"), std::string::npos) << Host.Question;
  // A listener that was taken away hears nothing.
  EXPECT_TRUE(VelkrundSetListener(Export, nullptr) && VelkrundSetProperty(Export, "ExistingSections", "add"));
  Host.Names.clear();
  EXPECT_TRUE(VelkrundExecute(Export)) << VelkrundLastError();
  EXPECT_TRUE(Host.Names.empty());
  EXPECT_TRUE(VelkrundDestroyOperation(Export));
}

TEST_F(CListener, IsHeardBesideAManager) {
  static std::int32_t Shown, Logged;
  Shown = Logged = 0;
  VelkrundCallbacks Callbacks = VELKRUND_CALLBACKS_INIT;
  Callbacks.Progress = [](std::int32_t Current, std::int32_t, std::int32_t, std::int32_t, const VelkrundChar*,
                          const VelkrundChar*) { Shown = Current; };
  Callbacks.LevelLog = [](const VelkrundChar*, std::int32_t) { ++Logged; };
  VelkrundManager* Manager = VelkrundCreateManager(&Callbacks);
  THost Host;
  const VelkrundListener Listener = Host.Listener();
  SQL("shop.db", "CREATE TABLE U (N TEXT); INSERT INTO U VALUES ('â')");
  VelkrundOperation* Export = Make("TJobExportTablesInterface",
                                   {{"DatabaseName", "shop"},
                                    {"FileName", Folder / "t.eif"},
                                    {"ReleaseVersion", "rv17"},
                                    {"OnError", "continue"},
                                    {"ShowProgress", "true"}},
                                   Manager);
  EXPECT_TRUE(VelkrundSetListener(Export, &Listener) && VelkrundStartOperationProgress(Manager, "export", 100));
  EXPECT_FALSE(VelkrundExecute(Export));
  EXPECT_EQ(Shown, 100);
  EXPECT_EQ(Host.Reached, 100);
  EXPECT_EQ(Logged, 1);
  ASSERT_EQ(Host.Log.size(), 1U);
  EXPECT_TRUE(Host.Log[0].starts_with("1A text has characters")) << Host.Log[0];
  EXPECT_EQ(Number(Export, "SectionsFailed"), 1);
  EXPECT_TRUE(VelkrundDestroyOperation(Export) && VelkrundDestroyManager(Manager));
}

TEST_F(CListener, MustNotTouchWhatIsRunning) {
  VelkrundManager* Manager = VelkrundCreateManager(std::data({VelkrundCallbacks(VELKRUND_CALLBACKS_INIT)}));
  VelkrundFile* File = VelkrundOpenFile((Folder / "t.eif").c_str(), VELKRUND_CREATE_NEW);
  VelkrundOperation* const Other = VelkrundCreateOperation("TUOExportTableDataInterface", nullptr);
  VelkrundOperation* const Running = Make(
      "TUOExportTableDataInterface", {{"DatabaseName", "shop"}, {"TableName", "T"}, {"SectionName", "S"}}, Manager);
  EXPECT_TRUE(VelkrundSetFile(Running, "Target", File));
  THost Host;
  const VelkrundListener Listener = Host.Listener();
  EXPECT_TRUE(VelkrundSetListener(Running, &Listener));
  char Buffer[9];
  std::int64_t Value = 0;
  VelkrundError Error = VELKRUND_ERROR_INIT;
  VelkrundSectionInfo Section = VELKRUND_SECTION_INFO_INIT;
  const std::function<std::int64_t()> Refused[] = {
      [&] { return VelkrundExecute(Running); },
      [&] { return VelkrundExecute(Other); },
      [&] { return VelkrundDestroyOperation(Running); },
      [&] { return VelkrundSetProperty(Running, "TableName", "U"); },
      [&] { return VelkrundSetList(Running, "Fields", nullptr, 0); },
      [&] { return VelkrundSetFile(Running, "Target", nullptr); },
      [&] { return VelkrundSetListener(Running, nullptr); },
      [&] { return static_cast<std::int64_t>(VelkrundGetProperty(Running, "LastError", Buffer, sizeof Buffer)); },
      [&] { return VelkrundGetInteger(Running, "Rows", &Value); },
      [&] { return VelkrundGetError(Running, &Error); },
      [&] { return VelkrundLastEnd(Running) - VELKRUND_NOT_RUN; },
      [&] { return VelkrundCloseFile(File); },
      [&] { return VelkrundSectionCount(File) + 1; },
      [&] { return VelkrundDescribeSection(File, 0, &Section); },
      [&] { return VelkrundDestroyManager(Manager); },
      [&] { return VelkrundStartOperationProgress(Manager, "again", 1); },
      [&] { return VelkrundSetMessageBox(nullptr); },
      [&] { return VelkrundRemovePlatform(); },
      [&] { return VelkrundInstallPlatform(nullptr); },
  };
  for (std::size_t Call = 0; Call < std::size(Refused); ++Call) {
    bool WasCalled = false;
    Host.Call = [&] {
      WasCalled = true;
      EXPECT_EQ(Refused[Call](), 0) << Call;
      EXPECT_STRNE(VelkrundLastError(), "") << Call;
      EXPECT_TRUE(VelkrundSetProperty(Other, "TableName", "T")) << "others may be touched";
    };
    EXPECT_TRUE(VelkrundExecute(Running)) << Call << VelkrundLastError();
    EXPECT_TRUE(WasCalled) << Call;
  }
  EXPECT_EQ(VelkrundSectionCount(File), static_cast<std::int32_t>(std::size(Refused)));
  EXPECT_TRUE(VelkrundCloseFile(File) && VelkrundDestroyManager(Manager));
  EXPECT_TRUE(VelkrundDestroyOperation(Running) && VelkrundDestroyOperation(Other));
}

TEST_F(CListener, ErrorsAreToldInTheirParts) {
  VelkrundError Error = VELKRUND_ERROR_INIT;
  EXPECT_FALSE(VelkrundSetProperty(nullptr, "", ""));
  EXPECT_TRUE(VelkrundGetError(nullptr, &Error));
  EXPECT_STREQ(Error.Class, "EAccessViolation");
  EXPECT_STREQ(Error.Code, "other");
  EXPECT_STREQ(VelkrundLastError(), "EAccessViolation:The argument Operation is NULL") << "asking changes nothing";

  const std::string FileName =
      Folder.Write("bad.eif",
                   "[SECTION]\r\nName = s\r\nType = TableData\r\nVersion = 200\r\nTableName = T\r\n[DATA]\r\n"
                   " [FIELDS]\r\n  ID\r\n [RECORDS]\r\n  <1>\r\n  <1||\r\n[END]\r\n");
  VelkrundFile* File = VelkrundOpenFile(FileName.c_str(), VELKRUND_READ);
  VelkrundOperation* Import = Make("TUOImportTableDataInterface", {{"DatabaseName", "shop"}});
  EXPECT_TRUE(VelkrundSetFile(Import, "Source", File));
  EXPECT_FALSE(VelkrundExecute(Import));
  EXPECT_EQ(VelkrundLastEnd(Import), VELKRUND_FAILED);
  for (VelkrundOperation* const Operation : {static_cast<VelkrundOperation*>(nullptr), Import}) {
    if (Operation) VelkrundClassCount();  // the thread's error is gone, that of the operation is not
    EXPECT_TRUE(VelkrundGetError(Operation, &Error)) << VelkrundLastError();
    EXPECT_STREQ(Error.Class, "EDicUtilError");
    EXPECT_STREQ(Error.Code, "record");
    EXPECT_EQ(Error.File, FileName);
    EXPECT_EQ(Error.Line, 11);
    EXPECT_STREQ(Error.Section, "s");
    EXPECT_STREQ(Error.Table, "T");
    EXPECT_EQ(Error.Record, 2);
    EXPECT_GE(Error.ContextCount, 1U);
    EXPECT_NE(std::string_view(Error.Context[0]).find("bad.eif"), std::string_view::npos) << Error.Context[0];
    EXPECT_EQ(std::string_view(Error.Message).find("bad.eif"), std::string_view::npos) << "the innermost alone";
  }
  // A host that knows fewer fields, or more, than the library.
  struct TNewer {
    VelkrundError Known = VELKRUND_ERROR_INIT;
    const char* Later = "untouched";
  } Newer;
  Newer.Known.Size = sizeof Newer;
  EXPECT_TRUE(VelkrundGetError(Import, &Newer.Known));
  EXPECT_STREQ(Newer.Known.Code, "record");
  EXPECT_STREQ(Newer.Later, "untouched");
  EXPECT_EQ(Newer.Known.Size, sizeof Newer);

  VelkrundClassCount();
  EXPECT_TRUE(VelkrundGetError(nullptr, &Error));
  EXPECT_STREQ(Error.Class, "");
  EXPECT_STREQ(Error.Code, "");
  EXPECT_TRUE(VelkrundCloseFile(File) && VelkrundDestroyOperation(Import));

  VelkrundOperation* Job = Make("TJobImportTablesInterface", {{"DatabaseName", "shop"}});
  EXPECT_FALSE(VelkrundExecute(Job));
  EXPECT_EQ(VelkrundLastEnd(Job), VELKRUND_WRONG_SETTINGS);
  EXPECT_TRUE(VelkrundGetError(Job, &Error));
  EXPECT_STREQ(Error.Code, "settings");
  EXPECT_TRUE(VelkrundDestroyOperation(Job));
}

TEST_F(CListener, TablesAreListedWithWhatIsKnown) {
  SQL("shop.db", "CREATE VIEW V AS SELECT * FROM T");
  VelkrundOperation* Job = Make("TJobDatabaseInfoInterface", {{"DatabaseName", "shop"}});
  EXPECT_EQ(VelkrundTableCount(Job), 0);
  EXPECT_TRUE(VelkrundExecute(Job)) << VelkrundLastError();
  std::string Found;
  for (std::int32_t Index = 0; Index < VelkrundTableCount(Job); ++Index) {
    VelkrundTableInfo Info = VELKRUND_TABLE_INFO_INIT;
    EXPECT_TRUE(VelkrundDescribeTable(Job, Index, &Info)) << VelkrundLastError();
    EXPECT_EQ(Info.Bytes > 0, Info.Rows >= 0) << Info.Name;
    Found += std::string(Info.Name) + " " + Info.Kind + " " + std::to_string(Info.Rows) + Info.Problem + ", ";
  }
  EXPECT_EQ(Found, "T table 3, V view -1, ");
  EXPECT_EQ(Number(Job, "Tables"), 2);
  EXPECT_EQ(Number(Job, "CatalogueVersion"), -1);
  EXPECT_EQ(Number(Job, "ReadOnly"), 0);
  VelkrundTableInfo Info = VELKRUND_TABLE_INFO_INIT;
  EXPECT_FALSE(VelkrundDescribeTable(Job, 2, &Info));
  EXPECT_TRUE(VelkrundDestroyOperation(Job));
}

}  // namespace
}  // namespace velkrund::tests
