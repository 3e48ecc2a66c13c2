// Tables, views, generators and procedures, made from structures, as every engine has them.

#include <gmock/gmock.h>

#include "standalone/dictionary/CatalogueGenerators.h"
#include "standalone/dictionary/DicDatabase.h"
#include "standalone/dictionary/StandaloneDictionary.h"
#include "standalone/dictionary/StoredDescriptions.h"
#include "standalone/drivers/GeneratorRange.h"
#include "standalone/drivers/TextLines.h"
#include "standalone/structures/StructureStore.h"
#include "tests/standalone/DriverFixture.h"
#include "velkrund/dictionary/RecreateKinds.h"
#include "velkrund/operations/MessageBoxHook.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/InstalledService.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr int Kinds[] = {GeneratorObjectType, ViewObjectType, ExecStoredProcObjectType, SelectStoredProcObjectType};

class DriverObjectsTest : public testing::TestWithParam<TEngine> {
 protected:
  DriverObjectsTest() {
    Manager.Databases().SetCreateMissing(true);
    Run("CREATE TABLE \"WORDS\" (\"W\" " + GetParam().Types.at(TKvKind::Int64) + ")");
  }
  TConnection& Connection() { return Manager.Databases().Connection(Url); }
  void Run(const std::string& Statement) { Connection().Execute(Statement); }
  std::string Engine() { return std::string(Connection().Scripts().Engine()); }

  TDicViewDescription View(const std::string& Name, const std::string& Text, const std::string& Of = {}) {
    TDicViewDescription Result;
    Result.Name = Name;
    Result.Words[Of.empty() ? Engine() : Of].Lines = SplitLines(Text);
    return Result;
  }
  TDicGeneratorDescription Generator(const std::string& Name, const TDicCounter& Counter = {}) {
    TDicGeneratorDescription Result;
    Result.Name = Name;
    Result.Counter = Counter;
    return Result;
  }
  TDicProcedureDescription Procedure(const std::string& Name, bool Selects, const std::string& Text,
                                     const std::string& Of = {}) {
    TDicProcedureDescription Result;
    Result.Name = Name;
    Result.Selects = Selects;
    Result.Language = "sql";
    Result.Parameters = {{.Name = "A", .Type = TDicFieldType::Int64}};
    if (Selects) Result.Result = {{.Name = "N", .Type = TDicFieldType::Int64}};
    Result.Words[Of.empty() ? Engine() : Of].Lines = SplitLines(Text);
    return Result;
  }

  void StoreStructure(int Kind, const std::string& Name) {
    if (Kind == GeneratorObjectType) return StoreDescription(Url, Generator(Name));
    if (Kind == ViewObjectType) return StoreDescription(Url, View(Name, "SELECT \"W\"\nFROM \"WORDS\""));
    const bool Selects = Kind == SelectStoredProcObjectType;
    StoreDescription(Url, Procedure(Name, Selects, Selects ? GetParam().Selects : GetParam().Deletes));
  }
  bool Exists(int Kind, const std::string& Name) {
    if (Kind == GeneratorObjectType) return Objects.GeneratorExist(Name);
    if (Kind == ViewObjectType) return Objects.ViewExist(Name);
    return Kind == ExecStoredProcObjectType ? Objects.ExecStoredProcExist(Name) : Objects.SelectStoredProcExist(Name);
  }
  std::string Create(int Kind, const std::string& Name, bool Replace = false) {
    return ErrorOf([&] {
      if (Kind == GeneratorObjectType) return Objects.CreateGenerator(Name, std::nullopt, Replace);
      if (Kind == ViewObjectType) return Objects.CreateView(Name, Replace, true);
      Kind == ExecStoredProcObjectType ? Objects.CreateExecStoredProc(Name, Replace)
                                       : Objects.CreateSelectStoredProc(Name, Replace);
    });
  }
  std::string Drop(int Kind, const std::string& Name) {
    return ErrorOf([&] {
      if (Kind == GeneratorObjectType) return Objects.DropGenerator(Name);
      Kind == ViewObjectType ? Objects.DropView(Name) : Objects.DropStoredProc(Name);
    });
  }
  /// Which of the kinds there are of a name.
  std::string Existing(const std::string& Name) {
    std::string Result;
    for (const int Kind : Kinds)
      if (Exists(Kind, Name)) Result += std::to_string(Kind) + " ";
    return Result;
  }

  TTemporaryFolder Folder;
  const TAddressed Address = GetParam().Address(Folder);
  const std::string& Url = Address.Url;
  TStandaloneManager Manager{TConfiguration()};
  TStructureStore Structures{Manager.Databases()};
  const TServiceGuard<TApplicationManager> ManagerGuard{&Manager};
  const TServiceGuard<TDSPContainer> StructuresGuard{&Structures};
  TGapBook Gaps;
  TStandaloneDicDatabases Databases{Manager, Gaps};
  TStandaloneDicDatabase& Objects = Databases.Database(Url);
};

INSTANTIATE_TEST_SUITE_P(Engines, DriverObjectsTest, testing::ValuesIn(Engines()),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(DriverObjectsTest, AreMadeFoundAndDroppedWhateverTheirNames) {
  for (const std::string Name : {"Plain", "select", "a\"b", "x'; DROP TABLE Y; --", "Заказы", " blanks ", "%s"})
    for (const int Kind : Kinds) {
      SCOPED_TRACE(Name + " " + std::to_string(Kind));
      EXPECT_THAT(Create(Kind, Name), AllOf(HasSubstr("no structure that describes"), HasSubstr(Name)));
      EXPECT_THAT(Drop(Kind, Name), HasSubstr("There is no "));
      StoreStructure(Kind, Name);
      const std::string Expected = std::to_string(Kind) + " ";
      EXPECT_EQ(Existing(Name), "");
      ASSERT_EQ(Create(Kind, Name), "no error");
      for (const std::string& Spelled : {Name, UpperCase(Name), LowerCase(Name)})
        EXPECT_EQ(Existing(Spelled), Expected);
      EXPECT_THAT(Create(Kind, LowerCase(Name)), HasSubstr("already"));
      EXPECT_EQ(Existing(Name), Expected);
      EXPECT_EQ(Drop(Kind, UpperCase(Name)), "no error");
      EXPECT_EQ(Existing(Name), "");
      EXPECT_THAT(Drop(Kind, Name), AllOf(HasSubstr("There is no "), HasSubstr(Name)));
    }
}

TEST_P(DriverObjectsTest, TablesAreMadeFoundAndDroppedToo) {
  TStandaloneDictionary Dictionary(Manager);
  TDicTableDescription Table;
  Table.Fields = {{.Name = "a\"b", .Type = TDicFieldType::Int64, .NotNull = true},
                  {.Name = "select", .Type = TDicFieldType::String, .Size = 20}};
  Table.Keys = {{.Primary = true, .Columns = {{"a\"b"}}}};
  const auto Make = [&] {
    return ErrorOf([&] {
      TTransaction Transaction(Url);
      Dictionary.CreateTableByDef(Url, Table, Dictionary.GetCreateTablePatternString("", Url), TTableScriptPart::All,
                                  false);
      Transaction.Commit();
    });
  };
  for (const std::string Name : {"Plain", "select", "a\"b", "x'; DROP TABLE Y; --", "Заказы", " blanks ", "%s"}) {
    SCOPED_TRACE(Name);
    TDicTableDescription Found;
    EXPECT_FALSE(Dictionary.GetDicTable(Url).GetTableInfo(Name, Found));
    Table.Name = Name;
    StoreDescription(Url, Table);
    ASSERT_TRUE(Dictionary.GetDicTable(Url).GetTableInfo(LowerCase(Name), Found));
    EXPECT_EQ(Found, Table);
    Manager.StartTransaction(Url, TIsolationLevel::RepeatableRead);
    ASSERT_EQ(Make(), "no error");
    EXPECT_TRUE(Connection().Schema().FindTable(Name));
    Manager.RollbackTransaction(Url);
    EXPECT_FALSE(Connection().Schema().FindTable(Name));
    ASSERT_EQ(Make(), "no error");
    EXPECT_EQ(Connection().Schema().FindTable(UpperCase(Name))->Name, Name);
    EXPECT_FALSE(Objects.ViewExist(Name));
    EXPECT_NE(Make(), "no error");
    ASSERT_TRUE(Dictionary.GetDicTable(Url).GetTableInfo(Name, Found));
    EXPECT_NE(WordsOf(Found.Fields[0].Words, Engine()), nullptr) << "the engine's words are kept";
    Dictionary.DropTable(Url, Table);
    EXPECT_FALSE(Connection().Schema().FindTable(Name));
    EXPECT_NE(ErrorOf([&] { Dictionary.DropTable(Url, Table); }), "no error");
  }
}

TEST_P(DriverObjectsTest, OnesThatAreRolledBackOrRefusedLeaveNothing) {
  for (const int Kind : Kinds) StoreStructure(Kind, "O");
  for (const int Kind : Kinds) {
    SCOPED_TRACE(Kind);
    Manager.StartTransaction(Url, TIsolationLevel::RepeatableRead);
    ASSERT_EQ(Create(Kind, "O"), "no error");
    EXPECT_NE(Create(Kind, "O"), "no error");
    EXPECT_EQ(Existing("O"), std::to_string(Kind) + " ") << "a refused part took the whole with it";
    Manager.RollbackTransaction(Url);
    EXPECT_EQ(Existing("O"), "");
  }
  ASSERT_EQ(Create(GeneratorObjectType, "O"), "no error");
  Manager.StartTransaction(Url, TIsolationLevel::RepeatableRead);
  Objects.SetGenerator("o", 1, 70);
  EXPECT_EQ(Objects.GeneratorValue("O"), 70);
  Manager.RollbackTransaction(Url);
  EXPECT_EQ(Objects.GeneratorValue("O"), 0);
  ASSERT_EQ(Drop(GeneratorObjectType, "O"), "no error");

  Run(GetParam().ReadOnly);
  for (const int Kind : Kinds) {
    EXPECT_NE(Create(Kind, "O"), "no error") << Kind;
    EXPECT_EQ(Existing("O"), "");
  }
}

TEST_P(DriverObjectsTest, GeneratorsCountAsDescribed) {
  constexpr std::int64_t Max = INT64_MAX, Min = INT64_MIN;
  const struct {
    TDicCounter Counter;
    std::optional<std::int64_t> Start;
    std::int64_t First;              // the value of one that was never asked
    std::vector<std::int64_t> Sets;  // each is its value then
    std::int64_t Refused;            // what it cannot stand at; 0: nothing
  } Cases[] = {
      {{}, {}, 0, {0, 1, Max - 1, Max}, -1},
      {{.Start = "5", .Step = "10"}, {}, -5, {5, 700}, -20},
      {{}, 9, 8, {9}, 0},
      {{.Step = "-1"}, {}, 0, {-1, -7, Min}, 2},
      {{.Start = "3", .Min = "2", .Max = "4", .Cycle = true}, {}, 2, {4, 3, 2}, 5},
      {{.Start = std::to_string(Max), .Min = "0"}, {}, Max - 1, {0, Max}, Min},
  };
  int Number = 0;
  for (const auto& Case : Cases) {
    const std::string Name = "G" + std::to_string(++Number);
    SCOPED_TRACE(Name);
    StoreDescription(Url, Generator(Name, Case.Counter));
    Objects.CreateGenerator(Name, Case.Start, false);
    EXPECT_EQ(Objects.GeneratorValue(Name), Case.First);
    for (const std::int64_t Value : Case.Sets) {
      Objects.SetGenerator(Name, 1, Value);
      EXPECT_EQ(Objects.GeneratorValue(Name), Value);
    }
    if (Case.Refused == 0) continue;
    EXPECT_NE(ErrorOf([&] { Objects.SetGenerator(Name, 1, Case.Refused); }), "no error");
    EXPECT_EQ(Objects.GeneratorValue(Name), Case.Sets.back());
  }
  for (const auto& [Step, Value] : {std::pair<std::int64_t, std::int64_t>{1, 40}, {5, -100}, {-2, 30}}) {
    const std::string Name = "New" + std::to_string(Step);
    Objects.SetGenerator(Name, Step, Value);
    EXPECT_EQ(Objects.GeneratorValue(Name), Value) << "one that was not there";
  }
  for (const TDicCounter& Wrong : {TDicCounter{.Start = "x"},
                                   {.Step = "0"},
                                   {.Min = "5", .Max = "5"},
                                   {.Start = "9", .Max = "8"},
                                   {.Max = "9223372036854775808"}}) {
    StoreDescription(Url, Generator("WRONG", Wrong));
    EXPECT_NE(Create(GeneratorObjectType, "WRONG"), "no error");
  }
  EXPECT_EQ(Existing("WRONG"), "");
}

TEST_P(DriverObjectsTest, ReplacedGeneratorsGoOnWhereTheyStand) {
  const struct {
    TDicCounter Before;
    std::optional<std::int64_t> Stands;  // nothing: it was never asked
    TDicCounter After;
    std::optional<std::int64_t> Start;
    std::optional<std::int64_t> Expected;  // nothing: it is refused
  } Cases[] = {
      {{}, 41, {.Step = "5", .Min = "-9", .Max = "900", .Cycle = true}, {}, 41},
      {{.Step = "5", .Max = "900", .Cycle = true}, 41, {}, {}, 41},
      {{}, 41, {.Step = "-1", .Max = "50"}, {}, 41},
      {{}, {}, {.Step = "10"}, {}, -9},  // its first number stays the first one
      {{}, 41, {.Start = "7"}, {}, 41},
      {{}, 41, {}, 7, 6},
      {{}, 41, {.Step = "10"}, 7, -3},
      {{}, 41, {.Max = "10"}, {}, {}},
      {{}, 41, {.Max = "10"}, 3, 2},
      {{}, {}, {.Start = "100"}, {}, 99},
      {{.Start = "100"}, {}, {}, {}, 99},
      {{.Step = "-1"}, {}, {.Start = "-20", .Step = "-1"}, {}, -19},
  };
  int Number = 0;
  for (const auto& Case : Cases) {
    const std::string Name = "G" + std::to_string(++Number);
    SCOPED_TRACE(Name);
    StoreDescription(Url, Generator(Name, Case.Before));
    ASSERT_EQ(Create(GeneratorObjectType, Name), "no error");
    if (Case.Stands) Objects.SetGenerator(Name, 1, *Case.Stands);
    StoreDescription(Url, Generator(Name, Case.After));
    const std::string Error = ErrorOf([&] { Objects.CreateGenerator(LowerCase(Name), Case.Start, true); });
    EXPECT_EQ(Error == "no error", Case.Expected.has_value()) << Error;
    EXPECT_EQ(Objects.GeneratorValue(Name), Case.Expected.value_or(Case.Stands.value_or(0)));
    const TDicCounter Counts = Objects.Generators()->Find(Name)->Counter;
    const TGeneratorRange Now = RangeOf(Name, Counts), Due = RangeOf(Name, Case.Expected ? Case.After : Case.Before);
    EXPECT_EQ(std::tie(Now.Start, Now.Step, Now.Min, Now.Max, Now.Cycle),
              std::tie(Due.Start, Due.Step, Due.Min, Due.Max, Due.Cycle));
    EXPECT_EQ(Objects.Generators()->Find(LowerCase(Name))->Name, Name) << "a second one in another case";
  }
  for (const auto& [Step, Stands, Value, Expected] : {std::tuple<const char*, int, int, int>{"1", 41, 40, 41},
                                                      {"1", 41, 50, 50},
                                                      {"-1", -5, -3, -5},
                                                      {"-1", -5, -9, -9}}) {
    const std::string Name = "A" + std::to_string(++Number);
    StoreDescription(Url, Generator(Name, {.Step = Step}));
    ASSERT_EQ(Create(GeneratorObjectType, Name), "no error");
    Objects.SetGenerator(Name, 1, Stands);
    Objects.AdvanceGenerator(Name, Value);
    EXPECT_EQ(Objects.GeneratorValue(Name), Expected) << Step << " " << Value;
  }
}

TEST_P(DriverObjectsTest, ReplacedProceduresAreTheNewOnesOrTheOldOnes) {
  for (const int Kind : {ExecStoredProcObjectType, SelectStoredProcObjectType}) {
    const std::string Name = "Proc" + std::to_string(Kind);
    const bool Selects = Kind == SelectStoredProcObjectType;
    const std::string Text = Selects ? GetParam().Selects : GetParam().Deletes;
    StoreStructure(Kind, Name);
    ASSERT_EQ(Create(Kind, Name, true), "no error") << "none was there";
    const auto Body = [&] { return Objects.Procedures()->Find(Name)->Words.at(Engine()).Lines; };
    StoreDescription(Url, Procedure(UpperCase(Name), Selects, "-- new\n" + Text));
    ASSERT_EQ(Create(Kind, Name, true), "no error");
    EXPECT_EQ(Body().front(), "-- new");
    TDicProcedureDescription Other = Procedure(Name, Selects, "-- newer\n" + Text);
    Other.Parameters.push_back({.Name = "B", .Type = TDicFieldType::String});
    StoreDescription(Url, Other);
    ASSERT_EQ(Create(Kind, Name, true), "no error");
    EXPECT_EQ(Body().front(), "-- newer");
    EXPECT_EQ(Objects.Procedures()->Find(LowerCase(Name))->Parameters.size(), 2U);
    StoreDescription(Url, Procedure(Name, Selects, "SELECT FROM nothing WHERE ("));
    EXPECT_NE(Create(Kind, Name, true), "no error");
    EXPECT_EQ(Body().front(), "-- newer");
    const int OtherKind = Selects ? ExecStoredProcObjectType : SelectStoredProcObjectType;
    StoreStructure(OtherKind, Name);
    EXPECT_THAT(Create(OtherKind, Name, true),
                HasSubstr(Selects ? "already that returns rows; drop it first" : "already that returns no rows"));
    EXPECT_EQ(Existing(Name), std::to_string(Kind) + " ");
  }
}

TEST_P(DriverObjectsTest, TheContainerFindsTheOrderOfWhatNeedsEachOther) {
  const TServiceGuard<TDicDBContainer> Dictionary{&Databases};
  const TRecreateOperationsGuard Operations{TRecreateOperationList()};
  for (const TRecreateKind* const Kind : {&GeneratorKind, &ViewKind, &ExecStoredProcKind, &SelectStoredProcKind})
    RecreateOperations().Register(Kind->ObjectType, Kind->Single);
  std::string Report;
  const TMessageBoxGuard Box{[&](TWindowHandle, std::u16string_view Text, auto...) {
    Report = FromUtf16(Text);
    return IDOK;
  }};
  TUORecreateContainer Container;
  Container.DatabaseName = Url;
  const auto Add = [&](int Kind, const std::string& Name) { ASSERT_TRUE(Container.Add(Kind, Name)); };
  for (const int Kind : {SelectStoredProcObjectType, ExecStoredProcObjectType}) {
    StoreStructure(Kind, "P" + std::to_string(Kind));
    Add(Kind, "P" + std::to_string(Kind));
  }
  constexpr int Depth = 6;
  for (int Number = 1; Number <= Depth; ++Number) {
    const std::string From = Number == Depth ? "WORDS" : "V" + std::to_string(Number + 1);
    StoreDescription(Url, View("V" + std::to_string(Number), "SELECT \"W\" FROM \"" + From + "\""));
    Add(ViewObjectType, "V" + std::to_string(Number));
  }
  StoreDescription(Url, View("BAD1", "SELECT \"W\" FROM \"BAD2\""));
  StoreDescription(Url, View("BAD2", "SELECT \"W\" FROM \"NOWHERE\""));
  for (const char* Name : {"BAD1", "BAD2"}) Add(ViewObjectType, Name);
  StoreStructure(GeneratorObjectType, "G");
  Add(GeneratorObjectType, "G");

  TTransaction Run(Url);
  EXPECT_EQ(Container.Execute(), 1);
  EXPECT_THAT(Report, AllOf(HasSubstr("\r\nBAD1;BAD2;\r\nLast Error: "), HasSubstr("NOWHERE")));
  Run.Commit();
  EXPECT_EQ(Existing("V1") + Existing("P73") + Existing("P74") + Existing("G") + Existing("BAD1") + Existing("BAD2"),
            "72 73 74 71 ");
  EXPECT_TRUE(Rows(Connection(), "V1").empty());
}

TEST_P(DriverObjectsTest, ViewsAreTriedAndReplaced) {
  const auto Make = [&](const TDicViewDescription& Described, bool Replace, bool Verify) {
    StoreDescription(Url, Described);
    return ErrorOf([&] { Objects.CreateView(Described.Name, Replace, Verify); });
  };
  EXPECT_EQ(Make(View("V", "SELECT \"W\" FROM \"WORDS\""), true, true), "no error") << "none was there";
  EXPECT_EQ(Make(View("V", "SELECT 'x' AS \"OTHER\", 2 AS \"MORE\""), true, true), "no error");
  EXPECT_EQ(Rows(Connection(), "V").size(), 1U);
  EXPECT_NE(Make(View("V", "SELECT nothing FROM nowhere"), true, true), "no error");
  EXPECT_EQ(Rows(Connection(), "V").size(), 1U) << "the one before is gone";
  EXPECT_THAT(Make(View("WORDS", "SELECT 1 AS \"N\""), false, true), HasSubstr("WORDS"));
  EXPECT_THAT(Drop(ViewObjectType, "WORDS"), HasSubstr("There is no view 'WORDS'"));
}

// One that no engine has takes the place of the other one in these.
TEST_P(DriverObjectsTest, TextsOfOtherEnginesAreTriedAndNamed) {
  StoreDescription(Url, View("GOOD", "SELECT 1 AS \"N\"", "odbc"));
  StoreDescription(Url, View("BAD", "SELECT 1 AS \"N\" FROM \"NOWHERE\"", "odbc"));
  Objects.CreateView("good", false, false);
  EXPECT_EQ(StoredView(Url, "GOOD")->Words.at(Engine()).Lines.size() > 0, true);
  EXPECT_EQ(StoredView(Url, "GOOD")->Words.at("odbc").Lines, std::vector<std::string>{"SELECT 1 AS \"N\""});
  StoreDescription(Url, Procedure("GOOD", true, GetParam().Selects, "odbc"));
  StoreDescription(Url, Procedure("BAD", false, "SELECT TOP 1 FROM", "odbc"));
  EXPECT_EQ(Create(SelectStoredProcObjectType, "GOOD"), "no error");
  EXPECT_FALSE(StoredProcedure(Url, "GOOD", true)->Words.at(Engine()).Lines.empty());

  const std::string ViewError = ErrorOf([&] { Objects.CreateView("BAD", false, false); });
  EXPECT_THAT(ViewError,
              AllOf(HasSubstr("EGap"), HasSubstr("the view 'BAD'"), HasSubstr("ODBC"), HasSubstr("NOWHERE")));
  EXPECT_THAT(Create(ExecStoredProcObjectType, "BAD"),
              AllOf(HasSubstr("EGap"), HasSubstr("the procedure 'BAD'"), HasSubstr("ODBC")));
  Gaps.TakeNoted();
  Gaps.Allow({"views", "procedures"});
  EXPECT_THAT(Create(ViewObjectType, "BAD"), HasSubstr("EGap")) << "it may be made when there is more";
  EXPECT_THAT(Create(ExecStoredProcObjectType, "BAD"), HasSubstr("EGap"));
  EXPECT_EQ(Existing("BAD"), "");
}

TEST_P(DriverObjectsTest, ProceduresRunInTheCallersTransaction) {
  StoreStructure(ExecStoredProcObjectType, "CLEAR");
  StoreStructure(SelectStoredProcObjectType, "FIVE");
  ASSERT_EQ(Create(ExecStoredProcObjectType, "CLEAR") + Create(SelectStoredProcObjectType, "FIVE"), "no errorno error");
  Run("INSERT INTO \"WORDS\" VALUES (1), (2), (3)");
  const auto Procedures = Objects.Procedures();
  TKvVariant One, Value;
  One.SetInteger(1);
  for (const bool Commits : {false, true}) {
    TTransaction Transaction(Url);
    {
      const auto Clear = Procedures->Run(*Procedures->Find("CLEAR"), {One});
      EXPECT_THAT(Clear->Columns(), testing::IsEmpty());
      EXPECT_FALSE(Clear->Next());
      EXPECT_EQ(Clear->ChangedRows(), 2);
      const auto Five = Procedures->Run(*Procedures->Find("five"), {One});
      EXPECT_EQ(Five->Columns().size(), 1U);
      ASSERT_TRUE(Five->Next());
      Five->Read(0, Value);
      EXPECT_EQ(Shown(Value), "18 5");
      EXPECT_FALSE(Five->Next());
    }
    if (Commits) Transaction.Commit();
  }
  EXPECT_EQ(Rows(Connection(), "WORDS"), std::vector<std::string>{"18 3"}) << "the first of them was taken back";
}

TEST_P(DriverObjectsTest, CopiesUnderOtherNamesAreMade) {
  StoreStructure(ViewObjectType, "FIRST");
  auto Form = Structures.CreateFormManager(Url);
  Form->ObjectType = ViewObjectType, Form->ObjectName = "FIRST";
  ASSERT_TRUE(Form->LoadPureStructure());
  Form->ObjectName = "Second";
  ASSERT_TRUE(Form->SavePureStructure());
  ASSERT_EQ(Create(ViewObjectType, "Second"), "no error");
  EXPECT_EQ(Existing("FIRST") + "/" + Existing("Second"), "/72 ");
  EXPECT_EQ(Connection().Schema().FindTable("second")->Name, "Second");
}

}  // namespace
}  // namespace velkrund::tests
