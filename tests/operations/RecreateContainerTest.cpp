#include <gtest/gtest.h>

#include <set>

#include "tests/support/TestPlatform.h"
#include "velkrund/eif/Section.h"
#include "velkrund/operations/Comutils.h"
#include "velkrund/platform/dictionary/DicDatabase.h"

namespace velkrund::tests {
namespace {

constexpr int Types[] = {71, 72, 73, 74};

class TTexts : public TTestPlatform {
  std::string LString(std::string_view Key) const override { return std::string(Key) + " %s"; }
};

/// Has one object of each type, named after it.
class TOneOfEach : public TDicDatabase {
 public:
  bool GeneratorExist(const std::string& Name) override { return Name == "71"; }
  bool ViewExist(const std::string& Name) override { return Name == "72"; }
  bool ExecStoredProcExist(const std::string& Name) override { return Name == "73"; }
  bool SelectStoredProcExist(const std::string& Name) override { return Name == "74"; }
  std::int64_t GeneratorValue(const std::string&) override { return 0; }
  void SetGenerator(const std::string&, std::int64_t, std::int64_t) override {}
  void AdvanceGenerator(const std::string&, std::int64_t) override {}
  void CreateGenerator(const std::string&, std::optional<std::int64_t>, bool) override {}
  void DropGenerator(const std::string&) override {}
  void CreateView(const std::string&, bool, bool) override {}
  void DropView(const std::string&) override {}
  void CreateExecStoredProc(const std::string&, bool) override {}
  void CreateSelectStoredProc(const std::string&, bool) override {}
  void DropStoredProc(const std::string&) override {}
};

/// A database in which an object can be created once those it needs are there.
class RecreateContainer : public testing::Test {
 protected:
  class TRecreate : public TRecreateOperation {
   public:
    explicit TRecreate(RecreateContainer& Test) : FTest(Test) {}
    int Execute() override {
      FDeclined = ObjectName == "kept";
      return FTest.Create(*this);
    }
    void SetStartValue(std::int64_t Value) override { StartValue = Value; }
    std::int64_t StartValue = 0;

   private:
    RecreateContainer& FTest;
  };

  RecreateContainer() {
    for (const int Type : Types)
      RecreateOperations().Register(Type, [this] { return std::make_unique<TRecreate>(*this); });
    Container.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view Name) {
      Progress += std::to_string(Current) + "/" + std::to_string(Total) + std::string(Name) + " ";
    };
  }
  int Create(const TRecreateOperation& Operation) {
    const std::string& Name = Operation.ObjectName;
    Tried += Name + " ";
    if (Name == CancelAt) Container.SetCanceled(true);
    if (Name == "abort") throw EAbort("stop");
    if (Name == "unanswered") throw EQuestionUnanswered("who?");
    if (Name == "declined") return 0;
    if (Name == "kept") return 1;
    for (const std::string& Needed : Needs[Name])
      if (!Created.contains(Needed)) throw EDatabaseError("no " + Needed);
    Created.insert(Name);
    return 1;
  }

  TTexts Platform;
  TUORecreateContainer Container;
  std::map<std::string, std::vector<std::string>> Needs;
  std::set<std::string> Created;
  std::string Tried, Progress, CancelAt;
  std::vector<std::uint32_t> BoxFlags;

 private:
  const TRecreateOperationsGuard FOperations{TRecreateOperationList()};
  const TMessageBoxGuard FMessageBox{
      [this](TWindowHandle, std::u16string_view, std::u16string_view, std::uint32_t Flags, std::int32_t, std::int32_t) {
        BoxFlags.push_back(Flags);
        return IDOK;
      }};
};

TEST_F(RecreateContainer, TriesAgainWhileSomethingElseCouldBeCreated) {
  Needs = {{"v1", {"v2"}}, {"v2", {"g"}}, {"p1", {"v1"}}, {"v3", {"p1"}}};
  for (const auto& [Type, Name] : {std::pair{73, "p1"}, {72, "v1"}, {72, "v2"}, {71, "g"}, {72, "v3"}})
    ASSERT_TRUE(Container.Add(Type, Name));
  EXPECT_EQ(Container.Execute(), 1);
  EXPECT_EQ(Tried, "v1 v2 g v3 v1 v2 v3 v1 v3 v3 p1 v3 ");
  EXPECT_EQ(Progress, "1/5g 2/5v2 3/5v1 4/5p1 5/5v3 ");
  EXPECT_TRUE(BoxFlags.empty());
  Tried.clear();
  EXPECT_EQ(Container.Execute(), 1) << "what is created is not created again, nor reported";
  EXPECT_EQ(Tried, "");
}

TEST_F(RecreateContainer, ReportsWhatCouldNotBeCreated) {
  Needs = {{"a", {"x"}}, {"b", {"y"}}};
  for (const char* Name : {"a", "b", "c"}) Container.Add(74, Name);
  const std::string Failed = "M_Test_ComUtils_ErrorOnCreateDBStructure ";
  const std::string Report =
      "M_Velkrund_DicUtils_NotCreated_ObjectsInfo %s\r\na;b;\r\nLast Error: " + Failed + "b\r\nno y";
  EXPECT_EQ(Container.Execute(), 1);
  EXPECT_EQ(BoxFlags, std::vector<std::uint32_t>{MB_OK | MB_ICONINFORMATION});
  const std::string Undone = "rollback";
  EXPECT_EQ(Platform.Log,
            (std::vector<std::string>{"start", Undone, Failed + "a\r\nno x", "start", Undone, Failed + "b\r\nno y",
                                      "start", "commit", "start", Undone, Failed + "a\r\nno x", "start", Undone,
                                      Failed + "b\r\nno y", Report}));
  Container.ContinueOnError = false;
  try {
    Container.Execute();
    FAIL() << "no error";
  } catch (const Exception& Error) {
    EXPECT_EQ(Error.ClassName() + std::string(":") + Error.what(), "Exception:" + Report);
  }
}

TEST_F(RecreateContainer, StopsWhereItIsTold) {
  const struct {
    const char* Stopper;
    const char* Tried;
    int Result;  // -1: the question's error leaves
    std::size_t Boxes;
  } Cases[] = {
      {"abort", "a abort ", 0, 0},         {"unanswered", "a unanswered ", -1, 0},
      {"cancelled", "a cancelled ", 1, 1}, {"declined", "a declined b ", 1, 0},
      {"kept", "a kept b ", 1, 0},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Stopper);
    Container.Clear();
    Container.SetCanceled(false);
    Tried.clear(), BoxFlags.clear(), CancelAt = "cancelled";
    for (const char* Name : {"a", Case.Stopper, "b"}) Container.Add(72, Name);
    if (Case.Result < 0)
      EXPECT_THROW(Container.Execute(), EQuestionUnanswered);
    else
      EXPECT_EQ(Container.Execute(), Case.Result);
    EXPECT_EQ(Tried, Case.Tried);
    EXPECT_EQ(BoxFlags.size(), Case.Boxes);
  }
}

TEST_F(RecreateContainer, WhatWasDeclinedIsNotAskedAgainNorReported) {
  Needs = {{"a", {"b"}}, {"bad", {"nothing"}}};
  for (const char* Name : {"a", "declined", "kept", "bad", "b", "Kept", "B"}) Container.Add(72, Name);
  EXPECT_EQ(Container.Execute(), 1);
  EXPECT_EQ(Tried, "a declined kept bad b B a bad bad bad ") << "the second of a name follows the answer for the first";
  EXPECT_EQ(Progress, "1/7b 2/7B 3/7a ");
  EXPECT_EQ(Container.GatherObjectsNames(), "bad;");
  EXPECT_EQ(BoxFlags.size(), 1U);
  for (const auto& [Index, Asks] : {std::pair{3, true}, {6, false}})
    EXPECT_EQ(Container.Items(Index)->OverwriteAsk.FAlwaysAsk, Asks) << "what this run has made needs no question";
}

TEST_F(RecreateContainer, TakesItsTypesAndStartValues) {
  const struct {
    int Type;
    const char* StartValue;  // null: the section has none
    std::int64_t Expected;   // -1: nothing is added
  } Cases[] = {{71, "17", 17},   {71, "0", 0},  {71, "-5", 0},  {71, "", 0},    {71, "x", 0},
               {71, nullptr, 0}, {72, "17", 0}, {70, "17", -1}, {75, "17", -1}, {10, "1", -1}};
  Container.DatabaseName = "db";
  int Count = 0;
  for (const auto& Case : Cases) {
    TEISection Section;
    if (Case.StartValue) Section.FParameters.AddParam("StartValue", Case.StartValue);
    const auto* Added = static_cast<TRecreate*>(Container.Add(Case.Type, "o", &Section));
    ASSERT_EQ(Added == nullptr, Case.Expected < 0) << Case.Type;
    if (!Added) continue;
    EXPECT_EQ(Added->StartValue, Case.Expected) << Case.Type << " " << (Case.StartValue ? Case.StartValue : "none");
    EXPECT_EQ(Added->DatabaseName + Added->ObjectName, "dbo");
    EXPECT_EQ(Container.Items(Count), Added);
    EXPECT_EQ(Container.GetObjectType(Count++), Case.Type);
  }
  EXPECT_EQ(Container.Count(), Count);
  EXPECT_EQ(Container.Items(Count), nullptr);
  EXPECT_EQ(Container.GetObjectType(-1), -1);
}

TEST_F(RecreateContainer, AddsWhatExists) {
  TOneOfEach Database;
  for (const int Type : {10, 70, 71, 72, 73, 74, 75})
    for (const int Named : Types) {
      SCOPED_TRACE(std::to_string(Type) + " " + std::to_string(Named));
      const int Count = Container.Count();
      const TRecreateOperation* const Added = Container.AddIfExist(Type, std::to_string(Named), &Database);
      EXPECT_EQ(Added != nullptr, Type == Named);
      EXPECT_EQ(Container.Count(), Count + (Type == Named ? 1 : 0));
      EXPECT_EQ(Container.GetObjectType(Count), Type == Named ? Type : -1);
    }
  EXPECT_EQ(Container.AddIfExist(71, "71", nullptr), nullptr);
}

TEST_F(RecreateContainer, CutsLongLists) {
  // 50 units a name with its semicolon; two bytes a unit in Russian.
  for (const char* Letter : {"a", "я"}) {
    std::string Name;
    while (Name.size() < 49 * std::string_view(Letter).size()) Name += Letter;
    Container.Clear();
    for (int Count = 0; Count < 10; ++Count) Container.Add(72, Name);
    std::string Expected;
    for (int Count = 0; Count < 10; ++Count) Expected += Name + ";";
    EXPECT_EQ(Container.GatherObjectsNames(), Expected) << "500 units are not yet too long";
    for (int Count = 0; Count < 2; ++Count) Container.Add(72, Name);
    EXPECT_EQ(Container.GatherObjectsNames(), Expected + Name + "; more...");
  }
}

}  // namespace
}  // namespace velkrund::tests
