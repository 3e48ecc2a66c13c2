#include "tests/module/CInterface.h"

namespace velkrund::tests {
namespace {

TEST_F(CPlatform, JobsAskBeforeTheyChangeAndForgetAfterwards) {
  VelkrundOperation* Job = VelkrundCreateOperation("TJobImportTablesInterface", nullptr);
  const auto Set = [&](const char* Name, const std::string& Text) {
    EXPECT_TRUE(VelkrundSetProperty(Job, Name, Text.c_str())) << VelkrundLastError();
  };
  const auto Rows = [this] { return SQL("copy.db", "SELECT count(*) FROM C"); };
  Set("DatabaseName", "sqlite:" + Folder / "copy.db");
  Set("FileName",
      Folder.Write("t.eif",
                   "[SECTION]\r\nName = s\r\nType = TableData\r\nVersion = 200\r\nTableName = C\r\n[DATA]\r\n"
                   " [FIELDS]\r\n  ID\r\n [RECORDS]\r\n  <1>\r\n  <2>\r\n[END]\r\n"));
  constexpr std::int32_t NoHook = -1;
  const struct {
    std::int32_t Answer;
    const char *Existing, *Outcome, *Rows;
  } Cases[] = {
      {NoHook, "ask", "0EPolicyUnanswered", "1\n"},
      {0, "ask", "0EPolicyUnanswered", "1\n"},
      {1, "ask", "0EPolicyUnanswered", "1\n"},
      {2, "ask", "0", "1\n"},
      {7, "ask", "1", "1\n"},
      {NoHook, "skip", "1", "1\n"},
      {NoHook, "append", "1", "3\n"},
      {6, "ask", "1", "2\n"},
      {NoHook, "replace", "1", "2\n"},
      {2, "ask", "0", "2\n"},
  };
  for (const auto& Case : Cases) {
    EXPECT_TRUE(VelkrundSetMessageBox(Case.Answer == NoHook ? nullptr : &Answer));
    HookAnswer = Case.Answer, AskedFlags = 0;
    Set("ExistingRows", Case.Existing);
    std::string Outcome = std::to_string(VelkrundExecute(Job));
    Outcome += VelkrundLastError();
    EXPECT_EQ(Outcome.substr(0, Outcome.find(':')), Case.Outcome) << Case.Existing << Case.Answer;
    EXPECT_EQ(Rows(), Case.Rows) << Case.Existing << Case.Answer;
    EXPECT_EQ(AskedFlags, Case.Answer == NoHook ? 0U : 3U);
  }

  // Making databases is a setting of one run.
  Set("DatabaseName", "sqlite:" + Folder / "made.db");
  Set("CreateDatabase", "true");
  EXPECT_FALSE(VelkrundExecute(Job));
  EXPECT_TRUE(std::string_view(VelkrundLastError()).starts_with("EDatabaseError:There is no table 'C'"))
      << VelkrundLastError();
  Set("DatabaseName", "sqlite:" + Folder / "none.db");
  Set("CreateDatabase", "false");
  EXPECT_FALSE(VelkrundExecute(Job));
  EXPECT_NE(std::string_view(VelkrundLastError()).find("does not exist"), std::string_view::npos)
      << VelkrundLastError();
  EXPECT_TRUE(VelkrundDestroyOperation(Job));
}

std::int32_t PollsLeft = 0;
std::int32_t Shown = 0;
bool WentBack = false;
VelkrundOperation* RunningJob = nullptr;
bool ChangedWhileRunning = false;

TEST_F(CPlatform, ACancelledExportNeverSaysDone) {
  SQL("shop.db", "CREATE TABLE U AS SELECT * FROM T; CREATE TABLE V AS SELECT * FROM T");
  VelkrundCallbacks Callbacks = VELKRUND_CALLBACKS_INIT;
  Callbacks.Cancel = [] { return --PollsLeft < 0; };
  Callbacks.Progress = [](std::int32_t Current, std::int32_t, std::int32_t, std::int32_t, const VelkrundChar*,
                          const VelkrundChar*) {
    WentBack = WentBack || Current < Shown;
    Shown = Current;
    ChangedWhileRunning = ChangedWhileRunning || VelkrundSetProperty(RunningJob, "Tables", "T");
  };
  VelkrundManager* Manager = VelkrundCreateManager(&Callbacks);
  VelkrundStartOperationProgress(Manager, "export", 100);
  RunningJob = VelkrundCreateOperation("TJobExportTablesInterface", Manager);
  for (const auto& [Name, Text] : {std::pair("DatabaseName", std::string("shop")),
                                   {"FileName", Folder / "all.eif"},
                                   {"ExistingSections", "replace"},
                                   {"ShowProgress", "true"}})
    EXPECT_TRUE(VelkrundSetProperty(RunningJob, Name, Text.c_str())) << VelkrundLastError();
  bool IsDone = false;
  for (std::int32_t Polls = 0; !IsDone && Polls < 200; ++Polls) {
    PollsLeft = Polls;
    Shown = 0;
    IsDone = VelkrundExecute(RunningJob) != 0;
    EXPECT_STREQ(VelkrundLastError(), "") << Polls;
    EXPECT_EQ(VelkrundLastEnd(RunningJob), IsDone ? VELKRUND_DONE : VELKRUND_CANCELLED) << Polls;
    EXPECT_EQ(Get(RunningJob, "SectionsDone") == "2:3", IsDone) << Polls;
  }
  EXPECT_TRUE(IsDone);
  EXPECT_EQ(Shown, 100);
  EXPECT_FALSE(WentBack || ChangedWhileRunning);
  EXPECT_TRUE(VelkrundDestroyOperation(RunningJob) && VelkrundDestroyManager(Manager));
}

TEST_F(CPlatform, AnExportThatNobodyGoesOnWithIsFinished) {
  SQL("shop.db", "CREATE TABLE U (N TEXT); INSERT INTO U VALUES ('â'); CREATE TABLE V AS SELECT * FROM T");
  const auto Run = [this](const char* Tables, std::int32_t BoxAnswer) {
    EXPECT_TRUE(VelkrundSetMessageBox(&Answer));
    HookAnswer = BoxAnswer, Asked.clear();
    VelkrundOperation* Job = VelkrundCreateOperation("TJobExportTablesInterface", nullptr);
    for (const auto& [Name, Text] : {std::pair("DatabaseName", std::string("shop")),
                                     {"FileName", Folder / "all.eif"},
                                     {"Tables", Tables},
                                     {"ReleaseVersion", "rv17"},
                                     {"ExistingSections", "replace"}})
      EXPECT_TRUE(VelkrundSetProperty(Job, Name, Text.c_str())) << VelkrundLastError();
    std::string Result = std::to_string(VelkrundExecute(Job));
    Result += VelkrundLastError();
    EXPECT_TRUE(VelkrundDestroyOperation(Job));
    VelkrundFile* File = VelkrundOpenFile((Folder / "all.eif").c_str(), VELKRUND_READ);
    const std::int32_t Sections = VelkrundSectionCount(File);
    EXPECT_TRUE(VelkrundCloseFile(File));
    return std::to_string(Sections) + ":" + Result;
  };
  EXPECT_EQ(Run("T", 0), "1:1");
  for (const std::int32_t BoxAnswer : {0, 42, 7}) {
    // T takes the place of the one that is there; V is not reached.
    EXPECT_EQ(Run("T,U,V", BoxAnswer).substr(0, 37), "1:0EDicUtilError:A text has character");
    EXPECT_NE(Asked.find(u"code page"), std::u16string::npos) << "the question says what has failed";
  }
  EXPECT_TRUE(std::string_view(Run("T,U,V", 6)).starts_with("2:0"));
}

}  // namespace
}  // namespace velkrund::tests
