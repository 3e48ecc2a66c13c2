#include "tests/dsp/StructureFixture.h"
#include "velkrund/platform/structures/DSPErrors.h"

namespace velkrund::tests {
namespace {

using enum TDSPImportOverwriteOptions;

TEST_F(Structure, MergingInEveryMode) {
  const struct {
    const char *Stored, *Imported;
    const char* Results[3];  // skip, replace, difference; null: as stored
  } Cases[] = {
      // Nodes that are missing.
      {"  x\n",
       "  a:byte = 1\n    b\n",
       {"  a:byte = 1\n    b\n  x\n", "  a:byte = 1\n    b\n  x\n", "  a:byte = 1\n    b\n  x\n"}},
      {"",
       "  a\n    b:DELETED\n      c\n",
       {"  a\n    b:DELETED\n      c\n", "  a\n    b:DELETED\n      c\n", "  a\n"}},
      {"", "  a:DELETED\n", {"  a:DELETED\n", "  a:DELETED\n", "  a:DELETED\n"}},
      // A stored value.
      {"  a:byte = 1\n", "  A:Word = 2\n    b:DELETED\n", {nullptr, "  a:Word = 2\n    b:DELETED\n", "  a:Word = 2\n"}},
      {"  a:byte = 1\n    x\n", "  a\n    y\n", {nullptr, "  a\n    y\n", "  a\n    y\n"}},
      {"  a:DELETED\n", "  a:byte = 1\n", {nullptr, "  a:byte = 1\n", "  a:byte = 1\n"}},
      {"  a:byte = 1\n", "  a:DELETED\n", {nullptr, "  a:DELETED\n", "  a:DELETED\n"}},
      // None stored, but one imported.
      {"  a\n    x\n",
       "  a:byte = 1\n    b:DELETED\n",
       {nullptr, "  a:byte = 1\n    b:DELETED\n", "  a:byte = 1\n    b:DELETED\n"}},
      {"  a\n    x\n  b\n", "  a:DELETED\n", {nullptr, "  a:DELETED\n  b\n", "  b\n"}},
      // None at all.
      {"  a\n    x:byte = 1\n    y\n      s\n",
       "  a\n    X:byte = 2\n    y:DELETED\n    z\n",
       {"  a\n    x:byte = 1\n    y\n      s\n    z\n", "  a\n    x:byte = 2\n    y:DELETED\n    z\n",
        "  a\n    x:byte = 2\n    z\n"}},
      // Names that repeat.
      {"  p\n    a\n    a\n      x\n",
       "  p\n    a:DELETED\n    A:DELETED\n",
       {nullptr, "  p\n    a:DELETED\n    a\n      x\n", "  p\n"}},
      {"  p\n    a\n    b\n    a\n      x\n    c\n",
       "  p\n    B:DELETED\n    a:DELETED\n    b:byte = 1\n",
       {"  p\n    a\n    a\n      x\n    b\n    c\n", "  p\n    a:DELETED\n    a\n      x\n    b:byte = 1\n    c\n",
        "  p\n    a\n      x\n    b:byte = 1\n    c\n"}},
      {"  a\n", "  a\n    x\n  a\n    y\n", {"  a\n    x\n    y\n", "  a\n    x\n    y\n", "  a\n    x\n    y\n"}},
  };
  for (const auto& Case : Cases)
    for (const auto Mode : {ioSkip, ioReplace, ioDifference}) {
      Store(Case.Stored);
      const auto Made = Section<TEIDSPStructure>();
      Made->ClearRoot = false;
      Made->OverwriteOptions = Mode;
      Import(*Made, Body(Case.Imported));
      const char* const Result = Case.Results[static_cast<int>(Mode)];
      EXPECT_EQ(Lines(), Result ? Result : Case.Stored) << Case.Imported << static_cast<int>(Mode);
    }
}

// Lists are made of nodes of one name: none may meet another, or change its place.
TEST_F(Structure, NamesakesBelowTheTopKeepTheirOrder) {
  const struct {
    const char *Stored, *Imported;
    const char* Results[3];  // skip, replace, difference; null: as imported
  } Cases[] = {
      {"", "  p\n    l:string = 'b'\n    l:string = 'a'\n    l:string = 'c'\n", {}},
      {"  p:integer = 1\n    l:string = 'z'\n",
       "  p:integer = 3\n    l:string = 'b'\n    l:string = 'a'\n    l:string = 'b'\n",
       {"  p:integer = 1\n    l:string = 'z'\n"}},
      {"  p\n    l:string = 'z'\n",
       "  p\n    l:string = 'b'\n    l:string = 'a'\n    l:string = 'b'\n",
       {"  p\n    l:string = 'z'\n    l:string = 'a'\n    l:string = 'b'\n"}},
      {"  p\n    l:string = 'z'\n    l:string = 'y'\n    l:string = 'x'\n",
       "  p\n    l:string = 'b'\n    l:string = 'a'\n",
       {"  p\n    l:string = 'z'\n    l:string = 'y'\n    l:string = 'x'\n",
        "  p\n    l:string = 'b'\n    l:string = 'a'\n    l:string = 'x'\n",
        "  p\n    l:string = 'b'\n    l:string = 'a'\n    l:string = 'x'\n"}},
      {"  p\n    l\n      m:integer = 1\n    l\n      m:integer = 2\n",
       "  p\n    l\n      m:integer = 3\n    l\n      m:integer = 4\n      m:integer = 5\n",
       {"  p\n    l\n      m:integer = 1\n    l\n      m:integer = 2\n      m:integer = 5\n"}},
      {"  p\n    l\n      m\n    l\n      n\n    l\n      o\n",
       "  p\n    l:DELETED\n    l\n      x\n    l:DELETED\n    l\n",
       {"  p\n    l\n      m\n    l\n      n\n      x\n    l\n      o\n    l\n",
        "  p\n    l:DELETED\n    l\n      n\n      x\n    l:DELETED\n    l\n",
        "  p\n    l\n      n\n      x\n    l\n"}},
  };
  const auto Imported = [&](bool Old, const char* Lines, TDSPImportOverwriteOptions Mode) {
    const auto Made = EitherSection(Old);
    Made->ClearRoot = false;
    Made->KeepNamesakes = true;
    Made->OverwriteOptions = Mode;
    Import(*Made, Body(Lines));
    return this->Lines();
  };
  for (const auto& Case : Cases)
    for (const auto Mode : {ioSkip, ioReplace, ioDifference})
      for (const bool Old : {false, true}) {
        const char* const Result = Case.Results[static_cast<int>(Mode)];
        Store(Case.Stored);
        EXPECT_EQ(Imported(Old, Case.Imported, Mode), Result ? Result : Case.Imported)
            << Case.Stored << static_cast<int>(Mode) << Old;
      }
}

// One of two would be lost, and a tree too deep to be written again would be stored.
TEST_F(Structure, TopsOfOneNameAndDeepTreesAreRefused) {
  const auto ErrorOf = [&](const std::string& Lines, const std::string& RootNode, bool AllowLoss) {
    const auto Made = Section<TEIDSPStructure>();
    Made->StrictLines = true;
    Made->RootNode = RootNode;
    Platform.WorkSettings.StrictText = !AllowLoss;
    try {
      Import(*Made, Body(Lines));
    } catch (const EDSPUtilError& Error) {
      return std::string(Error.what());
    }
    return std::string();
  };
  EXPECT_NE(ErrorOf("  a\n    b\n  c\n  A:byte = 1\n", "", false)
                .find("Two top nodes have the name 'A', in the lines 4 and 7: "),
            std::string::npos);
  EXPECT_EQ(ErrorOf("  a\n    b\n  c\n  A:byte = 1\n", "", true), "");
  const auto IsTooDeep = [&](const std::string& Lines, const std::string& RootNode) {
    const std::string Error = ErrorOf(Lines, RootNode, false);
    EXPECT_TRUE(Error.empty() || Error.find("more than 1000 levels") != std::string::npos) << Error;
    return !Error.empty();
  };
  std::string Deep, RootNode = "n";
  for (std::size_t Level = 0; Level < 1000; ++Level) {
    Deep += std::string(2 * Level + 2, ' ') + "n\n";
    RootNode += "\\n";
  }
  EXPECT_TRUE(IsTooDeep(Deep + std::string(2002, ' ') + "n\n", ""));
  EXPECT_TRUE(IsTooDeep(Deep, "a\\n"));
  EXPECT_TRUE(IsTooDeep("  n\n", RootNode));
  EXPECT_FALSE(IsTooDeep(Deep, "n"));
  EXPECT_FALSE(IsTooDeep(Deep, ""));
  EXPECT_EQ(Lines(), Deep);
  TDSPNode* Lowest = &Platform.Structures.Get("S", 12).Tree;
  while (Lowest->GetCount() > 0) Lowest = &Lowest->GetNodes(0);
  Lowest->AddNode("n");
  EXPECT_THROW(Lines(), EDSPError) << "nobody could load it";
}

TEST_F(Structure, ImportingIntoANode) {
  const struct {
    const char *Stored, *RootNode;
    bool ClearRoot;
    const char *Imported, *Result;
  } Cases[] = {
      {"  x\n", "", true, "  y\n", "  y\n"},
      {"  x\n", "", false, "  y\n", "  x\n  y\n"},
      {"  a\n    x\n  b\n", "A", true, "  a\n    y\n", "  a\n    y\n  b\n"},
      {"  a\n    x\n  b\n", "A", false, "  A:byte = 1\n", "  a:byte = 1\n  b\n"},
      {"  a\n    x\n  b\n", "a", false, "  a\n    y\n", "  a\n    x\n    y\n  b\n"},
      {"  b\n", "p\\q", true, "  Q:byte = 1\n    z\n", "  b\n  p\n    Q:byte = 1\n      z\n"},
      {"  p\n    o\n", "P\\q", false, "  other\n    z\n", "  p\n    o\n    q\n      z\n"},
  };
  for (const auto& Case : Cases) {
    Store(Case.Stored);
    const auto Made = Section<TEIDSPStructure>();
    Made->RootNode = Case.RootNode;
    Made->ClearRoot = Case.ClearRoot;
    Import(*Made, Body(Case.Imported));
    EXPECT_EQ(Lines(), Case.Result) << Case.RootNode << Case.Imported;
  }
}

TEST_F(Structure, SettingsTravel) {
  TKvParamsList List;
  TEIDSPStructureOld Out;
  Out.OverwriteAsk().FYes = false;
  Out.OverwriteAsk().FCancel = true;
  Out.ClearRoot = false;
  Out.SaveProperties(List);
  EXPECT_EQ(List.Pairs(), (std::vector<TKvParamsList::TPair>{{"TEIDSPStructureOld.ClearRoot", "0"},
                                                             {"TEIDSPStructureOld.OverwriteAsk.AlwaysAsk", "0"},
                                                             {"TEIDSPStructureOld.OverwriteAsk.Cancel", "-1"},
                                                             {"TEIDSPStructureOld.OverwriteAsk.Yes", "0"}}));
  List.Add("TEIDSPStructureOld.OverwriteAsk.AlwaysAsk", "tRUE");
  List.Add("TEIDSPStructureOld.OverwriteAsk.Cancel", "maybe");
  TEIDSPStructureOld In;
  In.LoadProperties(List);
  EXPECT_FALSE(In.OverwriteAsk().FYes);
  EXPECT_FALSE(In.OverwriteAsk().FCancel);
  EXPECT_TRUE(In.OverwriteAsk().FAlwaysAsk);
  EXPECT_FALSE(In.ClearRoot);
  TEIDSPStructure Other;
  Other.LoadProperties(List);
  EXPECT_TRUE(Other.ClearRoot) << "every class has its own";
}

TEST_F(Structure, SpecialSaveMode) {
  Platform.Structures.Special = true;
  const struct {
    int Type;
    TDSPImportOverwriteOptions Options;
    bool ClearRoot;
    const char* Call;
  } Cases[] = {
      {14, ioReplace, false, "clear 0, list 1"},
      {14, ioReplace, true, "clear 1, list 0"},
      {14, ioSkip, false, "clear 0, list 0"},
      {12, ioReplace, false, "clear 0, list 0"},
  };
  for (const auto& Case : Cases) {
    const auto Made = Section<TEIDSPStructure>(Case.Type);
    Made->OverwriteOptions = Case.Options;
    Made->ClearRoot = Case.ClearRoot;
    Import(*Made, Body("  a\n"));
    EXPECT_EQ(Platform.Structures.SpecialSave, Case.Call);
  }
}

TEST_F(Structure, CancellingLeavesItAlone) {
  Store("  a\n  b\n");
  const auto Made = Section<TEIDSPStructure>();
  int Polls = 0;
  Made->OnCancel = [&] { return ++Polls == 2; };
  std::vector<std::string> Seen;
  Made->OnProgress = [&](std::int32_t, std::int32_t, std::string_view Name) { Seen.emplace_back(Name); };
  for (const char* Lines : {"  x\n  y\n  z\n", "  x:string = 'a@\n@b@\n@c'\n"}) {
    Polls = 0;
    Seen.clear();
    Import(*Made, Body(Lines));
    EXPECT_TRUE(Made->Stopped());
    EXPECT_EQ(Seen, std::vector<std::string>(5, "S"));
    EXPECT_EQ(Platform.Log.back(), "rollback");
  }
  EXPECT_EQ(Lines(), "  a\n  b\n");
  Polls = 0;
  EXPECT_THROW(Export(*Made), EAbort);
}

TEST_F(Structure, OperationsOnAFile) {
  auto& Form = Platform.Structures.Get("Form", 12);
  Form.Item = {"Form", 12, "CLIENTS", "Parent", "remarks"};
  Add(Add(Form.Tree, "a"), "b", TDSPValueType::Byte, Int(1, TKvKind::Byte));
  TEIFile File(Platform.MemoryFiles);
  File.SetFileName("f.eif");
  File.CreateFile();
  File.Open();
  TUOExportDSPStructureInterface Out;
  Out.SetTarget(&File);
  Out.SetSectionName("s");
  SetPropertyText(Out, "ObjectName", "form");
  SetPropertyText(Out, "RootNode", "A\\b");
  EXPECT_EQ(Out.Execute(), 0);
  EXPECT_EQ(Out.LastError(), "Exception:Error exporting DSP structure. Structure not found (OT:0;ON:'form')");
  SetPropertyText(Out, "ObjectType", "12");
  for (const auto Release : {TExportReleaseVersion::rv20, TExportReleaseVersion::rv17}) {
    Out.SetReleaseVersion(Release);
    ASSERT_EQ(Out.Execute(), 1) << Out.LastError();
  }
  TEIFile Again(Platform.MemoryFiles);
  Again.SetFileName("f.eif");
  Again.SetReadonly(true);
  Again.Open();
  EXPECT_EQ(Again.Sections()[0].Version(), 200);
  EXPECT_EQ(Again.Sections()[1].Version(), 100);
  const auto Parameter = [&](const char* Name) { return Again.Sections()[0].ParamValue(Name); };
  EXPECT_EQ(Parameter("ObjectType") + Parameter("ObjectName") + Parameter("TableName") + Parameter("ParentObject") +
                Parameter("RootNode"),
            "12FormCLIENTSParentA\\b");

  TUOImportDSPStructureInterface In;
  In.SetSource(&Again);
  Answer.Button = &TDSPConfirmForm::SkipButton;
  ASSERT_EQ(In.Execute(), 1) << In.LastError();
  EXPECT_EQ(Answer.Questions, std::vector<std::string>{"M_Catalox_DODSPStr_StructureAlreadyExistsConfirm"});
  In.SetSectionNumber(1);
  SetPropertyText(In, "ObjectName", "Copy");
  SetPropertyText(In, "ObjectType", "10");
  SetPropertyText(In, "RootNode", "x\\y");
  ASSERT_EQ(In.Execute(), 1) << In.LastError();
  EXPECT_NE(Platform.Structures.Get("Copy", 10).Tree.FindNode("a"), nullptr) << "the section's node, unless told so";
  EXPECT_EQ(Platform.Structures.Get("Copy", 10).Item.Remarks, "remarks");
  Platform.Structures.DeleteStructure("Copy", 10);
  SetPropertyText(In, "UseCustomRootNode", "true");
  SetPropertyText(In, "ChangeStructureproperties", "false");
  SetPropertyText(In, "OverwriteOptions", "difference");
  SetPropertyText(In, "ClearRoot", "false");
  ASSERT_EQ(In.Execute(), 1) << In.LastError();
  EXPECT_EQ(Platform.Structures.Get("Copy", 10).Tree.GetNodes(0).GetNodes(0).GetFullName(), "x\\y");
  EXPECT_EQ(Platform.Structures.Get("Copy", 10).Item.Remarks, "");
}

TEST_F(Structure, GeneratorsSayWhereTheyStand) {
  const struct {
    const char* Name;
    bool Reads;
    const char* Expected;
  } Cases[] = {{"GEN", true, "-42"}, {"GEN", false, "7"}, {"OTHER", true, "7"}};
  for (const auto& Case : Cases) {
    TEIDSPGeneratorStructureOld Made;
    Made.Item.ObjectName = Case.Name;
    Made.Item.ObjectType = 71;
    Made.StartValue = "7";
    Made.ReadStartValue = Case.Reads;
    TEISection Header;
    Made.FillParameters(Header.FParameters);
    TEIDSPGeneratorStructure Read;
    Read.Initialize(Header);
    EXPECT_EQ(Read.StartValue, Case.Expected);
    EXPECT_EQ(Read.Item.ObjectType, 71);
    Header.FParameters.SetValues("ObjectType", "x");
    EXPECT_THROW(Read.Initialize(Header), EConvertError);
  }
  EXPECT_EQ(TEIDSPGeneratorStructureOld().Version(), 100);
}

}  // namespace
}  // namespace velkrund::tests
