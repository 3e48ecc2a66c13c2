#include "tests/resources/OperationFixture.h"

namespace velkrund::tests {
namespace {

/// Operations that change what databases hold. At the progress of something named "fails" the next call of the store
/// fails, at that of "stops" a person wants to stop.
class StoreOperations : public Operation {
 protected:
  void Watch(TUtilOperation& Running) {
    Running.SetCanceled(false);
    Running.FOnShowProgress = [&](std::int32_t Current, std::int32_t Total, std::string_view Name) {
      if (Name == "fails") Platform.Calls.FailAt = 1;
      if (Name == "stops") Running.SetCanceled(true);
      EXPECT_LE(Current, Total);
    };
    Errors.clear();
    Answers.Questions.clear();
    Platform.Log.clear();
  }

  /// What became of each: "NAME:texts", with "-" for what was left alone and "!" for an error.
  static std::string Told(const TLItemResults& Run) {
    std::string Result;
    for (const TLItemResult& Item : Run.Results())
      Result +=
          Item.Name + ":" + std::to_string(Item.Report.Texts) + (Item.LeftAlone ? "-" : "") + (Item.Error ? "! " : " ");
    return Result;
  }

  std::string TextsOfTarget() { return Platform.Strings("target").Texts(); }
};

TEST_F(StoreOperations, DeletionsOfManySectionsAreOneUpdate) {
  const struct {
    int Count;
    const char* Last;
    std::vector<std::string> Log;
    int Result;
  } Cases[] = {
      {10, "x", {}, 1},
      {11, "x", {"begin update", "end update"}, 1},
      {11, "fails", {"begin update", "end update"}, 0},
      {11, "stops", {"begin update", "end update"}, 0},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(testing::Message() << Case.Count << " " << Case.Last);
    Platform.Strings().Content = {};
    Platform.Calls.Log.clear();
    GoOn = IDNO;
    TUODeleteLSectionsInterface Object;
    for (int Index = 1; Index <= Case.Count; ++Index) {
      const std::string ID = "S" + std::to_string(Index);
      Object.SectionIDs().Add(ID);
      const bool IsLast = Index == Case.Count;
      Platform.Strings().Put(ID, IsLast ? Case.Last : "x", "English", "t");
    }
    Put({"S1_MORE.x.English=stays"});
    Watch(Object.Operation());
    EXPECT_EQ(Object.Execute(), Case.Result);
    EXPECT_EQ(Object.LastError(), *Case.Last == 'f' ? "EDatabaseError:DeleteString fails" : "");
    EXPECT_EQ(Platform.Calls.Log, Case.Log);
    const std::string Left = "S1_MORE_x.English=stays ";
    EXPECT_EQ(Texts(), Case.Result ? Left : "S11_" + std::string(Case.Last) + ".English=t " + Left);
    EXPECT_EQ(Object.Operation().Strings(), Case.Result ? Case.Count : 10);
  }
}

TEST_F(StoreOperations, DeletionsGoOnAfterErrors) {
  Put({"A.x.English=1", "A.x.Russian=2", "B.x.English=3", "B.fails.English=4", "C_.y.Russian=5"});
  TUODeleteLSectionsInterface Sections;
  Sections.SectionIDs() = {"A", "B", "none", "C"};
  Watch(Sections.Operation());
  EXPECT_EQ(Sections.Execute(), 1) << Sections.LastError();
  EXPECT_EQ(Texts(), "B_x.English=3 B_fails.English=4 ") << "what has failed is taken back as a whole";
  EXPECT_EQ(Errors, (std::vector<std::string>{"M_Velkrund_LUtils_ErrorOnDeleteLocalSection\r\nDeleteString fails\r\n"
                                              "M_Velkrund_LUtils_ContinueDelete"}));
  EXPECT_EQ(GetPropertyText(Sections, "Failed"), "B");
  EXPECT_EQ(GetPropertyText(Sections, "Deleted"), "2");

  TUODeleteLResourcesInterface Strings;
  Strings.StringIDs() = {"b_X", "none", "fails", "B_fails"};
  Watch(Strings.Operation());
  EXPECT_EQ(Strings.Execute(), 1) << Strings.LastError();
  EXPECT_EQ(Texts(), "");
  EXPECT_EQ(Errors, (std::vector<std::string>{"M_Velkrund_LUtils_ErrorOnDeleteLocalResource\r\nDeleteString fails\r\n"
                                              "M_Velkrund_LUtils_ContinueDelete"}));
  EXPECT_EQ(GetPropertyText(Strings, "Failed"), "fails");
  EXPECT_EQ(GetPropertyText(Strings, "Deleted"), "2");

  Put({"A.x.English=1", "A.stops.English=2"});
  TUODeleteLSection One;
  One.SectionID = "A";
  Watch(One);
  EXPECT_EQ(One.Execute(), 0);
  EXPECT_EQ(Texts(), "A_x.English=1 A_stops.English=2 ");
  EXPECT_EQ(One.Deleted(), 0);
}

TEST_F(StoreOperations, CopiesOfSectionsAskAboutTexts) {
  const struct {
    std::vector<int> Codes;  // empty: Overwrite
    const char* Target;
    const char* Told;
    const char* Questions;
  } Cases[] = {
      {{}, "A_x.English=n A_y.English=n A_y.Russian=n B_x.English=n ", "A:3 B:1 ", ""},
      {{6}, "A_x.English=n A_y.English=n A_y.Russian=n B_x.English=n ", "A:3 B:1 ", "A_x A_y B_x "},
      {{7}, "A_x.English=o A_y.English=n A_y.Russian=o B_x.English=o ", "A:1 B:0- ", "A_x A_y B_x "},
      {{14}, "A_x.English=n A_y.English=n A_y.Russian=n B_x.English=n ", "A:3 B:1 ", "A_x "},
      {{13}, "A_x.English=o A_y.English=n A_y.Russian=o B_x.English=o ", "A:1 B:0- ", "A_x "},
      {{7, 6, 2}, "A_x.English=o A_y.English=n A_y.Russian=n B_x.English=o ", "A:2 B:0- ", "A_x A_y B_x "},
  };
  Put({"A.x.English=n", "A.y.English=n", "A.y.Russian=n", "B.x.English=n", "A_B.x.English=another section's"});
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Told + testing::PrintToString(Case.Codes));
    Platform.Strings("target").Content = {};
    Put({"A.x.English=o", "A.y.Russian=o", "B.x.English=o"}, "target");
    TUOCopyLSectionsInterface Object;
    EXPECT_FALSE(Object.Overwrite());
    Object.SetTargetDatabaseName("target");
    Object.SectionIDs() = {"A", "B"};
    Object.SetOverwrite(Case.Codes.empty());
    Answers.Codes = Case.Codes;
    Watch(Object.Operation());
    EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
    EXPECT_EQ(TextsOfTarget(), Case.Target);
    EXPECT_EQ(Told(Object.Operation()), Case.Told);
    std::string Questions;
    for (const std::string& Question : Answers.Questions) Questions += Question.substr(Question.find(' ') + 1) + " ";
    EXPECT_EQ(Questions, Case.Questions);
    EXPECT_EQ(Platform.Log, (std::vector<std::string>{"start", "commit", "start", "commit"}));
  }
}

TEST_F(StoreOperations, CopiesOfSectionsAreWholeOrNone) {
  const struct {
    std::vector<const char*> Source;
    int GoOn;
    const char* Target;
    const char* Told;
    const char* Error;
  } Cases[] = {
      {{"A.x.English=1", "B.x.English=2", "B.fails.English=3", "C.x.English=4"},
       IDYES,
       "A_x.English=1 C_x.English=4 ",
       "A:1 B:0! C:1 ",
       ""},
      {{"A.x.English=1", "B.x.English=2", "B.fails.English=3", "C.x.English=4"},
       IDNO,
       "A_x.English=1 ",
       "A:1 B:0! ",
       "EDatabaseError:GetString fails"},
      {{"A.x.English=1", "B.x.English=2", "B.stops.English=3", "C.x.English=4"},
       IDYES,
       "A_x.English=1 ",
       "A:1 B:0 ",
       ""},
      {{"A.x.English=1", "B.x.English=2", "B.x.French=3", "C.x.English=4"},
       IDNO,
       "A_x.English=1 ",
       "A:1 B:0! ",
       "ELUtilError:Can not copy resources. Language 'French' of section 'B' not found in database 'target'. Copy the "
       "languages first"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Target);
    Platform.Strings().Content = {};
    Platform.Strings("target").Content = {};
    Platform.Strings("target").SetLanguage("English", {});
    for (const char* const Text : Case.Source) Put({Text});
    TUOCopyLSectionsInterface Object;
    Object.SetTargetDatabaseName("target");
    Object.SectionIDs() = {"A", "B", "C"};
    Object.SetOverwrite(true);
    GoOn = Case.GoOn;
    Watch(Object.Operation());
    EXPECT_EQ(Object.Execute(), std::string_view(Case.Told).ends_with("C:1 ") ? 1 : 0);
    EXPECT_EQ(Object.LastError(), Case.Error);
    EXPECT_EQ(TextsOfTarget(), Case.Target);
    EXPECT_EQ(Told(Object.Operation()), Case.Told);
    Platform.Calls.FailAt = 0;
  }
}

TEST_F(StoreOperations, CopiesIntoAnotherSection) {
  const struct {
    const char* Second;  // the name of the second string
    std::vector<int> Codes;
    int GoOn;
    int Result;
    const char* Copied;
    const char* Told;
    const char* Error;
  } Cases[] = {
      {"y", {}, IDNO, 1, "B_x.English=1 B_x.Russian=2 B_y.English=3 ", "x:2 y:1 ", ""},
      {"y", {7, 6}, IDNO, 1, "B_x.English=o B_x.Russian=2 B_y.English=3 ", "x:1 y:1 ", ""},
      {"y", {14}, IDNO, 1, "B_x.English=1 B_x.Russian=2 B_y.English=3 ", "x:2 y:1 ", ""},
      {"fails", {}, IDYES, 1, "B_x.English=1 B_x.Russian=2 ", "x:2 fails:0! ", ""},
      {"fails", {}, IDNO, 0, "B_x.English=o ", "x:0 fails:0! ", "EDatabaseError:GetString fails"},
      {"stops", {}, IDYES, 0, "B_x.English=o ", "x:0 ", ""},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Told);
    Platform.Strings().Content = {};
    Put({"A.x.English=1", "A.x.Russian=2"});
    Platform.Strings().Put("A", Case.Second, "English", "3");
    const std::string Source = Texts();
    Put({"B.x.English=o"});
    TUOCopyLResourcesInterface Object;
    Object.SetSourceSectionID("A");
    Object.SetTargetSectionID("B_");
    Object.SetOverWrite(Case.Codes.empty());
    GoOn = Case.GoOn;
    Answers.Codes = Case.Codes;
    Watch(Object.Operation());
    EXPECT_EQ(Object.Execute(), Case.Result);
    EXPECT_EQ(Object.LastError(), Case.Error);
    EXPECT_EQ(Texts(), Source + Case.Copied);
    EXPECT_EQ(Told(Object.Operation()), Case.Told);
    EXPECT_EQ(Platform.Strings().SectionOf("B_x"), "B");
    Platform.Calls.FailAt = 0;
  }
}

TEST_F(StoreOperations, NothingIsCopiedOntoItself) {
  Put({"A.x.English=1"});
  TUOCopyLSectionsInterface Sections;
  Sections.SectionIDs() = {"A"};
  TUOCopyLResourcesInterface Strings;
  Strings.SetSourceSectionID("a");
  Strings.SetTargetSectionID("A_");
  TUOCopyLanguagesInterface Languages;
  Languages.Languages() = {"English"};
  EXPECT_EQ(Sections.Execute() + Strings.Execute() + Languages.Execute(), 0);
  EXPECT_EQ(Sections.LastError(), "ELUtilError:Can not copy resources to same database.");
  EXPECT_EQ(Strings.LastError(), "ELUtilError:Can not copy resources to itself.");
  EXPECT_EQ(Languages.LastError(), "ELUtilError:Can not copy languages to same database.");
  EXPECT_TRUE(Platform.Log.empty()) << "no transaction has begun";
}

TEST_F(StoreOperations, CopiesOfLanguagesAskAboutOtherNames) {
  const struct {
    std::vector<int> Codes;  // empty: Overwrite
    const char* English;     // what it is called in the target then
    const char* Questions;
    const char* Written;
    const char* LeftAlone;
  } Cases[] = {
      {{}, "English", "", "English,French", ""},
      {{6}, "English", "English ", "English,French", ""},
      {{7}, "Englisch", "English ", "French", "English"},
      {{13}, "Englisch", "English ", "French", "English"},
  };
  auto& Source = Platform.Strings();
  for (const char* const Name : {"English", "Russian", "French"}) Source.SetLanguage(Name, {"r", Name, "n"});
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Written);
    auto& Target = Platform.Strings("target");
    Target.Content = {};
    Target.SetLanguage("English", {"r", "Englisch", "n"});
    Target.SetLanguage("russian", {"r", "Russian", "n"});
    TUOCopyLanguagesInterface Object;
    Object.SetTargetDatabaseName("target");
    Object.Languages() = {"ENGLISH", "Russian", "french"};
    Object.SetOverwrite(Case.Codes.empty());
    Answers.Codes = Case.Codes;
    Watch(Object.Operation());
    EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
    TOneLanguage Record;
    ASSERT_TRUE(Target.GetLanguage("English", Record));
    EXPECT_EQ(Record.EnglishName, Case.English);
    EXPECT_EQ(Target.Content.Languages.back().first, "French");
    std::string Questions;
    for (const std::string& Question : Answers.Questions) Questions += Question.substr(Question.find(' ') + 1) + " ";
    EXPECT_EQ(Questions, Case.Questions);
    EXPECT_EQ(GetPropertyText(Object, "Written"), Case.Written);
    EXPECT_EQ(GetPropertyText(Object, "LeftAlone"), Case.LeftAlone);
  }
  TUOCopyLanguagesInterface Missing;
  Missing.SetTargetDatabaseName("other");
  Missing.Languages() = {"English", "Latin"};
  EXPECT_EQ(Missing.Execute(), 0);
  EXPECT_EQ(Missing.LastError(), "ELUtilError:Can not copy language. Language Latin not found in database ");
  EXPECT_TRUE(Platform.Strings("other").Content.Languages.empty());
}

/// A file with languages and sections of strings.
class ImportOperations : public StoreOperations {
 protected:
  ImportOperations() {
    Platform.Strings("target").SetLanguage("English", {});
    std::string Text =
        "[SECTION]\nType = Language\nVersion = 100\nName = l\nLanguageID = Russian\n[DATA]\n"
        "  RussianName=r\n  EnglishName=e\n  NativeName=n\n[END]\n";
    for (const char* const ID : {"A", "B", "C"})
      Text += std::string("[SECTION]\nType = LocalizedResource\nVersion = 200\nName = n") + ID + "\nSectionID = " + ID +
              "\n[DATA]\n [LANGUAGES]\n  English\n  Russian\n [STRINGS]\n  x:\n   English = 'n'\n   Russian = 'n'\n" +
              (*ID == 'B' ? "bad\n" : "") + "[END]\n";
    Text +=
        "[SECTION]\nType = ActiveXLocalizedResource\nVersion = 200\nName = X\nSectionID = A\n[DATA]\n"
        "   _x = 'n'\n[END]\n";
    Platform.MemoryFiles.Put("f", WithLineEnds(Text));
    File = Open("f");
  }

  std::unique_ptr<TEIFile> File;
};

TEST_F(ImportOperations, AllSections) {
  const struct {
    int GoOn;
    int Code;  // 0: overwrite without asking
    int Result;
    const char* Target;
    const char* Told;
    const char* Error;
  } Cases[] = {
      {IDYES, 0, 1, "C_x.English=n C_x.Russian=n A_x.English=n A_x.Russian=n ", "nA:2 nB:0! nC:2 X:0! ", ""},
      {IDYES, 13, 1, "C_x.English=o C_x.Russian=n A_x.English=n A_x.Russian=n ", "nA:2 nB:0! nC:1 X:0! ", ""},
      {IDNO, 0, 0, "C_x.English=o A_x.English=n A_x.Russian=n ", "nA:2 nB:0! ",
       "EEIError:Can not import localized resource."},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(testing::Message() << Case.GoOn << " " << Case.Code);
    Platform.Strings("target").Content.Strings.clear();
    Platform.Strings("target").SetLanguage("Russian", {});
    Put({"C.x.English=o"}, "target");
    TUOImportLSectionsInterface Object;
    EXPECT_EQ(Object.Execute(), 0) << "no source";
    Object.SetSource(File.get());
    Object.SetDatabaseName("target");
    SetPropertyText(Object, "Overwrite", Case.Code ? "ask" : "yes");
    GoOn = Case.GoOn;
    Answers.Codes = {Case.Code};
    Watch(Object.Operation());
    EXPECT_EQ(Object.Execute(), Case.Result);
    EXPECT_TRUE(Object.LastError().starts_with(Case.Error)) << Object.LastError();
    EXPECT_EQ(Object.LastError().empty(), Case.Result == 1);
    EXPECT_EQ(TextsOfTarget(), Case.Target);
    EXPECT_EQ(Told(Object.Operation()), Case.Told);
    EXPECT_TRUE(Errors.front().starts_with("M_Velkrund_DSPUtils_ErrorOnImportLocalResource\r\n")) << Errors.front();
    EXPECT_TRUE(Errors.front().ends_with("\r\nM_Velkrund_DSPUtils_ContinueImport")) << Errors.front();
    const bool SeesTheLast =
        Errors.back().find("Importing ActiveXLocalizedResource's not supporting") != std::string::npos;
    EXPECT_EQ(SeesTheLast, Case.GoOn == IDYES) << Errors.back();
  }
}

TEST_F(ImportOperations, OneSection) {
  Platform.Strings("target").SetLanguage("Russian", {});
  TUOImportLResourceInterface Object;
  Object.SetSource(File.get());
  Object.SetSectionNumber(1);
  Object.SetDatabaseName("target");
  Object.SetReadLanguagesOnly(true);
  EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
  EXPECT_EQ(GetPropertyText(Object, "Languages"), "English,Russian");
  EXPECT_EQ(TextsOfTarget(), "");
  Object.SetReadLanguagesOnly(false);
  Object.SetSectionID("T");
  SetPropertyText(Object, "Languages", "russian");
  EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
  EXPECT_EQ(TextsOfTarget(), "T_x.Russian=n ");
  EXPECT_EQ(GetPropertyText(Object, "Texts"), "1");
  SetPropertyText(Object, "Resources", "y");
  EXPECT_EQ(Object.Execute(), 1) << Object.LastError();
  EXPECT_EQ(GetPropertyText(Object, "Texts"), "0");
}

TEST_F(ImportOperations, LanguagesByTheirIndexes) {
  const struct {
    std::vector<std::string> Indexes;
    const char* Error;
    bool IsThere;
  } Cases[] = {
      {{}, "", false},
      {{"0", "1"}, "Exception:Section 1 is no language, but of type 'LocalizedResource'", true},
      {{"x", "0"}, "EConvertError:'x' is not a valid integer value", false},
      {{"9"}, "EListError:", false},
      {{"0"}, "", true},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Error);
    Platform.Strings("target").Content = {};
    TUOImportLanguagesInterface Object;
    Object.SetSource(File.get());
    Object.SetDatabaseName("target");
    Object.SectionIndexes() = TStringList(Case.Indexes);
    EXPECT_EQ(Object.Execute(), *Case.Error ? 0 : 1);
    EXPECT_TRUE(Object.LastError().starts_with(Case.Error)) << Object.LastError();
    TOneLanguage Record;
    EXPECT_EQ(Platform.Strings("target").GetLanguage("Russian", Record), Case.IsThere);
    EXPECT_EQ(Record, Case.IsThere ? (TOneLanguage{"r", "e", "n"}) : TOneLanguage());
  }
}

}  // namespace
}  // namespace velkrund::tests
