#include "tests/dsp/StructureFixture.h"
#include "velkrund/operations/ImportFileInterfaces.h"

namespace velkrund::tests {
namespace {

using enum TDSPImportOverwriteOptions;

using StructureQuestion = Structure;

TEST_F(StructureQuestion, AnswersToTheQuestion) {
  const struct {
    TLButton TDSPConfirmForm::*Button;
    bool ForAll;
    const char* Result;
    bool AsksAgain;
    TDSPImportOverwriteOptions Options;
    bool ClearRoot;
    const char* Next;  // after a second section
  } Cases[] = {
      {nullptr, true, "  x\n", true, ioSkip, true, "  x\n"},
      {&TDSPConfirmForm::SkipButton, false, "  x\n", true, ioSkip, true, "  x\n"},
      {&TDSPConfirmForm::SkipButton, true, "  x\n", false, ioSkip, true, "  x\n"},
      {&TDSPConfirmForm::RewriteButton, false, "  y\n", true, ioReplace, true, "  z\n"},
      {&TDSPConfirmForm::RewriteButton, true, "  y\n", false, ioReplace, true, "  z\n"},
      {&TDSPConfirmForm::UpdateButton, false, "  x\n  y\n", true, ioDifference, false, "  x\n  y\n  z\n"},
      {&TDSPConfirmForm::UpdateButton, true, "  x\n  y\n", false, ioDifference, false, "  x\n  y\n  z\n"},
  };
  for (const auto& Case : Cases) {
    Store("  x\n");
    Answer.Button = Case.Button;
    Answer.ForAll = Case.ForAll;
    Answer.Questions.clear();
    TDSPOverwriteAsk Shared;
    Shared.FAlwaysAsk = true;
    const auto Made = Section<TEIDSPStructure>();
    Made->SetOverwriteAsk(Shared);
    Import(*Made, Body("  y\n"));
    EXPECT_EQ(Answer.Questions.size(), 1u);
    EXPECT_EQ(Lines(), Case.Result);
    EXPECT_EQ(Shared.FYes, Case.Options != ioSkip);
    EXPECT_EQ(Shared.FAlwaysAsk, Case.AsksAgain);
    EXPECT_EQ(Made->LeftAlone(), Case.Options == ioSkip);
    EXPECT_EQ(Made->OverwriteOptions, Case.Options);
    EXPECT_EQ(Made->ClearRoot, Case.ClearRoot);
    const auto Next = Section<TEIDSPStructure>();
    Next->SetOverwriteAsk(Shared);
    Import(*Next, Body("  z\n"));
    EXPECT_EQ(Answer.Questions.size(), Case.AsksAgain ? 2u : 1u);
    EXPECT_EQ(Lines(), Case.Next);
  }
}

TEST_F(StructureQuestion, AnOperationKeepsAnAnswerForAll) {
  Add(Platform.Structures.Get("F", 12).Tree, "y");
  TEIFile File(Platform.MemoryFiles);
  ExportF(File);
  const struct {
    TLButton TDSPConfirmForm::*Button;
    bool ForAll;
    const char* Result;
    std::size_t Questions;
  } Cases[] = {
      {&TDSPConfirmForm::SkipButton, false, "  x\n", 2},        {&TDSPConfirmForm::SkipButton, true, "  x\n", 1},
      {&TDSPConfirmForm::RewriteButton, false, "  y\n", 2},     {&TDSPConfirmForm::RewriteButton, true, "  y\n", 1},
      {&TDSPConfirmForm::UpdateButton, false, "  x\n  y\n", 2}, {&TDSPConfirmForm::UpdateButton, true, "  x\n  y\n", 1},
  };
  for (const auto& Case : Cases) {
    Answer.Button = Case.Button;
    Answer.ForAll = Case.ForAll;
    Answer.Questions.clear();
    TUOImportDSPStructureInterface In;
    const auto& Operation = static_cast<const TUOImportDSPStructure&>(In.Operation());
    In.SetSource(&File);
    for (int Run = 0; Run < 2; ++Run) {
      Store("  x\n");
      In.SetObjectName("S");
      ASSERT_EQ(In.Execute(), 1) << In.LastError();
      EXPECT_EQ(Lines(), Case.Result) << Run;
      EXPECT_EQ(Operation.LeftAlone(), Case.Button == &TDSPConfirmForm::SkipButton);
    }
    EXPECT_EQ(Answer.Questions.size(), Case.Questions);
    EXPECT_TRUE(Operation.OverwriteAsk.FYes && Operation.OverwriteAsk.FAlwaysAsk) << "what the caller set stays";
    In.SetDatabaseName("other");
    ASSERT_EQ(In.Execute(), 1) << In.LastError();
    EXPECT_EQ(Answer.Questions.size(), Case.Questions + 1) << "nobody has been asked about that database";
    In.SetObjectName("NEW");
    ASSERT_EQ(In.Execute(), 1) << In.LastError();
    EXPECT_FALSE(Operation.LeftAlone());
    EXPECT_EQ(Platform.Structures.Get("NEW", 12).Tree.GetCount(), 1);
  }
}

TEST_F(StructureQuestion, AnImportOfFilesKeepsAnAnswerForAll) {
  const std::string Section = "[SECTION]\r\nName = s\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\n";
  const std::string Tree =
      "TableName = \r\nParentObject = \r\nRootNode = \r\n[DATA]\r\n" + Body("  x:DELETED\n  y\n") + "[END]\r\n";
  Platform.MemoryFiles.Put("f.eif", Section + "ObjectName = A\r\n" + Tree + Section + "ObjectName = S\r\n" + Tree);
  const struct {
    TLButton TDSPConfirmForm::*Button;
    bool ForAll;
    const char* Result;
    std::size_t Questions;
  } Cases[] = {{&TDSPConfirmForm::UpdateButton, true, "  k\n  y\n", 1},
               {&TDSPConfirmForm::UpdateButton, false, "  k\n  y\n", 2},
               {&TDSPConfirmForm::RewriteButton, true, "  x:DELETED\n  y\n", 1},
               {&TDSPConfirmForm::SkipButton, true, "  k\n  x\n", 1}};
  TUOImportFileInterface In;
  In.SetFileName("f.eif");
  for (const auto& Case : Cases) {
    Store("  k\n  x\n");
    Platform.Structures.Get("A", 12);
    Answer.Button = Case.Button;
    Answer.ForAll = Case.ForAll;
    Answer.Questions.clear();
    ASSERT_EQ(In.Execute(), 1) << In.LastError();
    EXPECT_EQ(Lines(), Case.Result);
    EXPECT_EQ(Answer.Questions.size(), Case.Questions) << "of this run, whatever was answered in the one before";
  }
}

TEST_F(StructureQuestion, AnswersThatAreThereAlready) {
  const struct {
    bool Yes, Cancel;
    const char* Result;
  } Cases[] = {{true, false, "  y\n"}, {false, false, "  x\n"}, {true, true, "  x\n"}};
  for (const auto& Case : Cases) {
    Store("  x\n");
    const auto Made = Section<TEIDSPStructure>();
    Made->OverwriteAsk().FYes = Case.Yes;
    Made->OverwriteAsk().FCancel = Case.Cancel;
    Import(*Made, Body("  y\n"));
    EXPECT_EQ(Lines(), Case.Result);
  }
  EXPECT_TRUE(Answer.Questions.empty());
  EXPECT_TRUE(TEIDSPStructure().OverwriteAsk().FAlwaysAsk);
  EXPECT_FALSE(TEIDSPStructureOld().OverwriteAsk().FAlwaysAsk);
}

TEST_F(StructureQuestion, AHostAnswersInAdvance) {
  Add(Platform.Structures.Get("F", 12).Tree, "y", TDSPValueType::Deleted);
  TEIFile File(Platform.MemoryFiles);
  ExportF(File);
  TUOImportDSPStructureInterface In;
  In.SetSource(&File);
  In.SetObjectName("S");
  Answer.Button = &TDSPConfirmForm::SkipButton;
  const struct {
    const char *Existing, *Result;
    std::size_t Questions;
  } Cases[] = {{"ask", "  x\n  y\n", 1},  {"replace", "  y:DELETED\n", 0}, {"update", "  x\n", 0},
               {"skip", "  x\n  y\n", 0}, {"update", "  x\n", 0},          {"ask", "  x\n  y\n", 1}};
  for (const auto& Case : Cases) {
    Store("  x\n  y\n");
    Answer.Questions.clear();
    SetPropertyText(In, "OverwriteExisting", Case.Existing);
    EXPECT_EQ(GetPropertyText(In, "OverwriteExisting"), Case.Existing);
    ASSERT_EQ(In.Execute(), 1) << In.LastError();
    EXPECT_EQ(Lines(), Case.Result) << Case.Existing;
    EXPECT_EQ(Answer.Questions.size(), Case.Questions) << Case.Existing;
  }
  Store("  x\n  y\n");
  In.SetClearRoot(false);
  In.SetOverwriteExisting(TOverwriteExisting::Replace);
  ASSERT_EQ(In.Execute(), 1) << In.LastError();
  EXPECT_EQ(Lines(), "  x\n  y:DELETED\n");
}

}  // namespace
}  // namespace velkrund::tests
