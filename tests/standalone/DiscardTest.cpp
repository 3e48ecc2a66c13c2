#include <gtest/gtest.h>

#include "standalone/discard/DiscardLocalization.h"
#include "standalone/discard/DiscardManager.h"
#include "tests/standalone/Support.h"
#include "tests/support/TestPlatform.h"

namespace velkrund::tests {
namespace {

TEST(Discard, EveryTableTakesEverythingAndNothingReachesTheRealPlatform) {
  TTestPlatform Real;
  Real.WorkSettings.StrictText = true;
  TDiscardManager Manager(Real);
  Manager.SetFieldNames({"ID", "Имя"});
  const std::unique_ptr<TTable> Table = Manager.GetUserTable("ANY", "no database", true);
  ASSERT_TRUE(Table);
  EXPECT_EQ(Table->TableName(), "ANY");
  EXPECT_EQ(dynamic_cast<TODBCTable*>(Table.get()), nullptr);
  EXPECT_EQ(Table->FindField("OTHER"), nullptr);

  Manager.StartTransaction("", TIsolationLevel::RepeatableRead);
  Table->BeginAppend();
  Table->FieldByName("id").Buffer().SetInteger(1);
  Table->FieldByName("ИМЯ").Buffer().SetText("text");
  Table->AppendRecord();
  Table->EndAppend();
  EXPECT_EQ(Manager.ExecuteSQL("DELETE FROM ANY", ""), 0);
  Manager.RollbackTransaction("");
  Manager.CommitTransaction("");
  EXPECT_EQ(Table->RecordCount(), 0);
  EXPECT_FALSE(Table->First());
  EXPECT_EQ(ErrorOf([&] { Table->FieldByName("ID").Value(); }),
            "EDatabaseError: Field 'ID' has no value: its table keeps no rows");
  EXPECT_TRUE(Real.Log.empty());

  Manager.WriteTrace("any", TTraceLevel::Info, "passed on");
  EXPECT_EQ(Real.Log, std::vector<std::string>{"passed on"});
  EXPECT_TRUE(Manager.Settings().StrictText);
  EXPECT_EQ(&Manager.Files(), &Real.MemoryFiles);
}

TEST(Discard, EveryLanguageIsThereAndNoString) {
  TDiscardLocalization Store;
  EXPECT_TRUE(Store.GetLanguagesTable("").LanguageExist("any"));
  TLocalizatorTable& Strings = Store.GetLocalizatorTable("");
  Strings.Lock("S", "any");
  Strings.WriteString("S_a", "any", "text");
  Strings.UnLock("S", "any");
  EXPECT_FALSE(Strings.StringExist("S_a", "any"));
  EXPECT_EQ(Strings.GetString("S_a", "any"), AbsentText);
  EXPECT_FALSE(Strings.ReadSection("S", {"any"})->Next());
}

}  // namespace
}  // namespace velkrund::tests
