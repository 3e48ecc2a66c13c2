#include <gmock/gmock.h>

#include "standalone/databases/StandaloneManager.h"
#include "standalone/drivers/AddressSecrets.h"
#include "standalone/drivers/DatabaseUrl.h"
#include "standalone/tables/MemoryTable.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ManagerTest : public testing::Test {
 protected:
  ManagerTest() {
    Manager.Databases().SetCreateMissing(true);
    Manager.Databases().SetDefaultDatabase("shop");
    Manager.ExecuteSQL("CREATE TABLE T (N INTEGER)", "");
  }

  TConfiguration Configured() const {
    TConfiguration Result;
    Result.FileName = "velkrund.toml";
    Result.Folder = Folder / "";
    Result.Databases["shop"] = {"sqlite:shop.db"};
    Result.Databases["secret"] = {"postgresql://me:pa@ss@host/db"};
    Result.TraceLevel = TTraceLevelSetting::Detail;
    Result.TraceFile = Folder / "trace.log";
    return Result;
  }
  std::int64_t Insert(int Number) {
    return Manager.ExecuteSQL("INSERT INTO T VALUES (" + std::to_string(Number) + ")", "shop");
  }
  std::int64_t Count() { return Manager.GetUserTable("t", "shop", false)->RecordCount(); }

  TTemporaryFolder Folder;
  TStandaloneManager Manager{Configured()};
};

TEST_F(ManagerTest, AnInnerRollBackUndoesTheInnerPart) {
  constexpr TIsolationLevel Level = TIsolationLevel::RepeatableRead;
  Manager.StartTransaction("shop", Level);
  Insert(1);
  Manager.StartTransaction("", Level);
  Insert(2);
  Manager.CommitTransaction("sqlite:" + Folder / "./shop.db");
  Manager.RollbackTransaction("shop");
  EXPECT_EQ(Count(), 0) << "the inner commit reached the engine";

  Manager.StartTransaction("shop", Level);
  Insert(1);
  Manager.StartTransaction("shop", Level);
  Insert(2);
  Manager.StartTransaction("shop", Level);
  Insert(3);
  Manager.CommitTransaction("shop");
  EXPECT_EQ(Count(), 3);
  Manager.RollbackTransaction("shop");
  EXPECT_EQ(Count(), 1) << "what was committed inside stays";
  Manager.CommitTransaction("shop");
  EXPECT_EQ(Count(), 1);
  for (const auto End : {&TStandaloneManager::CommitTransaction, &TStandaloneManager::RollbackTransaction})
    EXPECT_THAT(ErrorOf([&] { (Manager.*End)("shop"); }), HasSubstr("no transaction has been started"));
}

TEST_F(ManagerTest, DatabasesAreFoundByNameAndByAddress) {
  struct TCase {
    std::string Name;
    std::string Error;
  };
  const TCase Cases[] = {
      {"", "no error"},
      {"shop", "no error"},
      {"SQLITE:" + Folder / "shop.db", "no error"},
      {"Shop",
       "EDatabaseError: The database 'Shop' is not in velkrund.toml, and it is not an address (SCHEME:...); the "
       "configuration has secret, shop; did you mean 'shop'?"},
      {"host=127.0.0.1 password=geheim",
       "EDatabaseError: The database 'host=127.0.0.1 password=***' is not in velkrund.toml, and it is not an address "
       "(SCHEME:...); the configuration has secret, shop"},
      {"sqllite:shop.db",
       "EDatabaseError: The database 'sqllite:shop.db' has the unknown scheme 'sqllite'; known are: sqlite, "
       "postgresql; did you mean 'sqlite'?"},
      {"secret",
       "EDatabaseError: The database address 'postgresql://me:***' cannot be read: special characters in a URL have "
       "to be written as %XX, a value with blanks between apostrophes"},
      {"odbc:DSN=x;PWD=geheim",
       "EDatabaseError: The database 'odbc:DSN=x;PWD=***' has the unknown scheme 'odbc'; known are: sqlite, "
       "postgresql"},
  };
  for (const TCase& Case : Cases) EXPECT_EQ(ErrorOf([&] { Manager.GetUserTable("T", Case.Name, true); }), Case.Error);
  EXPECT_TRUE(Manager.Databases().IsSameDatabase("shop", "sqlite:" + Folder / "x/../shop.db"));
  EXPECT_FALSE(Manager.Databases().IsSameDatabase("shop", "sqlite:" + Folder / "other.db"));
  // Only what stands in the configuration is relative to its folder.
  TConfiguration WithAddress = Configured();
  WithAddress.DefaultDatabase = "sqlite:shop.db";
  TStandaloneManager Other(WithAddress);
  EXPECT_EQ(Other.Tables("").size(), 1U);
  EXPECT_THAT(ErrorOf([&] { Other.Tables("sqlite:shop.db"); }), HasSubstr("does not exist"));
  Other.Databases().SetDefaultDatabase("sqlite:shop.db");
  EXPECT_THAT(ErrorOf([&] { Other.Tables(""); }), HasSubstr("does not exist"));
  Manager.Databases().SetDefaultDatabase("");
  EXPECT_EQ(ErrorOf([&] { Manager.Tables(""); }),
            "EDatabaseError: No database is named, and there is no default database");
}

TEST_F(ManagerTest, EightBitTextsAreOfTheConfiguredCodePage) {
  TConfiguration Central = Configured();
  Central.CodePage = 1250;
  TStandaloneManager Other(Central);
  Other.Databases().SetDefaultDatabase("sqlite::memory:");
  TKvVariant Value;
  Value.SetText("\xB3", TKvKind::AnsiString);
  const auto Answer = Other.Databases().Connection("").Query("SELECT ?1", {&Value, 1});
  ASSERT_TRUE(Answer->Next());
  Answer->Read(0, Value);
  EXPECT_EQ(Shown(Value), "10 ł");
}

TEST_F(ManagerTest, DeleteIsAcceptedInBothSpellings) {
  for (const char* Statement : {"DELETE FROM T", "delete  *\r\n from T", " DELETE * FROM \"T\" WHERE N > 0"}) {
    Insert(1), Insert(2);
    EXPECT_EQ(Manager.ExecuteSQL(Statement, "shop"), 2) << Statement;
  }
  EXPECT_THAT(ErrorOf([&] { Manager.ExecuteSQL("DELETE * T", "shop"); }), HasSubstr("syntax error"));
}

TEST_F(ManagerTest, TablesThatAreNotThereAreNull) {
  EXPECT_EQ(Manager.GetUserTable("NONE", "shop", true), nullptr);
  EXPECT_EQ(Manager.GetUserTable("sqlite_schema", "shop", true), nullptr);
  auto Table = Manager.GetUserTable("T", "shop", false);
  EXPECT_NE(dynamic_cast<TODBCTable*>(Table.get()), nullptr);
  EXPECT_THAT(ErrorOf([&] { Table->BeginAppend(); }), HasSubstr("open for reading only"));
  EXPECT_THAT(ErrorOf([&] { Table->FieldByName("N").Value(); }), HasSubstr("stands on no row"));
}

TEST_F(ManagerTest, InfoTextsAndTrace) {
  Insert(5);
  Manager.ExecuteSQL("CREATE VIEW V AS SELECT N FROM T", "shop");
  const TDatabaseInfo Info = Manager.DatabaseInfo("shop");
  EXPECT_EQ(Info.Engine, "SQLite");
  ASSERT_EQ(Info.Tables.size(), 2U);
  EXPECT_EQ(Info.Tables[0].Rows, 1);
  EXPECT_GT(Info.Tables[0].Bytes.value(), 0);
  EXPECT_EQ(Info.Tables[1].Rows, std::nullopt);
  for (const char* Table : {"b", "C", "A", "velkrund_structures"})
    Manager.ExecuteSQL(std::string("CREATE TABLE \"") + Table + "\" (N)", "shop");
  EXPECT_THAT(Manager.UserTableNames("shop"), ElementsAre("A", "b", "C", "T"));

  TConfiguration Misspelt = Configured();
  Misspelt.TraceFile = Folder / "none/trace.log";
  EXPECT_THAT(ErrorOf([&] { TStandaloneManager{Misspelt}; }), HasSubstr("there is no folder"));

  EXPECT_EQ(Manager.LString("M_KEY"), "M_KEY");
  Manager.SetLookUpText([](std::string_view Key) { return std::optional("[" + std::string(Key) + "]"); });
  EXPECT_EQ(Manager.LString("M_KEY"), "[M_KEY]");

  Manager.WriteTrace("Velkrund", TTraceLevel::Info, "100% {done}");
  EXPECT_THAT(Folder.Read("trace.log"), HasSubstr(" info Velkrund: 100% {done}\n"));
  EXPECT_THAT(Folder.Read("trace.log"), HasSubstr(" debug Databases: INSERT INTO T VALUES (5)\n"));
}

TEST(DatabaseUrlTest, AddressesAreCutAndSecretsMasked) {
  struct TCase {
    std::string Text;
    std::string Cut;  // "scheme rest"; empty: no address
    std::string Shown;
  };
  const TCase Cases[] = {
      {"sqlite:a%20b.db", "sqlite a%20b.db", "sqlite:a%20b.db"},
      {"SQLite::memory:", "sqlite :memory:", "SQLite::memory:"},
      {"c:/data", "", "c:/data"},
      {"shop", "", "shop"},
      {"my shop:x", "", "my shop:x"},
      {"postgresql://u:p@q@h:5/d?a=b@c", "postgresql //u:p@q@h:5/d?a=b@c", "postgresql://u:***@c"},
      {"postgresql://u:a/b+c?==@h:5/d", "postgresql //u:a/b+c?==@h:5/d", "postgresql://u:***@h:5/d"},
      {"host=h password=x dbname=d", "", "host=h password=*** dbname=d"},
      {"postgresql://u@h/d", "postgresql //u@h/d", "postgresql://u@h/d"},
      {"postgresql://h/d?password=x&user=u", "postgresql //h/d?password=x&user=u",
       "postgresql://h/d?password=***&user=u"},
      {"odbc:Pwd={a;b};UID=u", "odbc Pwd={a;b};UID=u", "odbc:Pwd=***;UID=u"},
      {"sqlite:/a//u:b@c", "sqlite /a//u:b@c", "sqlite:/a//u:b@c"},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.Text);
    const std::optional<TDatabaseUrl> Url = ParseDatabaseUrl(Case.Text);
    EXPECT_EQ(Url ? Url->Scheme + " " + Url->Rest : "", Case.Cut);
    EXPECT_EQ(WithoutSecrets(Case.Text), Case.Shown);
  }
}

// Each holds the word "geheim", or a piece of it.
TEST(DatabaseUrlTest, NoSpellingOfAPasswordIsShown) {
  const struct {
    std::string Text;
    std::string Shown;
  } Cases[] = {
      // Lines of keywords: blanks and tabs, apostrophes and backslashes, other words for it, and unknown ones.
      {"postgresql:host=h password = 'geheim x' user=u", "postgresql:host=h password = *** user=u"},
      {"postgresql:password\t=\t'ge\\'h eim'\tuser=u", "postgresql:password\t=\t***\tuser=u"},
      {"postgresql:password=ge\\ heim dbname=d", "postgresql:password=*** dbname=d"},
      {"host=h PASSWORD=geheim", "host=h PASSWORD=***"},
      {"postgresql:sslpassword=geheim passfile=/p", "postgresql:sslpassword=*** passfile=/p"},
      {"postgresql:pasword=geheim host=h", "postgresql:pasword=*** host=h"},
      {"postgresql:dbname=postgresql://u:geheim@h/d", "postgresql:dbname=***"},
      {"postgresql:host=h password=ge heim", "postgresql:***"},
      {"postgresql:password='geheim", "postgresql:***"},
      {"postgresql:password=ge\\", "postgresql:password=***"},
      // URLs.
      {"postgresql://h/d?p%61ssword=geheim&user=u", "postgresql://h/d?p%61ssword=***&user=u"},
      {"postgresql://h/d?ssl%70assword=geheim", "postgresql://h/d?ssl%70assword=***"},
      {"postgresql://h/d?user=u&pasword=geheim", "postgresql://h/d?user=u&pasword=***"},
      {"postgresql://h/d?user=u?password=geheim", "postgresql://h/d?user=***"},
      {"postgresql://u:geheim@h/d?sslmode=require", "postgresql://u:***@h/d?sslmode=require"},
      {"postgresql://u%3Ageheim@h/d", "postgresql:***"},
      {"postgresql://u:geheim/x", "postgresql://u:***/x"},
      {"postgresql://u@h:geheim", "postgresql://u@h:***"},
      {"postgresql://h:1,[::1]:2,i:3/d", "postgresql://h:1,[::1]:2,i:3/d"},
      {"postgresql://h:1/x?user=a:geheim", "postgresql://h:1/x?user=***"},
      {"postgresql:host='u:geheim@h' port=1", "postgresql:host=*** port=1"},
      {"postgresql://h/d password=geheim", "postgresql:***"},
      {"postgresql://h/d%3Fpassword%3Dgeheim", "postgresql:***"},
      // What is no address.
      {"postgresql:/u:geheim@h/d", "postgresql:***"},
      {"postgresql:u:geheim@h", "postgresql:***"},
      {"postgres//u:geheim@h/d", "***"},
      {"u/geheim@h", "***"},
      {"postgres ql://u:geheim@h", "postgres ql://u:***@h"},
      // Lists with semicolons.
      {"odbc:DSN=d; PWD = {ge;h}}eim} ;UID=u", "odbc:DSN=d; PWD = ***;UID=u"},
      {"odbc:DRIVER={x};pwd=geheim", "odbc:DRIVER={x};pwd=***"},
      {"odbc:DSN=d;PWD={geheim", "odbc:***"},
      {"odbc:DSN=d;PWD={a}geheim;UID=u", "odbc:***"},
      {"DSN=d;Password=geheim", "DSN=d;Password=***"},
  };
  for (const auto& [Text, Shown] : Cases) EXPECT_EQ(WithoutSecrets(Text), Shown) << Text;
  EXPECT_EQ(WithSecretsMasked("no port \"ge heim\", not typ3d", "postgresql://u:ge%20heim/x", "typ3d"),
            "no port \"***\", not ***");
}

TEST(MemoryTableTest, WhatIsAppendedIsWalkedAndNothingBeforeTheEnd) {
  TMemoryTable Table("M", {{"A", TKvKind::Int64}, {"B", TKvKind::String}});
  EXPECT_FALSE(Table.First());
  for (const bool Ended : {false, true}) {
    Table.BeginAppend();
    for (int I = 1; I <= 2; ++I) {
      Table.ClearData();
      Table.FieldByName("a").Buffer().SetInteger(I);
      Table.AppendRecord();
    }
    if (Ended) Table.EndAppend();
    EXPECT_EQ(Table.RecordCount(), Ended ? 2 : 0);
  }
  std::vector<std::string> Walked;
  for (bool Found = Table.First(); Found; Found = Table.Next())
    Walked.push_back(Shown(Table.FieldByName("A").Value()) + "|" + Shown(Table.FieldByName("B").Value()));
  EXPECT_THAT(Walked, ElementsAre("18 1|0 ", "18 2|0 "));
  EXPECT_THAT(ErrorOf([&] { Table.FieldByName("A").Value(); }), HasSubstr("stands on no row"));
}

}  // namespace
}  // namespace velkrund::tests
