#include "tests/standalone/LocalizationFixture.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/ormtools/InstalledService.h"
#include "velkrund/resources/Lutils.h"

namespace velkrund::tests {
namespace {

/// Operations on the strings of two databases: one of each engine, and one of SQLite beside it.
class LocalizationOperations : public LocalizationFixture {
 protected:
  LocalizationOperations() {
    for (const char* const Language : {"English", "Russian"}) Other().SetLanguage(Language, {});
  }

  TLanguagesTable& Other() { return User.Store.GetLanguagesTable(OtherUrl); }
  std::string SectionsOf(const std::string& DatabaseName) {
    std::string Result;
    for (const TLSectionInfo& Info : User.Store.GetLocalizatorTable(DatabaseName).Sections())
      Result += Info.SectionID + ":" + std::to_string(Info.Texts) + " ";
    return Result;
  }
  using TTexts = std::vector<std::pair<std::string, std::string>>;  // names and texts
  void Write(const std::string& DatabaseName, const std::string& SectionID, const TTexts& Texts,
             const std::string& Language = "English") {
    TLocalizatorTable& Table = User.Store.GetLocalizatorTable(DatabaseName);
    Table.Lock(SectionID, Language);
    for (const auto& [Name, Text] : Texts) Table.WriteString(SectionID + "_" + Name, Language, Text);
    Table.UnLock(SectionID, Language);
  }
  static TTexts Many(int Count, const std::string& Text) {
    TTexts Result;
    for (int Index = 0; Index < Count; ++Index) Result.emplace_back("n" + std::to_string(Index), Text);
    return Result;
  }

  const std::string OtherUrl = "sqlite:" + (Folder / "other.db");
  const TServiceGuard<TApplicationManager> ManagerGuard{&User.Manager};
  const TServiceGuard<TLContainer> StoreGuard{&User.Store};
  const TMessageBoxGuard MessageBox{[](auto...) { return IDYES; }};
};

INSTANTIATE_TEST_SUITE_P(Engines, LocalizationOperations, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(LocalizationOperations, ASectionThatCannotBeDeletedStaysAlone) {
  TUODeleteLSections Delete;
  Delete.DatabaseName = Url;
  for (int Index = 10; Index < 22; ++Index) {
    const std::string ID = "S" + std::to_string(Index);
    Write(Url, ID, {{"a", "text"}, {"b", "text"}, {"c", "text"}});
    Delete.SectionIDs.Add(ID);
  }
  Write(Url, "S10_MORE", {{"a", "text"}});
  TConnection& Connection = User.Connection();
  if (GetParam().Name == "sqlite") {
    Connection.Execute(
        "CREATE TRIGGER keep BEFORE DELETE ON velkrund_strings WHEN OLD.string_key = 's15_b' BEGIN "
        "SELECT RAISE(ABORT, 'kept'); END");
  } else {
    Connection.Execute(
        "CREATE FUNCTION keep() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN IF OLD.string_key = 's15_b' THEN RAISE "
        "EXCEPTION 'kept'; END IF; RETURN OLD; END $$");
    Connection.Execute("CREATE TRIGGER keep BEFORE DELETE ON velkrund_strings FOR EACH ROW EXECUTE FUNCTION keep()");
  }
  EXPECT_EQ(Delete.Execute(), 1);
  EXPECT_EQ(SectionsOf(Url), "S10_MORE:1 S15:3 ");
  EXPECT_EQ(Delete.Failed(), std::vector<std::string>{"S15"});
  EXPECT_EQ(Delete.Strings(), 33);
}

TEST_P(LocalizationOperations, SectionsAreCopiedWholeOrNotAtAll) {
  constexpr int Count = 2000;
  Write(OtherUrl, "BIG", Many(Count, "text"));
  Write(OtherUrl, "A", {{"x", "one"}});
  Write(OtherUrl, "A", {{"x", "один"}}, "Russian");
  Other().SetLanguage("Latin", {});
  Write(OtherUrl, "BAD", {{"x", "good"}});
  Write(OtherUrl, "BAD", {{"x", "in a language that the target lacks"}}, "Latin");
  Write(Url, "A", {{"x", "old"}});
  TUOCopyLSections Copy;
  Copy.DatabaseName = OtherUrl;
  Copy.TargetDatabaseName = Url;
  Copy.SectionIDs = {"A", "BAD", "BIG"};
  Copy.SetOverwrite(TRecreateOverwrite::No);
  EXPECT_EQ(Copy.Execute(), 1);
  EXPECT_EQ(SectionsOf(Url), "A:2 BIG:2000 ");
  EXPECT_EQ(User.Strings().GetString("A_x", "English"), "old");
  EXPECT_EQ(Copy.Results()[0].Report.LeftAlone, 1);
  EXPECT_EQ(Copy.Failed(), std::vector<std::string>{"BAD"});
}

TEST_P(LocalizationOperations, StringsAreCopiedIntoASectionOfTheSameDatabase) {
  constexpr int Count = 3000, RussianCount = 1000;
  Write(Url, "A", Many(Count, "text"));
  Write(Url, "A", Many(RussianCount, "текст"), "Russian");
  Write(Url, "A_B", {{"n7", "of another section"}});
  TUOCopyLResources Copy;
  Copy.DatabaseName = Url;
  Copy.SourceSectionID = "A";
  Copy.TargetSectionID = "B";
  Copy.SetOverwritesAll(true);
  EXPECT_EQ(Copy.Execute(), 1);
  EXPECT_EQ(SectionsOf(Url), "A:4000 A_B:1 B:4000 ");
  EXPECT_EQ(User.Section("B", {"English", "Russian"})[2999], "n2999: text -");
  EXPECT_EQ(Copy.Texts(), 4000);
}

}  // namespace
}  // namespace velkrund::tests
