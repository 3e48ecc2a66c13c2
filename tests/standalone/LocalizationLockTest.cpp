// Several connections at once write localized strings.

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "tests/standalone/LocalizationFixture.h"

namespace velkrund::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

class LocalizationLockTest : public LocalizationFixture {
 protected:
  LocalizationLockTest() { User.Write("S", "English", {{"S_a", "1"}}); }
  /// Whether a writer has the whole database.
  bool HasWhole() { return User.Connection().Dialect().RowLock(TRowLock::Stay).empty(); }
};

INSTANTIATE_TEST_SUITE_P(Engines, LocalizationLockTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(LocalizationLockTest, OthersAreRefusedAfterTheWaitingTime) {
  TStoreUser Other(Url, 100ms);
  User.Strings().Lock("S", "English");
  EXPECT_EQ(InfoOf([&] { Other.Strings().Lock("s_", "english"); }).Code, TErrorCode::DatabaseBusy);
  EXPECT_EQ(InfoOf([&] { Other.Strings().WriteString("S_a", "English", "x"); }).Code, TErrorCode::DatabaseBusy);
  EXPECT_EQ(InfoOf([&] {
              Other.Write("S", "Russian", {{"S_a", "2"}});
            }).Code,
            HasWhole() ? TErrorCode::DatabaseBusy : TErrorCode::Other);
  User.Strings().WriteString("S_new", "English", "3");
  EXPECT_EQ(InfoOf([&] { Other.Write("T", "Russian", {{"T_new", "4"}}); }).Code, TErrorCode::DatabaseBusy);
  EXPECT_EQ(InfoOf([&] { Other.Languages().DeleteLanguage("English"); }).Code, TErrorCode::DatabaseBusy);
  User.Strings().UnLock("S", "English");
  Other.Write("T", "Russian", {{"T_new", "4"}});
  EXPECT_THAT(User.Section("S", {"English", "Russian"}), ElementsAre(HasWhole() ? "a: 1 -" : "a: 1 2", "new: 3 -"));
  EXPECT_THAT(User.Section("T", {"Russian"}), ElementsAre("new: 4"));
  // A roll back lets go, too.
  User.Manager.Databases().StartTransaction(Url, TIsolationLevel::ReadCommitted);
  User.Strings().Lock("S", "English");
  User.Manager.Databases().RollbackTransaction(Url);
  Other.Write("S", "English", {{"S_a", "5"}});
  EXPECT_EQ(User.Strings().GetString("S_a", "English"), "5");
}

TEST_P(LocalizationLockTest, WhoWaitsSeesWhatTheOtherHasWritten) {
  constexpr int Count = 40;
  const auto Write = [&](const std::string& Text) {
    TStoreUser Own(Url);
    for (int I = 0; I < Count; ++I) {
      Own.Strings().Lock("S", "Russian");
      const std::string ID = "S_" + std::to_string(I);
      if (!Own.Strings().StringExist(ID, "Russian")) Own.Strings().WriteString(ID, "Russian", Text);
      Own.Strings().WriteString(ID + Text, "Russian", Text);
      Own.Strings().UnLock("S", "Russian");
    }
  };
  std::string Failure = "no error";
  std::thread Thread([&] { Failure = ErrorOf([&] { Write("x"); }); });
  Write("y");
  Thread.join();
  EXPECT_EQ(Failure, "no error");
  EXPECT_EQ(User.Rows("velkrund_strings"), 1 + 3 * Count);
  EXPECT_EQ(User.Rows("velkrund_texts"), 1 + 3 * Count);
}

TEST_P(LocalizationLockTest, AKilledProcessHoldsNothing) {
  int Pipe[2];
  ASSERT_EQ(pipe(Pipe), 0);
  const pid_t Child = fork();
  ASSERT_GE(Child, 0);
  if (Child == 0) {
    TStoreUser Own(Url);
    Own.Strings().Lock("S", "English");
    Own.Strings().WriteString("S_child", "English", "x");
    Own.Strings().StringExist("S_child", "Russian");  // hands over what is held back
    [[maybe_unused]] const auto Written = write(Pipe[1], "!", 1);
    while (true) pause();
  }
  char Sign = 0;
  ASSERT_EQ(read(Pipe[0], &Sign, 1), 1);
  kill(Child, SIGKILL);
  waitpid(Child, nullptr, 0);
  close(Pipe[0]);
  close(Pipe[1]);
  User.Write("S", "English", {{"S_b", "2"}});
  EXPECT_THAT(User.Section("S", {"English"}), ElementsAre("a: 1", "b: 2"));
}

TEST_P(LocalizationLockTest, ATextOfAStringThatIsDeletedMeanwhileIsNotLostSilently) {
  TStoreUser Other(Url, 100ms);
  User.Strings().Lock("S", "Russian");
  const TErrorCode Deletion = InfoOf([&] { Other.Strings().DeleteString("S_a"); }).Code;
  EXPECT_EQ(Deletion, HasWhole() ? TErrorCode::DatabaseBusy : TErrorCode::Other);
  User.Strings().WriteString("S_a", "Russian", "2");
  const std::string Unlocked = ErrorOf([&] { User.Strings().UnLock("S", "Russian"); });
  if (HasWhole())
    EXPECT_EQ(Unlocked, "no error");
  else
    EXPECT_THAT(Unlocked, HasSubstr("another connection has deleted strings of it"));
  EXPECT_EQ(User.Rows("velkrund_texts"), HasWhole() ? 2 : 0);
}

TEST_P(LocalizationLockTest, AReadOnlyConnectionReads) {
  User.Connection().Execute(GetParam().ReadOnly);
  EXPECT_THAT(User.Section("S", {"English"}), ElementsAre("a: 1"));
  EXPECT_NE(ErrorOf([&] { User.Write("S", "English", {{"S_b", "2"}}); }), "no error");
  EXPECT_NE(ErrorOf([&] { User.Strings().DeleteString("S_a"); }), "no error");
  EXPECT_NE(ErrorOf([&] { User.Languages().SetLanguage("Dutch", {}); }), "no error");
  EXPECT_EQ(User.Strings().GetString("S_a", "English"), "1");
}

}  // namespace
}  // namespace velkrund::tests
