#include <gtest/gtest.h>

#include <filesystem>

#include "jobs/files/SectionRepair.h"
#include "tests/roundtrip/RoundTrip.h"

namespace velkrund::tests {
namespace {

/// Where a file that was cut to Length has to end: before what was not finished.
std::size_t FinishedPart(const std::string& Content, std::size_t Length) {
  if (Content.starts_with("\xEF\xBB\xBF") && Length < 3) return 0;
  for (std::size_t At = 0; (At = Content.find("[SECTION]", At)) < Length;) {
    const std::size_t End = Content.find("[END]", At) + 5;
    if (Length < End) return At == Length ? Length : At;
    At = End;
  }
  return Length;
}

TEST(Repair, EveryTruncationKeepsTheFinishedSections) {
  TTemporaryFolder Folder;
  const TTestDatabase Database = SQLiteDatabase(Folder / "a.db");
  Database.Run("CREATE TABLE A(V, B BLOB); INSERT INTO A VALUES('я', NULL), (1, NULL), (NULL, x'0D0A')");
  TRealPlatform Platform;
  TFileSystem& Files = Platform.Manager.Files();
  for (const auto Release : {TExportReleaseVersion::rv20, TExportReleaseVersion::rv17}) {
    ASSERT_EQ(Platform.Export(Database, "A", Folder / "new", Release), "");
    const std::string First = Folder.Read("new"), Content = First + First.substr(First.find("[SECTION]"));
    ASSERT_EQ(FinishedPart(Content, Content.size()), Content.size());
    for (std::size_t Length = 0; Length < Content.size(); ++Length) {
      Folder.Write("F", Content.substr(0, Length));
      const TSectionRepair Repair = RepairFile(Files, Folder / "F", {});
      const std::size_t Kept = FinishedPart(Content, Length);
      ASSERT_EQ(Folder.Read("F"), Content.substr(0, Kept)) << Length;
      ASSERT_EQ(Repair.CutFile, Kept < Length ? Folder / "F.cut" : "") << Length;
      ASSERT_EQ(Folder.Read("F.cut"), Content.substr(Kept, Length - Kept)) << Length;
      ASSERT_EQ(Repair.Bytes, static_cast<std::int64_t>(Length - Kept));
      ASSERT_EQ(RepairFile(Files, Folder / "F", {}).Position, -1) << Length;
      std::filesystem::remove(Folder / "F.cut");
    }
  }
}

}  // namespace
}  // namespace velkrund::tests
