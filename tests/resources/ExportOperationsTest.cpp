#include "tests/resources/OperationFixture.h"

namespace velkrund::tests {
namespace {

/// Exports of three sections, the second of which is there already.
class ExportOperations : public Operation {
 protected:
  ExportOperations() { Put({"A.x.English=new", "B.x.English=new", "C.x.English=new"}); }

  /// What was there before: in the file "f", and in files of the folder "d".
  void PutOld() {
    for (const char* const File : {"f", "d/B.eif", "d/A.eif", "d/C.eif"}) Platform.MemoryFiles.Remove(File);
    Platform.MemoryFiles.Put("d/B.eif", "old");
    Platform.MemoryFiles.Put("f", WithLineEnds("[SECTION]\nType = LocalizedResource\nVersion = 100\nName = before\n"
                                               "SectionID = b\n[DATA]\n [LANGUAGES]\n  English\n [STRINGS]\n  x:\n"
                                               "   English = 'old'\n[END]\n"));
  }
};

TEST_F(ExportOperations, WhatIsThereIsReplacedAsAnswered) {
  enum { Asks = 1, Keeps = 2, Cancelled = 4, Calls = 8 };
  const struct {
    int Settings;
    int Code;  // of the dialog
    const char* InTarget;
    const char* InFolder;
    int Questions;  // about the second section, and about the second file
    bool AsksAgain;
  } Cases[] = {
      {0, 0, "A='new' B='new' C='new' ", "A='new' B='new' C='new' ", 0, false},
      {Keeps, 0, "before='old' A='new' C='new' ", "A='new' old", 0, false},
      {Asks, 6, "A='new' B='new' C='new' ", "A='new' B='new' C='new' ", 1, true},
      {Asks, 14, "A='new' B='new' C='new' ", "A='new' B='new' C='new' ", 1, false},
      {Asks, 7, "before='old' A='new' C='new' ", "A='new' old", 1, true},
      {Asks, 13, "before='old' A='new' C='new' ", "A='new' old", 1, false},
      {Asks, 2, "before='old' A='new' C='new' ", "A='new' old", 1, false},
      // A wish to end everything counts where something is there.
      {Cancelled, 0, "before='old' A='new' ", "A='new' old", 0, false},
      {Asks | Cancelled, 6, "before='old' A='new' ", "A='new' old", 1, true},
      {Asks | Calls, 0, "before='old' A='new' ", "A='new' old", 0, true},
  };
  for (const auto& Case : Cases)
    for (const bool ToFolder : {false, true}) {
      SCOPED_TRACE(testing::Message() << Case.Settings << " " << Case.Code << " " << ToFolder);
      PutOld();
      Answers = {};
      Answers.Codes = {Case.Code};
      TUOExportLSectionsInterface Object;
      TUOExportLSections& Export = Object.Operation();
      TYesNoCancelAsk Ask;
      Ask.FYes = !(Case.Settings & Keeps);
      Ask.FAlwaysAsk = Case.Settings & Asks;
      Ask.FCancel = Case.Settings & Cancelled;
      std::string Called;
      if (Case.Settings & Calls)
        Ask.FCallback = [&](TAskObject& Asked, TUtilOperation* Sender) {
          Called = Asked.fAskCallbackString;
          EXPECT_NE(Sender, nullptr);
          dynamic_cast<TYesNoCancelAsk&>(Asked).FCancel = true;
        };
      Export.SetOverwriteAsk(Ask);
      Export.SectionIDs = {"A", "B", "C"};
      Export.ToFolder = ToFolder;
      Export.Folder = "d";
      const auto File = Open("f");
      Export.Target = File.get();
      EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
      if (ToFolder) {
        const std::string Second = Platform.MemoryFiles.Get("d/B.eif");
        EXPECT_EQ(SectionsOf("d/A.eif") + (Second == "old" ? Second : SectionsOf("d/B.eif") + SectionsOf("d/C.eif")),
                  Case.InFolder);
        EXPECT_EQ(Platform.MemoryFiles.Exists("d/C.eif"), Second != "old");
        EXPECT_EQ(SectionsOf("f"), "before='old' ");
      } else {
        EXPECT_EQ(SectionsOf("f"), Case.InTarget);
      }
      const std::string Question = "M_Velkrund_DSPUtils_ResourceExists B";
      EXPECT_EQ(Answers.Questions, std::vector<std::string>(static_cast<std::size_t>(Case.Questions), Question));
      EXPECT_EQ(Called, Case.Settings & Calls ? Question : "");
      EXPECT_EQ(Ask.FAlwaysAsk, Case.AsksAgain);
      EXPECT_EQ(Export.Results()[1].LeftAlone, std::string_view(Case.InFolder).ends_with("old"));
      EXPECT_EQ(Export.Results()[0].Report.Texts, 1);
    }
}

TEST_F(ExportOperations, AnswersHoldForOneRunUnlessTheQuestionIsShared) {
  TYesNoCancelAsk Shared;
  Shared.FYes = Shared.FAlwaysAsk = true;
  for (const bool IsShared : {false, true}) {
    PutOld();
    Answers.Questions.clear();
    Answers.Codes = {14};
    const auto File = Open("f");
    TUOExportLSections Export;
    Export.Target = File.get();
    Export.SectionIDs = {"B", "b", "B"};
    Export.SetOverwrite(TRecreateOverwrite::Ask);
    if (IsShared) Export.SetOverwriteAsk(Shared);
    for (int Run = 0; Run < 2; ++Run) EXPECT_EQ(Export.Execute(), 1);
    EXPECT_EQ(SectionsOf("f"), "B='new' ") << "names differ in case, and the section is one";
    EXPECT_EQ(Answers.Questions.size(), IsShared ? 1u : 2u);
  }
}

TEST_F(ExportOperations, VersionAndEncodingFollowTheRelease) {
  const struct {
    TExportReleaseVersion Release;
    TKvEncoding Encoding;
    const char* Header;
  } Cases[] = {
      {TExportReleaseVersion::rv17, TKvEncoding::Utf8, "Version = 100"},
      {TExportReleaseVersion::rv20, TKvEncoding::Ansi, "Version = 200"},
      {TExportReleaseVersion::rv20, TKvEncoding::Utf8, "Version = 200"},
  };
  for (const auto& Case : Cases) {
    Platform.MemoryFiles.Remove("f");
    TUOExportLSections Export;
    Export.SectionIDs = {"A"};
    Export.ReleaseVersion = Case.Release;
    Export.Encoding = Case.Encoding;
    const auto File = Open("f");
    Export.Target = File.get();
    EXPECT_EQ(Export.Execute(), 1);
    const std::string Bytes = Platform.MemoryFiles.Get("f");
    EXPECT_NE(Bytes.find(Case.Header), Bytes.npos) << Bytes;
    const bool IsUtf8 = Case.Release == TExportReleaseVersion::rv20 && Case.Encoding == TKvEncoding::Utf8;
    EXPECT_EQ(Bytes.find("Encoding = UTF8") != Bytes.npos, IsUtf8) << Bytes;
  }
}

TEST_F(ExportOperations, OneSectionIsReplacedByItsKind) {
  Put({"A.x.Russian=rus", "A.y.English=why"});
  Platform.MemoryFiles.Remove("f");
  const auto File = Open("f");
  Answers.Codes = {7};
  TUOExportLResourceInterface One;
  One.SetTarget(File.get());
  One.SetSectionID("A");
  SetPropertyText(One, "Languages", "Russian,English");
  SetPropertyText(One, "Resources", "X");
  TUOExportSingleLResourcesInterface Single;
  Single.SetTarget(File.get());
  Single.SetSectionID("A");
  Single.SetSectionName("single");
  SetPropertyText(Single, "Language", "English");
  SetPropertyText(Single, "SectionIDs", "A,B");
  for (TUtilOperationInterface* const Object :
       {static_cast<TUtilOperationInterface*>(&One), static_cast<TUtilOperationInterface*>(&Single)}) {
    EXPECT_EQ(Object->Execute(), 1) << Object->LastError();
    SetPropertyText(*Object, "Overwrite", "ask");
    EXPECT_EQ(Object->Execute(), 1) << Object->LastError();
    EXPECT_EQ(GetPropertyText(*Object, "LeftAlone"), "true");
  }
  EXPECT_EQ(Answers.Questions, std::vector<std::string>(2, "M_Velkrund_DSPUtils_LResourceExists A"));
  EXPECT_EQ(SectionsOf("f"), "A='rus' single='new' ");
  SetPropertyText(One, "Overwrite", "yes");
  EXPECT_EQ(One.Execute(), 1) << One.LastError();
  EXPECT_EQ(GetPropertyText(One, "Texts"), "2");
  EXPECT_EQ(SectionsOf("f"), "single='new' A='rus' ");
  const std::string Bytes = Platform.MemoryFiles.Get("f");
  EXPECT_NE(Bytes.find("   _x = 'new'\r\n   _y = 'why'\r\n   B_x = 'new'\r\n"), Bytes.npos) << Bytes;
}

TEST_F(ExportOperations, ErrorsAndCancelLeaveWhatIsDone) {
  PutOld();
  TUOExportLSectionsInterface Object;
  Object.SectionIDs() = {"A", "B"};
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.LastError(), "EAccessViolation:Access violation: the target of an export operation is not assigned");
  Object.SectionIDs() = {};
  EXPECT_EQ(Object.Execute(), 1) << "nothing to do: " << Object.LastError();

  Object.SectionIDs() = {"A", "B"};
  const auto File = Open("f");
  Object.SetTarget(File.get());
  Object.Operation().FOnShowProgress = [&](auto, auto, std::string_view Name) {
    if (Name == "x") Object.Operation().SetCanceled(true);
  };
  EXPECT_EQ(Object.Execute(), 0) << Object.LastError();
  EXPECT_EQ(SectionsOf("f"), "before='old' ");
  Object.Operation().SetCanceled(false);
  Object.Operation().FOnShowProgress = nullptr;
  Answers.Codes = {};  // the person ends the whole job
  SetPropertyText(Object, "Overwrite", "ask");
  EXPECT_EQ(Object.Execute(), 0);
  EXPECT_EQ(Object.End(), TRunEnd::Cancelled);
  EXPECT_EQ(SectionsOf("f"), "before='old' A='new' ");
}

/// A folder whose files cannot be deleted.
class TStubbornPlatform final : public TLocalizationPlatform {
 public:
  TFileSystem& Files() override { return Stubborn; }
  std::string LString(std::string_view Key) const override {
    return Key == "M_Velkrund_LUtils_CanNotDeleteFile" ? "cannot delete %s" : std::string(Key);
  }

  class TFiles final : public TFileSystem {
   public:
    explicit TFiles(TMemoryFiles& Files) : FFiles(Files) {}
    std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override { return FFiles.Open(Path, Mode); }
    bool Exists(const std::string& Path) override { return FFiles.Exists(Path); }
    void Remove(const std::string& Path) override { throw EWriteError(Path + ": Permission denied"); }

   private:
    TMemoryFiles& FFiles;
  };
  TFiles Stubborn{MemoryFiles};
};

TEST_F(ExportOperations, FilesThatCannotBeDeletedAreErrors) {
  TStubbornPlatform Stubborn;
  Stubborn.Strings().Put("A", "x", "English", "new");
  Stubborn.MemoryFiles.Put("d/A.eif", "old");
  Stubborn.MemoryFiles.Put("d/Languages.eif", "old");
  TUOExportLSections Sections;
  Sections.SectionIDs = {"A"};
  Sections.ToFolder = true;
  Sections.Folder = "d";
  TUOExportLanguages Languages;
  Languages.Languages = {"English"};
  Languages.ToFolder = true;
  Languages.Folder = "d";
  for (TUtilOperation* const Export :
       {static_cast<TUtilOperation*>(&Sections), static_cast<TUtilOperation*>(&Languages)})
    try {
      Export->Execute();
      FAIL() << "no error";
    } catch (const Exception& Error) {
      const bool IsSections = Export == &Sections;
      EXPECT_EQ(Error.what(), std::string("cannot delete ") + (IsSections ? "d/A.eif" : "d/Languages.eif"));
      EXPECT_STREQ(Error.ClassName(), "Exception");
      EXPECT_TRUE(Kv_FullExceptionInfo(Error).ends_with("Permission denied")) << Kv_FullExceptionInfo(Error);
    }
}

TEST_F(ExportOperations, Languages) {
  const struct {
    const char* Overwrite;
    int Code;
    const char* InTarget;  // after a section of each language was there
    const char* InFolder;
    const char* Questions;
  } Cases[] = {
      {"yes", 0, "English=R1 Russian=R2 ", "English=R1 Russian=R2 ", ""},
      {"no", 0, "English=R0 Russian=R0 ", "old", ""},
      {"ask", 6, "English=R1 Russian=R2 ", "English=R1 Russian=R2 ", "English;Russian;"},
      {"ask", 7, "English=R0 Russian=R0 ", "old", "English;Russian;"},
      {"ask", 14, "English=R1 Russian=R2 ", "English=R1 Russian=R2 ", "English;"},
      {"ask", 13, "English=R0 Russian=R0 ", "old", "English;"},
  };
  auto& Table = Platform.Strings();
  for (const auto& Case : Cases)
    for (const bool ToFolder : {false, true}) {
      SCOPED_TRACE(testing::Message() << Case.Overwrite << " " << Case.Code << " " << ToFolder);
      Platform.MemoryFiles.Remove("f");
      Platform.MemoryFiles.Put("d/Languages.eif", "old");
      Answers = {};
      Answers.Codes = {Case.Code};
      TUOExportLanguagesInterface Object;
      const auto File = Open("f");
      Object.SetTarget(File.get());
      Object.Languages() = {"English", "Russian"};
      for (const char* const Name : {"English", "Russian"}) Table.SetLanguage(Name, {"R0", "", ""});
      EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
      Table.SetLanguage("English", {"R1", "", ""});
      Table.SetLanguage("Russian", {"R2", "", ""});
      SetPropertyText(Object, "Overwrite", Case.Overwrite);
      SetPropertyText(Object, "Folder", "d/");
      Object.Operation().ToFolder = ToFolder;
      EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
      std::string Questions;
      if (ToFolder) {
        const bool IsOld = Platform.MemoryFiles.Get("d/Languages.eif") == "old";
        EXPECT_EQ(IsOld ? "old" : SectionsOf("d/Languages.eif"), Case.InFolder);
        const std::vector<std::string> Asked(*Case.Questions ? 1 : 0, "M_Velkrund_LUtils_FileExists d/Languages.eif");
        EXPECT_EQ(Answers.Questions, Asked);
      } else {
        EXPECT_EQ(SectionsOf("f"), Case.InTarget);
        for (const std::string& Question : Answers.Questions)
          Questions += Question.substr(Question.find(' ') + 1) + ";";
        EXPECT_EQ(Questions, Case.Questions);
      }
    }
}

}  // namespace
}  // namespace velkrund::tests
