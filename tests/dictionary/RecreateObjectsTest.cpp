// Generators, views and procedures that are created again by their structures, single and in lists.

#include "tests/dictionary/RecreateFixture.h"
#include "velkrund/operations/RecreateContainerInterface.h"

namespace velkrund::tests {
namespace {

using TNotes = std::vector<std::string>;

const std::string Uo = "M_Velkrund_DicUtils_";
const std::string Asks = "box 36ST_CONFIRMATION ";

struct TKind {
  int Type;
  std::string Class;  // between "TUORecreate" and "Interface"
  std::string What, NotFound, Overwrite, Missing, Error;
  std::string Made;  // how it is created
};

const TKind Kinds[] = {
    {71, "Generator", "generator", "Generator", "RecreateOverwriteGeneratorConfirm", "GeneratorForRecreateNotFound",
     "ErrorOnRecreateGenerator", "replace"},
    {72, "View", "view", "View", "RecreateOverwriteViewConfirm", "ViewForRecreateNotFound", "ErrorOnRecreateStoredProc",
     "replace verify"},
    {73, "ExecStoredProc", "stored procedure", "Procedure", "RecreateOverwriteStoredProcConfirm",
     "StoredProcForRecreateNotFound", "ErrorOnRecreateStoredProc", "replace"},
    {74, "SelectStoredProc", "stored procedure", "Procedure", "RecreateOverwriteStoredProcConfirm",
     "StoredProcForRecreateNotFound", "ErrorOnRecreateStoredProc", "replace"},
};

std::string NotFound(const TKind& Kind, const std::string& Name) {
  return "Can not create " + Kind.What + ". Dictionary structure not found (" + Kind.NotFound + ":'" + Name +
         "';Database:'db')";
}
std::string Made(const TKind& Kind, const std::string& Name) {
  return std::to_string(Kind.Type) + " " + Name + " " + Kind.Made;
}

TEST_F(Recreate, OneIsCreatedAskedAboutOrRefused) {
  for (const TKind& Kind : Kinds) {
    SCOPED_TRACE(Kind.Class);
    const auto Object = Interface("TUORecreate" + Kind.Class + "Interface");
    auto& Operation = dynamic_cast<TUORecreateObject&>(Object->Operation());
    SetPropertyText(*Object, "ObjectName", "Obj");
    EXPECT_EQ(Object->Execute(), 0);
    EXPECT_EQ(Object->LastError(), "EDicUtilError:" + NotFound(Kind, "Obj"));
    EXPECT_EQ(Noted(), TNotes());
    Describe(Kind.Type, "Obj");
    const auto Run = [&](bool Declined) {
      EXPECT_EQ(Object->Execute(), 1) << Object->LastError();
      EXPECT_EQ(Operation.Declined(), Declined);
      TNotes Notes = Noted();
      std::erase_if(Notes, [](const std::string& Note) { return Note == "start" || Note == "commit"; });
      return Notes;
    };
    const std::string Question = Uo + Kind.Overwrite + " Obj";
    EXPECT_EQ(Run(false), TNotes{Made(Kind, "Obj")}) << "nothing to ask about";
    Answers = {IDNO, IDYES, IDCANCEL};
    EXPECT_EQ(Run(true), TNotes{Asks + Question});
    EXPECT_EQ(Run(false), (TNotes{Asks + Question, Made(Kind, "Obj")}));
    EXPECT_EQ(Run(true), TNotes{Asks + Question}) << "yes alone is yes";
    EXPECT_EQ(Object->Execute(), 0);
    EXPECT_EQ(Object->LastError(), "EQuestionUnanswered:nobody");
    Noted();
    Operation.OverwriteAsk.FCallback = [&](TAskObject& Asked, TUtilOperation* Sender) {
      EXPECT_EQ(Sender, &Operation);
      Platform.Log.push_back("handler " + Asked.fAskCallbackString);
      dynamic_cast<TYesNoAsk&>(Asked).FYes = true;
    };
    EXPECT_EQ(Run(false), (TNotes{"handler " + Question, Made(Kind, "Obj")}));
    for (const auto& [Overwrite, Declined] : {std::pair{"yes", false}, {"no", true}}) {
      SetPropertyText(*Object, "Overwrite", Overwrite);
      EXPECT_EQ(GetPropertyText(*Object, "Overwrite"), Overwrite);
      EXPECT_EQ(Run(Declined), Declined ? TNotes() : TNotes{Made(Kind, "Obj")});
    }
  }
}

TEST_F(Recreate, LongNamesOfViewsMayBeGivenUp) {
  const std::string Name(31, 'V');
  for (const TKind& Kind : Kinds) {
    const auto Object = Interface("TUORecreate" + Kind.Class + "Interface");
    SetPropertyText(*Object, "ObjectName", Name);
    Describe(Kind.Type, Name);
    Answers = {IDYES, IDNO};
    const bool IsView = Kind.Type == 72;
    EXPECT_EQ(Object->Execute(), IsView ? 0 : 1) << Kind.Class;
    EXPECT_EQ(Object->LastError(), "");
    EXPECT_EQ(Answers.size(), IsView ? 1U : 2U) << Kind.Class;
    if (!IsView) continue;
    EXPECT_TRUE(Objects.There.empty() || !Objects.ViewExist(Name));
    EXPECT_EQ(Noted().back(), "box 292ST_CONFIRMATION M_Velkrund_DSPUtils_CreateLongNameView_Cancel " + Name + " 30");
    EXPECT_EQ(Object->Execute(), 1);
    EXPECT_TRUE(Objects.ViewExist(Name));
  }
}

TEST_F(Recreate, GeneratorsGoOnUnlessAPersonSaysOtherwise) {
  Describe(71, "G");
  const struct {
    const char* StartValue;  // that a person sets
    std::int64_t Section;    // that of the section; 0: none
    TNotes Notes;
  } Cases[] = {
      {"", 0, {"start", "71 G replace", "commit"}},
      {"", 17, {"start", "71 G replace", "advance G 17", "commit"}},
      {"9223372036854775807", 0, {"start", "71 G replace 9223372036854775807", "commit"}},
      {"-5", 17, {"start", "71 G replace -5", "commit"}},
  };
  for (const auto& Case : Cases) {
    TUORecreateGeneratorInterface Object;
    Object.SetObjectName("G");
    Object.SetOverwrite(TRecreateOverwrite::Yes);
    SetPropertyText(Object, "StartValue", Case.StartValue);
    EXPECT_EQ(GetPropertyText(Object, "StartValue"), Case.StartValue);
    if (Case.Section) Object.Operation().SetStartValue(Case.Section);
    EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
    EXPECT_EQ(Noted(), Case.Notes);
    EXPECT_THROW(SetPropertyText(Object, "StartValue", "1.5"), EConvertError);
  }
}

/// The single steps, each with its transaction.
TNotes Taken(const std::vector<TNotes>& Parts) {
  TNotes Result;
  for (const TNotes& Part : Parts) Result.insert(Result.end(), Part.begin(), Part.end());
  return Result;
}

TEST_F(Recreate, ListsAskGoOnAndReport) {
  for (const TKind& Kind : Kinds) {
    const bool IsGenerator = Kind.Type == 71;
    const auto List = Interface("TUORecreate" + Kind.Class + "sInterface");
    Objects.There = {{Kind.Type, "old1"}, {Kind.Type, "old2"}, {Kind.Type, "old3"}};
    for (const char* Name : {"old1", "old2", "old3", "new", "bad1", "bad2", "abort", "unanswered"})
      Describe(Kind.Type, Name);
    const auto Create = [&](const std::string& Name) {
      const TNotes Alone = {"start", Made(Kind, Name), "commit"};
      return IsGenerator ? Taken({{"start"}, Alone, {"commit"}}) : Alone;
    };
    const std::string Overwrite = "dialog " + Uo + Kind.Overwrite + " ", Missing = Asks + Uo + Kind.Missing + " ";
    const auto Failed = [&](const std::string& Why) { return Uo + Kind.Error + "\r\n" + Why; };
    const auto Fails = [&](const std::string& Name) {
      TNotes Result = IsGenerator ? TNotes{"start", "start", "rollback", "rollback"} : TNotes{"start", "rollback"};
      Result.push_back("Velkrund2:" + Failed("no " + Name));
      if (IsGenerator) Result.push_back("box 4 " + Failed("no " + Name) + "\r\n" + Uo + "ContinueRecreate");
      return Result;
    };
    const auto Reports = [&](const std::string& Names, const std::string& Why) {
      const std::string Text = Uo + "NotCreated_ObjectsInfo\r\n" + Names + "\r\nLast Error: " + Failed(Why);
      return IsGenerator ? TNotes() : TNotes{"Velkrund1:" + Text, "box 64 " + Text};
    };
    const std::string Gone = NotFound(Kind, "gone");
    const struct {
      const char* Names;
      std::vector<int> Answers;
      int Result;
      TNotes Notes;
      std::string NotCreated;
      const char* Error = "";
    } Cases[] = {
        {"new,,old1", {mrYes}, 1, Taken({Create("new"), {Overwrite + "old1"}, Create("old1")}), ""},
        {"old1,old2,old3",
         {mrNo, ConfirmedYesToAll},
         1,
         Taken({{Overwrite + "old1", Overwrite + "old2"}, Create("old2"), Create("old3")}),
         ""},
        {"old1,old2,new", {ConfirmedNoToAll}, 1, Taken({{Overwrite + "old1"}, Create("new")}), ""},
        {"old1,new", {mrCancel}, 0, {Overwrite + "old1"}, ""},
        {"gone,new",
         {IDYES},
         1,
         Taken({{Missing + "gone", "Velkrund2:" + Failed(Gone)}, Create("new"), Reports("gone;", Gone)}),
         "gone"},
        {"gone,new", {IDNO}, 0, {Missing + "gone"}, ""},
        {"bad1,new,bad2",
         {IDYES, IDYES},
         1,
         Taken({Fails("bad1"), Create("new"), Fails("bad2"), Reports("bad1;bad2;", "no bad2")}),
         "bad1,bad2"},
        {"abort,new",
         {},
         0,
         IsGenerator ? TNotes{"start", "start", "rollback", "rollback"} : TNotes{"start", "rollback"},
         ""},
        {"unanswered,new",
         {},
         0,
         IsGenerator ? TNotes{"start", "start", "rollback", "rollback"} : TNotes{"start", "rollback"},
         "",
         "EQuestionUnanswered:who?"},
    };
    for (const auto& Case : Cases) {
      SCOPED_TRACE(Kind.Class + " " + Case.Names);
      Objects.There.erase({Kind.Type, "new"});
      Answers = Case.Answers;
      SetPropertyText(*List, "Names", Case.Names);
      EXPECT_EQ(List->Execute(), Case.Result);
      EXPECT_EQ(List->LastError(), Case.Error);
      EXPECT_EQ(Noted(), Case.Notes);
      EXPECT_EQ(GetPropertyText(*List, "NotCreated"), Case.NotCreated);
      EXPECT_TRUE(Answers.empty() || !IsGenerator);
    }
  }
}

TEST_F(Recreate, ListsGoByDecisionsMadeBefore) {
  for (const TKind& Kind : Kinds) {
    const bool IsGenerator = Kind.Type == 71;
    const auto List = Interface("TUORecreate" + Kind.Class + "sInterface");
    auto& Operation = dynamic_cast<TUORecreateObjects&>(List->Operation());
    Objects.There = {{Kind.Type, "old1"}, {Kind.Type, "old2"}};
    for (const char* Name : {"old1", "old2"}) Describe(Kind.Type, Name);
    SetPropertyText(*List, "Names", "old1,old2");
    for (const auto& [Overwrite, Created] : {std::pair{"yes", "2"}, {"no", "0"}}) {
      SetPropertyText(*List, "Overwrite", Overwrite);
      EXPECT_EQ(List->Execute(), 1) << List->LastError();
      EXPECT_EQ(GetPropertyText(*List, "Created"), Created);
      EXPECT_EQ(GetPropertyText(*List, "Overwrite"), Overwrite);
    }
    SetPropertyText(*List, "Overwrite", "ask");
    std::string Questions;
    Operation.OverwriteAsk.FCallback = [&](TAskObject& Asked, TUtilOperation*) {
      Questions += Asked.fAskCallbackString + ";";
      Asked.FAlwaysAsk = false;
      dynamic_cast<TYesNoCancelAsk&>(Asked).FYes = true;
    };
    for (int Run = 0; Run < 2; ++Run) {
      EXPECT_EQ(List->Execute(), 1) << "an answer for all holds for its run";
      EXPECT_EQ(std::exchange(Questions, ""), Uo + Kind.Overwrite + " old1;");
      EXPECT_EQ(GetPropertyText(*List, "Created"), "2");
    }
    // Without a question a name that has no structure is an error like any other.
    SetPropertyText(*List, "Names", "gone,old1");
    SetPropertyText(*List, "Overwrite", "yes");
    Noted();
    EXPECT_EQ(List->Execute(), IsGenerator ? 0 : 1);
    EXPECT_EQ(GetPropertyText(*List, "NotCreated"), "gone");
    const std::string Error = Uo + Kind.Error + "\r\n" + NotFound(Kind, "gone");
    EXPECT_EQ(Noted()[2], "Velkrund2:" + Error);
    EXPECT_EQ(List->LastError(), IsGenerator ? "EDicUtilError:" + NotFound(Kind, "gone") + "\r\nnobody" : "");
  }
}

TEST_F(Recreate, GeneratorsStopAfterAnErrorAndAllStopWhenCancelled) {
  for (const char* Name : {"bad", "new"}) Describe(71, Name);
  TUORecreateGeneratorsInterface List;
  List.SetNames({"bad", "new"});
  Answers = {IDNO};
  EXPECT_EQ(List.Execute(), 0);
  EXPECT_EQ(List.LastError(), "EDatabaseError:no bad");
  EXPECT_FALSE(Objects.GeneratorExist("new"));
  std::string Shown;
  List.SetNames({"new", "bad"});
  List.Operation().FOnShowProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view Name) {
    Shown += std::to_string(Current) + "/" + std::to_string(Total) + std::string(Name) + " ";
    if (Name == "bad") List.Operation().SetCanceled(true);
  };
  EXPECT_EQ(List.Execute(), 0);
  EXPECT_EQ(List.LastError(), "");
  EXPECT_EQ(Shown, "0/2new 1/2bad ");
  EXPECT_TRUE(Objects.GeneratorExist("new"));
}

TEST_F(Recreate, TheContainerCreatesAllKinds) {
  TUORecreateContainerInterface Container;
  const auto Add = [&](const char* Name, const TEISection* Section) {
    for (const TKind& Kind : Kinds) ASSERT_TRUE(Container.Operation().Add(Kind.Type, Name, Section));
  };
  const auto Created = [&] {
    EXPECT_EQ(Container.Execute(), 1) << Container.LastError();
    TNotes Notes = Noted();
    std::erase_if(Notes, [](const std::string& Note) { return !Note.starts_with("7") && !Note.starts_with("adv"); });
    return Notes;
  };
  for (const TKind& Kind : Kinds) {
    for (const char* Name : {"Obj", "old"}) Describe(Kind.Type, Name);
    Objects.There.emplace(Kind.Type, "old");
  }
  TEISection Section;
  Section.FParameters.AddParam("StartValue", "40");
  Add("Obj", &Section);
  Add("old", nullptr);
  Answers = {IDNO, IDNO, IDNO, IDNO};
  EXPECT_EQ(Created(),
            (TNotes{"71 Obj replace", "advance Obj 40", "72 Obj replace verify", "73 Obj replace", "74 Obj replace"}));
  EXPECT_TRUE(Answers.empty());
  EXPECT_EQ(Created(), TNotes()) << "what was left alone stays so";
  for (const auto& [Overwrite, Count] : {std::pair{"no", 0U}, {"yes", 4U}}) {
    Container.Clear();
    Add("old", nullptr);
    SetPropertyText(Container, "Overwrite", Overwrite);
    EXPECT_EQ(Created().size(), Count);
  }
}

}  // namespace
}  // namespace velkrund::tests
