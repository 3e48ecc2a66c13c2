#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "standalone/files/PosixFileSystem.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// Does the work where the system knows no files without a name. False: that cannot be had here.
template <typename TWork>
bool WithoutUnnamedFiles(TWork Work) {
  bool Done = false;
  // The filter goes with its thread.
  std::thread([&] {
    constexpr unsigned Flag = O_TMPFILE & ~O_DIRECTORY;
    sock_filter Filter[] = {
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 3, SYS_openat},
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, args[2])},
        {BPF_JMP | BPF_JSET | BPF_K, 0, 1, Flag},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | EOPNOTSUPP},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    };
    const sock_fprog Program = {std::size(Filter), Filter};
    Done = prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &Program) == 0;
    if (Done) Work();
  }).join();
  return Done;
}

class FileMakingTest : public testing::Test {
 protected:
  /// As whoever writes does: what is there is open, which keeps others away.
  std::unique_ptr<TFileInMaking> InPlaceOf(const std::string& Path) {
    FOpen.reset();
    try {
      FOpen = Files.Open(Path, TFileMode::ReadWrite);
    } catch (const EFOpenError&) {
      // The one that was made before has it, or the user may not write to it.
    }
    return Files.MakeInPlaceOf(Path);
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> Result;
    for (const auto& Entry : fs::directory_iterator(Folder / "")) Result.push_back(Entry.path().filename());
    std::sort(Result.begin(), Result.end());
    return Result;
  }
  struct stat Status(const std::string& Name) const {
    struct stat Result = {};
    EXPECT_EQ(stat((Folder / Name).c_str(), &Result), 0) << Name;
    return Result;
  }
  /// As somebody whom rights bind.
  template <typename TWork>
  std::string ErrorOfAUser(TWork Work) {
    const uid_t User = geteuid();
    EXPECT_EQ(seteuid(User == 0 ? Somebody : User), 0);
    std::string Result = ErrorOf(Work);
    EXPECT_EQ(seteuid(User), 0);
    return Result;
  }

  static constexpr uid_t Somebody = 65534;
  TTemporaryFolder Folder;
  TPosixFileSystem Files;
  std::unique_ptr<TFile> FOpen;
};

TEST_F(FileMakingTest, NobodySeesItBeforeItIsPut) {
  Folder.Write("old", "old");
  const auto Writer = Files.Open(Folder / "old", TFileMode::ReadWrite);
  for (const bool IsPut : {false, true}) {
    const auto Over = InPlaceOf(Folder / "old"), New = Files.MakeNew(Folder / "new", {});
    for (TFileInMaking* const Made : {Over.get(), New.get()}) {
      Made->File().WriteAt(0, "made");
      EXPECT_THAT(Names(), ElementsAre("old"));
      EXPECT_EQ(Folder.Read("old"), "old");
    }
    if (!IsPut) continue;
    Over->Put();
    New->Put();
    New->File().WriteAt(4, " later");
    EXPECT_THAT(ErrorOf([&] { Files.Open(Folder / "new", TFileMode::ReadWrite); }), HasSubstr("in use by another"));
  }
  EXPECT_THAT(Names(), ElementsAre("new", "old"));
  EXPECT_EQ(Folder.Read("old") + Folder.Read("new"), "mademade later");
}

TEST_F(FileMakingTest, NamesOfAllKindsWork) {
  const std::string Longest = std::string(251, 'n') + "\u044f\u044f";
  fs::create_directory(Folder / "other");
  for (const std::string& Name : {Longest, std::string(" "), std::string("other/x"), std::string("$%n")}) {
    Files.MakeNew(Folder / Name, {})->Put();
    const auto Writer = Files.Open(Folder / Name, TFileMode::ReadWrite);
    const auto Over = InPlaceOf(Folder / Name);
    Over->File().WriteAt(0, "x");
    Over->Put();
    EXPECT_EQ(Folder.Read(Name), "x") << Name;
  }
  // A link stays one.
  fs::create_symlink("other/x", Folder / "link");
  const auto Over = InPlaceOf(Folder / "link");
  Over->File().WriteAt(0, "behind");
  Over->Put();
  EXPECT_EQ(Folder.Read("other/x"), "behind");
  EXPECT_TRUE(fs::is_symlink(Folder / "link"));
}

TEST_F(FileMakingTest, WhatIsThereIsNotTakenForNothing) {
  Folder.Write("old", "old");
  fs::create_symlink("nowhere", Folder / "dangling");
  fs::create_hard_link(Folder / "old", Folder / "second");
  const auto New = [this](const std::string& Name) { return ErrorOf([&] { Files.MakeNew(Folder / Name, {}); }); };
  EXPECT_THAT(New("old"), HasSubstr("File exists"));
  EXPECT_THAT(New("dangling"), HasSubstr("it is a link to 'nowhere', where there is no file"));
  EXPECT_THAT(New("none/x"), HasSubstr("there is no folder '" + Folder / "none" + "'"));
  EXPECT_THAT(ErrorOf([&] { InPlaceOf(Folder / "second"); }),
              StartsWith("EWriteError: Cannot replace file '" + Folder / "second" + "': it has 2 names (hard links)"));
  // Another program was faster.
  const auto Made = Files.MakeNew(Folder / "new", {});
  Folder.Write("new", "theirs");
  EXPECT_THAT(ErrorOf([&] { Made->Put(); }), StartsWith("EFCreateError: Cannot create file '" + Folder / "new"));
  EXPECT_EQ(Folder.Read("new"), "theirs");
  EXPECT_THAT(Names(), ElementsAre("dangling", "new", "old", "second"));
}

TEST_F(FileMakingTest, AnotherFileThatTookThePlaceIsSpared) {
  const std::string Path = Folder.Write("old", "old");
  const auto PutAnother = [&] { fs::rename(Folder.Write("theirs", "theirs"), Path); };
  const auto Made = InPlaceOf(Path);
  PutAnother();
  EXPECT_THAT(ErrorOf([&] { Made->Put(); }), HasSubstr("another file was put in its place"));
  EXPECT_THAT(ErrorOf([&] { Files.MakeInPlaceOf(Path); }), HasSubstr("another file was put in its place"));
  EXPECT_EQ(Folder.Read("old"), "theirs");
  fs::remove(Path);
  EXPECT_THAT(ErrorOf([&] { Files.MakeInPlaceOf(Path); }), HasSubstr("it is gone"));
}

TEST_F(FileMakingTest, ItHasANameOfItsOwnWhereItMustHaveOne) {
  Folder.Write("old", "old");
  const auto Ours = [](const std::string& Name) { return Name.starts_with(".velkrund-") && Name.size() == 28; };
  const bool Done = WithoutUnnamedFiles([&] {
    for (const bool IsPut : {false, true}) {
      const auto Over = InPlaceOf(Folder / "old"), New = Files.MakeNew(Folder / "new", {}),
                 Second = Files.MakeNew(Folder / "new", {});
      const std::vector<std::string> All = Names();
      EXPECT_EQ(std::count_if(All.begin(), All.end(), Ours), 3);
      EXPECT_EQ(All.size(), 4U);
      for (TFileInMaking* const Made : {Over.get(), New.get()}) Made->File().WriteAt(0, "made");
      if (!IsPut) continue;
      Over->Put();
      New->Put();
      EXPECT_THAT(ErrorOf([&] { Second->Put(); }), HasSubstr("meanwhile"));
    }
  });
  if (!Done) GTEST_SKIP() << "no filter of system calls here";
  EXPECT_THAT(Names(), ElementsAre("new", "old"));
  EXPECT_EQ(Folder.Read("old") + Folder.Read("new"), "mademade");
}

// Of a process that was killed, and nothing else, however it is called. Other releases know the names too.
TEST_F(FileMakingTest, WhatWasLeftIsRemovedByTheNextWriter) {
  const std::string Left = ".velkrund-af63f54c86021707-", Foreign = ".velkrund-af63f54c86021707-8";
  Folder.Write("old", "old");
  Folder.Write(Left + "0", "left");
  Folder.Write(Left + "1", "locked");
  fs::create_symlink("old", Folder / (Left + "2"));
  Folder.Write("mine", "mine");
  fs::create_hard_link(Folder / "mine", Folder / (Left + "3"));
  Folder.Write(Foreign, "mine");
  Folder.Write("x.velkrund-new", "somebody's");
  const std::vector<std::string> All = Names();
  {
    const auto Locked = Files.Open(Folder / (Left + "1"), TFileMode::ReadWrite);
    Files.RemoveLeft(Folder / "other");
    EXPECT_EQ(Names(), All);
    Files.MakeNew(Folder / "x", {})->Put();
    EXPECT_THAT(Names(),
                ElementsAre(Left + "1", Left + "2", Left + "3", Foreign, "mine", "old", "x", "x.velkrund-new"));
  }
  Files.RemoveLeft(Folder / "x");
  EXPECT_THAT(Names(), ElementsAre(Left + "2", Left + "3", Foreign, "mine", "old", "x", "x.velkrund-new"));
}

TEST_F(FileMakingTest, RightsAreKept) {
  // Version 2; owner rw, user 1234 r, group -, mask r, others -.
  const std::string List(
      "\2\0\0\0\1\0\6\0\xff\xff\xff\xff\2\0\4\0\xd2\4\0\0\4\0\0\0\xff\xff\xff\xff"
      "\x10\0\4\0\xff\xff\xff\xff\x20\0\0\0\xff\xff\xff\xff",
      44);
  const auto Attribute = [this](const std::string& Name, const char* Key) {
    char Value[256];
    const ssize_t Size = getxattr((Folder / Name).c_str(), Key, Value, sizeof Value);
    return Size < 0 ? std::string("none") : std::string(Value, static_cast<std::size_t>(Size));
  };
  for (const bool HasList : {false, true})
    for (const mode_t Mode : {0640U, 0604U, 06755U, 0400U}) {
      Folder.Write("old", "old");
      const auto Writer = Files.Open(Folder / "old", TFileMode::ReadWrite);
      ASSERT_EQ(chmod((Folder / "old").c_str(), Mode), 0);
      if (HasList && setxattr((Folder / "old").c_str(), "system.posix_acl_access", List.data(), List.size(), 0) != 0)
        GTEST_SKIP() << "no access lists here";
      const bool HasAttributes = setxattr((Folder / "old").c_str(), "user.note", "kept", 4, 0) == 0;
      if (geteuid() == 0) {
        ASSERT_EQ(chown((Folder / "old").c_str(), 1234, 4321), 0);
        ASSERT_TRUE(HasList || chmod((Folder / "old").c_str(), Mode) == 0);
      }
      const struct stat Before = Status("old");
      const std::string ListBefore = Attribute("old", "system.posix_acl_access");
      InPlaceOf(Folder / "old")->Put();
      Files.MakeNew(Folder / "beside", Folder / "old")->Put();
      for (const char* Name : {"old", "beside"}) {
        const struct stat Now = Status(Name);
        EXPECT_EQ(Now.st_size, 0);
        EXPECT_EQ(Now.st_mode, Before.st_mode) << Mode;
        EXPECT_EQ(Now.st_uid, Before.st_uid);
        EXPECT_EQ(Now.st_gid, Before.st_gid);
        EXPECT_EQ(Attribute(Name, "system.posix_acl_access"), ListBefore);
        EXPECT_EQ(Attribute(Name, "user.note"), HasAttributes ? "kept" : "none");
        fs::remove(Folder / Name);
      }
    }
}

// Whose group cannot be kept gives nobody rights, nor takes any away; and a folder that takes no file is told first.
TEST_F(FileMakingTest, WhatCanNotBeKeptIsRefusedBeforeAnythingIsWritten) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
  const struct {
    mode_t Mode;
    gid_t Group;
    bool IsRefused;
  } Cases[] = {
      {0666, 4321, false}, {0662, 4321, true}, {0646, 4321, true}, {0660, getegid(), false}, {04666, getegid(), true}};
  ASSERT_EQ(chmod((Folder / "").c_str(), 0777), 0);
  for (const auto& [Mode, Group, IsRefused] : Cases) {
    Folder.Write("old", "old");
    ASSERT_EQ(chown((Folder / "old").c_str(), 1234, Group), 0);
    ASSERT_EQ(chmod((Folder / "old").c_str(), Mode), 0);
    const std::string Error = ErrorOfAUser([&] { InPlaceOf(Folder / "old")->Put(); });
    EXPECT_EQ(Error == "no error", !IsRefused) << Error;
    if (IsRefused) {
      EXPECT_THAT(Error, HasSubstr("cannot be kept")) << Mode;
    }
    EXPECT_EQ(Folder.Read("old"), IsRefused ? "old" : "");
    EXPECT_EQ(Status("old").st_mode & 07777, Mode);
    EXPECT_THAT(Names(), ElementsAre("old"));
  }
  const auto Refusal = [&] { return ErrorOfAUser([&] { InPlaceOf(Folder / "old"); }); };
  ASSERT_EQ(chmod((Folder / "").c_str(), 01777), 0);
  EXPECT_THAT(Refusal(), HasSubstr("it belongs to another user"));
  ASSERT_EQ(chmod((Folder / "").c_str(), 0755), 0);
  EXPECT_THAT(Refusal(), HasSubstr("its folder takes no new file: Permission denied"));
  EXPECT_THAT(Names(), ElementsAre("old"));
}

}  // namespace
}  // namespace velkrund::tests
