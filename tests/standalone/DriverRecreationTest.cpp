// Tables made anew by the module's own operations, on every engine.

#include <gmock/gmock.h>

#include "standalone/dictionary/StandaloneDictionary.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "standalone/structures/StructureStore.h"
#include "tests/standalone/DriverFixture.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/dictionary/TableMaker.h"
#include "velkrund/dictionary/TemporaryTable.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/InstalledService.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using TEnd = TUORecreateTable::TEnd;

/// Fails where it is told to.
class TFailingDictionary final : public TDictionary, private TDicTable {
 public:
  explicit TFailingDictionary(TDictionary& Real) : FReal(Real) {}

  TDicTable& GetDicTable(const std::string& Database) override {
    FDatabase = Database;
    return *this;
  }
  std::string GetPatternName(const std::string& Table, const std::string& Database) override {
    return FReal.GetPatternName(Table, Database);
  }
  std::string GetCreateTablePatternString(const std::string& Pattern, const std::string& Database) override {
    return FReal.GetCreateTablePatternString(Pattern, Database);
  }
  void CreateTableByDef(const std::string& Database, const TDicTableDescription& Table, const std::string& Pattern,
                        TTableScriptPart Part, bool Replace) override {
    if (Before) Before(Table, Part);
    FReal.CreateTableByDef(Database, Table, Pattern, Part, Replace);
  }
  void StoreWords(const std::string& Database, const std::vector<std::string>& Tables) override {
    if (BeforeWords) BeforeWords(Tables);
    FReal.StoreWords(Database, Tables);
  }
  void CreateIndexesByDef(const std::string& Database, const TDicTableDescription& Table) override {
    FReal.CreateIndexesByDef(Database, Table);
  }
  void DropTable(const std::string& Database, const TDicTableDescription& Table) override {
    FReal.DropTable(Database, Table);
  }
  TTableStage StageOf(const std::string& Database, const std::string& Table) override {
    return FReal.StageOf(Database, Table);
  }
  void SetStage(const std::string& Database, const std::string& Table, TTableStage Stage) override {
    FReal.SetStage(Database, Table, Stage);
  }

  bool Reads = true;
  std::function<void(const TDicTableDescription& Table, TTableScriptPart Part)> Before;
  std::function<void(const std::vector<std::string>& Tables)> BeforeWords;

 private:
  bool GetTableInfo(const std::string& Name, TDicTableDescription& Description) override {
    return Reads && FReal.GetDicTable(FDatabase).GetTableInfo(Name, Description);
  }

  TDictionary& FReal;
  std::string FDatabase;
};

class DriverRecreationTest : public testing::TestWithParam<TEngine> {
 protected:
  DriverRecreationTest() {
    Manager.Databases().SetCreateMissing(true);
    Manager.SetLookUpText([](std::string_view Key) { return std::string(Key) + " %s"; });
    Run("CREATE TABLE T (ID " + Type(TKvKind::Int64) + " PRIMARY KEY, NAME " + Type(TKvKind::String) + ", OLD " +
        Type(TKvKind::String) + ")");
    Run("INSERT INTO T VALUES (1, 'one', 'x'), (2, NULL, 'y'), (3, 'three', NULL)");
    Table.Name = Connection().Schema().FindTable("T")->Name;
    Table.Fields = {{.Name = "ID", .Type = TDicFieldType::Int64, .NotNull = true},
                    {.Name = "NAME", .Type = TDicFieldType::String, .Size = 200},
                    {.Name = "FRESH", .Type = TDicFieldType::String},
                    {.Name = "GIVEN", .Type = TDicFieldType::Int64, .NotNull = true, .Default = "7"}};
    Table.Keys = {{.Primary = true, .Columns = {{"ID"}}}};
    Table.Indexes = {{.Name = "T_NAME", .Columns = {{"NAME"}}}};
    Store();
    Watch(Single);
    Watch(List);
    Single.TableName = "t";
    List.TableNames = TStringList{"t"};
  }
  void Watch(TDatabaseUtilOperation& Operation) {
    Operation.DatabaseName = Url;
    Operation.FOnWriteLog = [this](std::string_view Text, TTraceLevel Level) {
      std::string Line(Text);
      if (const std::size_t At = Line.find(Url); At != Line.npos) Line.replace(At, Url.size(), "DB");
      Log.push_back(std::to_string(static_cast<int>(Level)) + " " + Line);
    };
  }
  void Store() { StoreDescription(Url, Table); }
  TConnection& Connection() { return Manager.Databases().Connection(Url); }
  void Run(const std::string& Statement) { Connection().Execute(Statement); }
  std::string Type(TKvKind Kind) const { return GetParam().Types.at(Kind); }
  std::vector<std::string> RowsNow() { return Rows(Connection(), "T"); }
  bool HasTemporary() { return Connection().Schema().FindTable(TemporaryTableName).has_value(); }
  std::string Pattern() { return "2 CreateTable with Pattern =\"" + Connection().Scripts().TablePattern() + "\"; "; }

  TTemporaryFolder Folder;
  const TAddressed Address = GetParam().Address(Folder);
  const std::string& Url = Address.Url;
  TStandaloneManager Manager{TConfiguration()};
  TStructureStore Structures{Manager.Databases()};
  TStandaloneDictionary Real{Manager};
  TFailingDictionary Dictionary{Real};
  const TServiceGuard<TApplicationManager> ManagerGuard{&Manager};
  const TServiceGuard<TDSPContainer> StructuresGuard{&Structures};
  const TServiceGuard<TDictionary> DictionaryGuard{&Dictionary};
  std::vector<std::string> Asked;
  int Answer = IDYES;
  const TMessageBoxGuard Box{[this](TWindowHandle, std::u16string_view Text, std::u16string_view Caption, std::uint32_t,
                                    std::int32_t, std::int32_t) {
    Asked.push_back(FromUtf16(Caption) + "/" + FromUtf16(Text));
    return Answer;
  }};
  TDicTableDescription Table;
  TUORecreateTable Single;
  TUORecreateTables List;
  std::vector<std::string> Log;
  const std::vector<std::string> Before = {"18 1|10 one|10 x", "18 2|0 |10 y", "18 3|10 three|0 "};
  const std::vector<std::string> Behind = {"18 1|10 one|0 |18 7", "18 2|0 |0 |18 7", "18 3|10 three|0 |18 7"};
};

INSTANTIATE_TEST_SUITE_P(Engines, DriverRecreationTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(DriverRecreationTest, MakesTheTableAnewAndSaysEachStep) {
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(RowsNow(), Behind);
  EXPECT_EQ(Single.Rows(), 3);
  EXPECT_FALSE(HasTemporary());
  EXPECT_TRUE(Asked.empty());
  const std::string Temporary = TemporaryTableName, Drops = "2 %s-DeleteTempTable; Drop table '%s'; DB: DB";
  const auto Creates = [](const char* Step, const std::string& Name) {
    return Format("2 %s-CreateStructure; Create table '%s'; DB: DB", Step, Name);
  };
  const auto Exists = [&](const char* Check, const char* How) {
    return Format("2 %s of table '%s'(db = 'DB', desc1 = 'DeleteTempTable', desc2 = '%s') after creation/deleting: 0",
                  Check, Temporary, How);
  };
  EXPECT_EQ(Log, (std::vector<std::string>{Creates("beg", Temporary), Pattern(), Creates("end(ok)", Temporary),
                                           Creates("end(fin)", Temporary), Creates("beg", "t"), Pattern(),
                                           Creates("end(ok)", "t"), Creates("end(fin)", "t"), Creates("beg", "t"),
                                           Pattern(), Creates("end(ok)", "t"), Creates("end(fin)", "t"),
                                           Format(Drops, "beg", Temporary), Format(Drops, "end", Temporary),
                                           Exists("Existence_1", "by name"), Exists("Existence_2", "by opening")}));
  Log.clear();
  List.TableScriptPart = TTableScriptPart::Table;
  EXPECT_EQ(List.Execute(), 1);
  EXPECT_EQ(RowsNow(), Behind);
  const auto CreatesInList = [](const char* Step, const std::string& Name, int Index) {
    return Format("2 %s-CreateStructure1; Create table '%s'; StructureName: 't'; CreateIndex: %d; DB: DB", Step, Name,
                  Index);
  };
  ASSERT_EQ(Log.size(), 12U) << "of the last part nothing is made";
  EXPECT_EQ(Log[0], CreatesInList("beg", Temporary, 0));
  EXPECT_EQ(Log[2], CreatesInList("end(ok)", Temporary, 0));
  EXPECT_EQ(Log[7], CreatesInList("end(fin)", "t", 1));
  EXPECT_EQ(Log[8], Format("2 beg-DeleteTempTable1; Drop table '%s'; DB: DB", Temporary));
  EXPECT_EQ(Log[9], Format("2 end-DeleteTempTable1; Drop table '%s'; DB: DB", Temporary));
}

TEST_P(DriverRecreationTest, AsksAndHeedsTheAnswers) {
  Single.OverWrite.FAlwaysAsk = Single.SaveData.FAlwaysAsk = true;
  const std::string Overwrite = "ST_CONFIRMATION %s/M_Velkrund_DicUtils_RecreateOverwriteConfirm t";
  Answer = IDNO;
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(RowsNow(), Before);
  EXPECT_THAT(Asked, ElementsAre(Overwrite));
  Asked.clear();
  Single.OverWrite.FCallback = [this](TAskObject& Ask, TUtilOperation* Sender) {
    EXPECT_EQ(Sender, &Single);
    EXPECT_EQ(Ask.fAskCallbackString, "M_Velkrund_DicUtils_RecreateOverwriteConfirm t");
    static_cast<TYesNoAsk&>(Ask).FYes = true;
  };
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(Single.End(), TEnd::Emptied);
  EXPECT_THAT(Asked, ElementsAre("ST_CONFIRMATION %s/M_Velkrund_DicUtils_SaveTableDataConfirm t"));
  EXPECT_TRUE(RowsNow().empty());
  EXPECT_EQ(Connection().Schema().Describe(*Connection().Schema().FindTable("T")).Columns.size(), 4U);
  // One that is not there is made without a question.
  Run("DROP TABLE T");
  Asked.clear();
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(Single.End(), TEnd::Made);
  EXPECT_TRUE(Asked.empty());
  // A long name may be declined.
  const std::string Long(31, 'N');
  Table.Name = Single.TableName = Long;
  Store();
  Answer = IDYES;
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_THAT(Asked, ElementsAre("ST_CONFIRMATION %s/M_Velkrund_DSPUtils_CreateLongNameTable_Cancel " + Long));
  EXPECT_FALSE(Connection().Schema().FindTable(Long));
}

TEST_P(DriverRecreationTest, TheListAsksForEachUntilItIsTold) {
  List.OverWrite.FAlwaysAsk = List.SaveData.FAlwaysAsk = true;
  std::vector<std::string> Texts;
  int Code = 0;  // 1: yes, 2: yes to all, 3: no to all, 4: cancel
  const TAskCallback Callback = [&](TAskObject& Ask, TUtilOperation*) {
    auto& Data = static_cast<TYesNoCancelAsk&>(Ask);
    Texts.push_back(Ask.fAskCallbackString);
    Data.FYes = Code <= 2;
    Data.FAlwaysAsk = Code != 2 && Code != 3;
    Data.FCancel = Code == 4;
  };
  List.OverWrite.FCallback = List.SaveData.FCallback = Callback;
  const std::string Overwrite = "M_Velkrund_DicUtils_RecreateOverwriteConfirm t",
                    Save = "M_Velkrund_DicUtils_SaveDataAskConfirm t";
  List.TableNames = TStringList{"t", "", "t", "nowhere", "t"};
  Code = 1;
  EXPECT_EQ(List.Execute(), 1);
  EXPECT_THAT(Texts, ElementsAre(Overwrite, Save, Overwrite, Save, Overwrite, Save));
  EXPECT_THAT(Asked, ElementsAre("ST_CONFIRMATION %s/M_Velkrund_DicUtils_TableForRecreateNotFound nowhere"));
  EXPECT_EQ(RowsNow(), Behind);
  Texts.clear();
  Answer = IDNO;
  EXPECT_EQ(List.Execute(), 0) << "No to the missing structure ends the list";
  EXPECT_EQ(Texts.size(), 4U);
  Texts.clear();
  List.TableNames = TStringList{"t", "t"};
  Code = 4;
  EXPECT_EQ(List.Execute(), 0);
  EXPECT_THAT(Texts, ElementsAre(Overwrite));
  Texts.clear();
  Code = 2;
  EXPECT_EQ(List.Execute(), 1);
  EXPECT_THAT(Texts, ElementsAre(Overwrite, Save));
  EXPECT_EQ(RowsNow(), Behind);
  Texts.clear();
  List.OverWrite.FAlwaysAsk = true;
  Code = 3;
  EXPECT_EQ(List.Execute(), 1);
  EXPECT_THAT(Texts, ElementsAre(Overwrite));
}

TEST_P(DriverRecreationTest, AnErrorBeforeTheRebuildLeavesEverything) {
  const struct {
    const char* Name;
    std::function<void()> Prepare;
    const char* Error;
  } Cases[] = {
      {"no structure", [&] { Single.TableName = "nowhere"; },
       "EDicUtilError: Can not create table. Dictionary structure not found (Table:'nowhere';Database:'"},
      {"unreadable structure", [&] { Dictionary.Reads = false; },
       "EDicUtilError: Can not create table. Error reading dictionary structure (Table:'t';Database:'"},
      {"the temporary table is taken",
       [&] { Run(std::string("CREATE TABLE \"") + TemporaryTableName + "\" (A " + Type(TKvKind::Int64) + ")"); },
       "EDicUtilError: Can not recreate the table 't': there is a table 'TEMPTABLEFORRECREATE' in the database "
       "already"},
      {"a value that is not taken",
       [&] {
         Table.Fields[1].NotNull = true;
         Store();
       },
       "NAME"},
      {"the new table cannot be made",
       [&] {
         Dictionary.Before = [](const TDicTableDescription& Made, TTableScriptPart) {
           if (Made.Name != TemporaryTableName) throw EDatabaseError("no room");
         };
       },
       "EDatabaseError: no room"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Name);
    Case.Prepare();
    EXPECT_THAT(ErrorOf([&] { Single.Execute(); }), HasSubstr(Case.Error));
    EXPECT_EQ(RowsNow(), Before);
    if (std::string(Case.Name) == "the temporary table is taken") {
      EXPECT_TRUE(HasTemporary()) << "what somebody else has is not dropped";
      Run(std::string("DROP TABLE \"") + TemporaryTableName + "\"");
    }
    EXPECT_FALSE(HasTemporary());
    Single.TableName = "t";
    Dictionary.Reads = true;
    Table.Fields[1].NotNull = false;
    Store();
    Dictionary.Before = nullptr;
  }
}

TEST_P(DriverRecreationTest, WithinATransactionNothingIsLostAtAnyStep) {
  Table.Indexes = {{.Name = "T_FRESH", .Unique = true, .Columns = {{"GIVEN"}}}};
  Store();
  Manager.StartTransaction(Url, TIsolationLevel::RepeatableRead);
  EXPECT_THAT(ErrorOf([&] { Single.Execute(); }), HasSubstr("EDatabaseError"));
  Manager.RollbackTransaction(Url);
  EXPECT_EQ(RowsNow(), Before);
  EXPECT_FALSE(HasTemporary());
  // So it is with the tables of a list, and a person says whether the others are gone on with.
  List.TableNames = TStringList{"t", "t"};
  EXPECT_EQ(List.Execute(), 1);
  EXPECT_EQ(RowsNow(), Before);
  ASSERT_EQ(Asked.size(), 2U);
  EXPECT_THAT(Asked[0], AllOf(HasSubstr("/M_Velkrund_DicUtils_ErrorOnRecreateTable %s\r\n"),
                              HasSubstr("\r\nM_Velkrund_DicUtils_ContinueRecreate %s")));
  Answer = IDNO;
  EXPECT_THAT(ErrorOf([&] { List.Execute(); }), HasSubstr("EDatabaseError"));
  EXPECT_EQ(Asked.size(), 3U);
  EXPECT_EQ(RowsNow(), Before);
}

TEST_P(DriverRecreationTest, ACancelledCopyLeavesTheTable) {
  // Another type, so that the rows go one by one.
  Table.Fields[0].Type = TDicFieldType::String;
  Store();
  Single.FOnShowProgress = [&](std::int32_t Current, std::int32_t, std::string_view) {
    if (Current == 2) Single.SetCanceled(true);
  };
  EXPECT_EQ(Single.Execute(), 0);
  EXPECT_EQ(Single.End(), TEnd::LeftAlone);
  EXPECT_EQ(RowsNow(), Before);
  EXPECT_FALSE(HasTemporary());
}

TEST_P(DriverRecreationTest, TheOneWhoseWordsCannotBeStoredGoesAlone) {
  class TMaker final : public TTableMaker {
   public:
    using TTableMaker::TTableMaker;

   private:
    bool MayMake(const std::vector<TDicTableDescription>&) override { return true; }
    bool MayGoByName(const TDicTableDescription&) override { return true; }
    bool CommitsSteps() const override { return false; }
  };
  std::vector<std::string> Names;
  for (int Number = 0; Number < 70; ++Number) {
    Table.Name = "N" + std::to_string(Number);
    Table.Indexes.clear();
    Store();
    Names.push_back(Table.Name);
  }
  std::size_t Questions = 0;
  Dictionary.BeforeWords = [&](const std::vector<std::string>& Tables) {
    ++Questions;
    // As a server does, which refuses all that follows as well.
    if (std::find(Tables.begin(), Tables.end(), "N66") != Tables.end()) Run("SELECT * FROM nowhere");
  };
  std::vector<std::string> Failed;
  Manager.StartTransaction(Url, TIsolationLevel::ReadCommitted);
  TMaker Maker(Single, Url);
  Maker.Make(Names);
  Maker.Complete([&](const std::string& Name, const std::exception&) { Failed.push_back(Name); },
                 [&](const std::string& Name) { Failed.push_back("also " + Name); });
  Manager.CommitTransaction(Url);
  EXPECT_THAT(Failed, ElementsAre("N66"));
  EXPECT_EQ(Questions, 8U) << "64, then the last 6, then each of these";
  EXPECT_FALSE(Connection().Schema().FindTable("N66"));
  const std::string Engine(Connection().Scripts().Engine());
  for (const char* Name : {"N0", "N65", "N67", "N69"}) {
    EXPECT_TRUE(Connection().Schema().FindTable(Name)) << Name;
    EXPECT_TRUE(StoredTable(Url, Name)->Fields[0].Words.contains(Engine)) << Name;
  }
  EXPECT_FALSE(StoredTable(Url, "N66")->Fields[0].Words.contains(Engine));
}

TEST_P(DriverRecreationTest, TablesInsideBLOBFieldsAreCarriedOver) {
  const auto Inside = [&](const std::string& Name, const TBLOBTable::TFields& Fields,
                          const std::vector<TKvVariant>& Row) {
    const auto Result = Manager.NewBLOBTable(Name, Fields);
    Result->BeginAppend();
    for (std::size_t Index = 0; Index < Row.size(); ++Index)
      Result->Record().Fields(static_cast<int>(Index)).SetValue(Row[Index]);
    Result->AppendRecord();
    Result->EndAppend();
    return Result->Bytes();
  };
  const auto Number = [](std::int64_t Value) { return Made([&](TKvVariant& Cell) { Cell.SetInteger(Value); }); };
  const auto Put = [&](const std::string& Bytes) {
    const TKvVariant Cell = Made([&](TKvVariant& Value) { Value.SetBytes(Bytes); });
    Connection().Execute("UPDATE T SET PIC = " + Connection().Dialect().ParameterMark(1), {&Cell, 1});
  };
  const auto Kept = [&] {
    const auto Found = Manager.GetUserTable("T", Url, false);
    EXPECT_TRUE(Found->First());
    return std::string(Found->FindField("PIC")->Value().AsText());
  };
  Run("ALTER TABLE T ADD PIC " + Type(TKvKind::Bytes));
  Run("DELETE FROM T WHERE ID > 1");
  const std::string Physical = Connection().Schema().Describe(*Connection().Schema().FindTable("T")).Columns[3].Name;
  Table.Fields.push_back({.Name = Physical, .Type = TDicFieldType::Bytes});
  Store();
  const std::string Old = Inside("OLD", {{"WIDTH", TKvKind::Int64}, {"GONE", TKvKind::Int64}}, {Number(3), Number(4)});
  const std::string New =
      Inside("t." + Physical, {{"W", TKvKind::Int64}, {"FRESH", TKvKind::String}}, {Number(3), TKvVariant()});
  Put(Old);
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(Kept(), Old) << "no structure describes the inside";
  TDicTableDescription Described;
  Described.Name = "T." + Physical;
  Described.Fields = {{.Name = "W", .Type = TDicFieldType::Int64}, {.Name = "FRESH", .Type = TDicFieldType::String}};
  StoreDescription(Url, Described);
  Single.ExcludedBLOBTableFields = TStringList{"pic"};
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(Kept(), Old) << "it is excluded";
  Single.ExcludedBLOBTableFields.Clear();
  Single.SetBLOBMapping({{"pic.Width", "w"}});
  EXPECT_EQ(Single.FindBLOBFieldMapping("PIC", "W"), "Width");
  EXPECT_EQ(Single.FindBLOBFieldMapping("OTHER", "W"), "W");
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_EQ(Kept(), New);
  EXPECT_EQ(Single.LostFields().size(), 1U);
  for (const std::string& Plain : {std::string("plain"), std::string()}) {
    Put(Plain);
    EXPECT_EQ(Single.Execute(), 1);
    EXPECT_EQ(Kept(), Plain);
  }
  Put(Old.substr(0, Old.size() - 1));
  EXPECT_EQ(ErrorOf([&] { Single.Execute(); }),
            Format("EDicUtilError: Error opening BLOB table in field '%s' in the table 't'", Physical));
  EXPECT_EQ(Kept(), Old.substr(0, Old.size() - 1));
  Described.Fields.clear();
  StoreDescription(Url, Described);
  EXPECT_EQ(ErrorOf([&] { Single.Execute(); }),
            Format("EDicUtilError: Error getting BLOB table in field '%s' in the table 't'", Physical));
  EXPECT_FALSE(HasTemporary());
}

TEST_P(DriverRecreationTest, OfAListEachTableTakesItsOwnPartOfTheMapping) {
  Run("CREATE TABLE OTHER (ID " + Type(TKvKind::Int64) + ", TOTAL " + Type(TKvKind::Int64) + ")");
  Run("INSERT INTO OTHER VALUES (1, 99)");
  TDicTableDescription Other;
  Other.Name = Connection().Schema().FindTable("OTHER")->Name;
  Other.Fields = {{.Name = "ID", .Type = TDicFieldType::Int64}, {.Name = "TOTAL", .Type = TDicFieldType::Int64}};
  StoreDescription(Url, Other);
  Table.Fields[2].Name = "TOTAL";
  Store();
  List.TableNames = TStringList{"t", "other"};
  for (const char* Old : {"T.OLD", "old"}) {
    List.FieldMapping = {{Old, "TOTAL"}};
    EXPECT_EQ(List.Execute(), 1);
    EXPECT_THAT(RowsNow(), ElementsAre("18 1|10 one|10 x|18 7", "18 2|0 |10 y|18 7", "18 3|10 three|0 |18 7"));
    EXPECT_THAT(Rows(Connection(), "OTHER"), ElementsAre("18 1|18 99"));
    Run("ALTER TABLE T RENAME COLUMN \"TOTAL\" TO \"OLD\"");
  }
}

TEST_P(DriverRecreationTest, FieldsTakeTheValuesThatTheMappingSays) {
  Table.Fields[2].Name = "id2";
  Table.Fields[2].Type = TDicFieldType::Int64;
  Store();
  Single.FieldMapping = {{"old", "name"}, {"Id", "ID2"}};
  EXPECT_EQ(Single.FindFieldMapping("NAME"), "old");
  EXPECT_EQ(Single.FindFieldMapping("other"), "other");
  EXPECT_EQ(Single.Execute(), 1);
  EXPECT_THAT(RowsNow(), ElementsAre("18 1|10 x|18 1|18 7", "18 2|10 y|18 2|18 7", "18 3|0 |18 3|18 7"));
}

}  // namespace
}  // namespace velkrund::tests
