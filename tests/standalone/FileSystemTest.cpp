#include <gmock/gmock.h>

#include "standalone/files/PosixFileSystem.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class FileSystemTest : public testing::Test {
 protected:
  TTemporaryFolder Folder;
  TPosixFileSystem Files;
};

TEST_F(FileSystemTest, WritesReadsCutsAndExtends) {
  auto File = Files.Open(Folder / "a", TFileMode::CreateNew);
  File->WriteAt(3, "defg");
  File->WriteAt(0, "abc");
  File->SetSize(5);
  File->Sync();
  EXPECT_EQ(Folder.Read("a"), "abcde");
  char Buffer[8] = {};
  EXPECT_EQ(File->ReadAt(2, Buffer, sizeof(Buffer)), 3U);
  EXPECT_STREQ(Buffer, "cde");
  EXPECT_EQ(File->ReadAt(5, Buffer, sizeof(Buffer)), 0U);
  File->WriteAt(5'000'000'000, "x");
  EXPECT_EQ(File->Size(), 5'000'000'001);
}

TEST_F(FileSystemTest, EachModeOnAFileThatIsThereAndOneThatIsNot) {
  const std::string Missing = Folder / "missing";
  struct TCase {
    TFileMode Mode;
    bool Exists;
    std::string Error;    // begins so
    std::string Content;  // afterwards
  };
  const TCase Cases[] = {
      {TFileMode::Read, true, "no error", "old"},
      {TFileMode::Read, false, "EFOpenError: Cannot open file '" + Missing + "': No such file", ""},
      {TFileMode::ReadWrite, true, "no error", "old"},
      {TFileMode::ReadWrite, false, "EFOpenError: Cannot open file '" + Missing + "': No such file", ""},
      {TFileMode::Create, true, "no error", ""},
      {TFileMode::Create, false, "no error", ""},
      {TFileMode::CreateNew, true, "EFCreateError: Cannot create file '" + Folder / "there" + "': File exists", "old"},
      {TFileMode::CreateNew, false, "no error", ""},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(static_cast<int>(Case.Mode) * 10 + Case.Exists);
    Files.Remove(Missing);
    Folder.Write("there", "old");
    const std::string Name = Case.Exists ? "there" : "missing";
    EXPECT_THAT(ErrorOf([&] { Files.Open(Folder / Name, Case.Mode); }), StartsWith(Case.Error));
    EXPECT_EQ(Folder.Read(Name), Case.Content);
  }
}

TEST_F(FileSystemTest, AWriterKeepsOtherWritersOutAndNobodyElse) {
  const std::string Path = Folder.Write("a", "content");
  auto Writer = Files.Open(Path, TFileMode::ReadWrite);
  const std::string InUse = "file '" + Path + "': it is in use by another program";
  EXPECT_EQ(ErrorOf([&] { Files.Open(Path, TFileMode::ReadWrite); }), "EFOpenError: Cannot open " + InUse);
  EXPECT_EQ(ErrorOf([&] { Files.Open(Path, TFileMode::Create); }), "EFCreateError: Cannot create " + InUse);
  EXPECT_EQ(Folder.Read("a"), "content") << "emptied before the lock was had";
  EXPECT_EQ(Files.Open(Path, TFileMode::Read)->Size(), 7);
  Writer.reset();
  EXPECT_EQ(Files.Open(Path, TFileMode::Create)->Size(), 0);
}

TEST_F(FileSystemTest, FoldersAreNoFiles) {
  for (const TFileMode Mode : {TFileMode::Read, TFileMode::ReadWrite, TFileMode::Create})
    EXPECT_THAT(ErrorOf([&] { Files.Open(Folder / "", Mode); }), HasSubstr("Is a directory"));
}

TEST_F(FileSystemTest, RemovesAndFinds) {
  Folder.Write("old", "old");
  Files.Remove(Folder / "old");
  EXPECT_FALSE(Files.Exists(Folder / "old"));
  EXPECT_EQ(ErrorOf([&] { Files.Remove(Folder / "old"); }), "no error");
}

TEST_F(FileSystemTest, AFullDiskIsAnError) {
  auto File = Files.Open("/dev/full", TFileMode::Create);
  EXPECT_EQ(ErrorOf([&] { File->WriteAt(0, "x"); }),
            "EWriteError: Cannot write file '/dev/full': No space left on device");
}

}  // namespace
}  // namespace velkrund::tests
