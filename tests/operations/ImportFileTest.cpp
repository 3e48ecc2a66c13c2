#include <gtest/gtest.h>

#include "tests/support/TestPlatform.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/operations/Comutils.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund::tests {
namespace {

class TTexts : public TTestPlatform {
 public:
  std::string LString(std::string_view Key) const override {
    if (Key == "M_Velkrund_ComUtils_ErrorOnImportSection") return "section '%s'";
    if (Key == "M_Velkrund_ComUtils_ErrorOnImportFile") return "file '%s'";
    return Key == "M_Velkrund_DSPUtils_ContinueImport" ? "Go on?" : std::string(Key);
  }
};

std::string* Journal = nullptr;  // what the sections, the questions and the container did, in order
TUtilOperation* Running = nullptr;

/// A section whose lines say what happens while it is read.
template <TSectionRole Role>
class TActing : public TEIObject {
 public:
  void ExportData(TEIStream&) override {}
  void FillParameters(TEISectionParameters&) override {}
  void Initialize(const TEISection& Section) override {
    Name = Section.Name();
    if (Name == "broken") throw EConvertError("no object");
  }
  void LoadProperties(const TKvParamsList& Properties) override { Setting = Properties.Value("Setting"); }
  void SaveProperties(TKvParamsList& Properties) const override { Properties.Add("Setting", Setting); }
  void ImportData(TEIStream& Stream) override {
    while (Stream.Position() < Stream.Size()) {
      ShowProgress(Stream.Position(), Stream.Size(), Name);
      const std::string Line(Stream.Readln());
      if (Line == "bad") throw EConvertError("bad value");
      if (Line == "abort") throw EAbort("stop");
      if (Line == "ask") throw EQuestionUnanswered("who?");
      if (Line == "remember") Setting += Name;
      if (Line == "alone") Alone = true;
      if (Line == "cancel") Running->SetCanceled(true);
      FStopped = Line == "stopped" || IsCanceled();
      if (FStopped) return;
    }
    *Journal += Name + (Setting.empty() ? "" : "(" + Setting + ")") + DatabaseName + " ";
  }
  TEIObjectClass ClassType() const override { return TEIObjectClass(Descriptor); }
  bool LeftAlone() const override { return Alone; }

  static constexpr const char* Type = Role == TSectionRole::Structure       ? "S"
                                      : Role == TSectionRole::TableData     ? "T"
                                      : Role == TSectionRole::QueryData     ? "Q"
                                      : Role == TSectionRole::GeneratorData ? "G"
                                      : Role == TSectionRole::Language      ? "L"
                                      : Role == TSectionRole::Resource      ? "R"
                                                                            : "O";
  static inline const TEIObjectDescriptor Descriptor{
      "TActing", nullptr, Type, 100, Role, nullptr, []() -> std::unique_ptr<TEIObject> {
        return std::make_unique<TActing>();
      }};

  std::string Name, Setting;
  bool Alone = false;
};

class TCreated : public TRecreateOperation {
 public:
  int Execute() override {
    *Journal += "+" + ObjectName + " ";
    if (ObjectName == "failsV") throw EDatabaseError("no table");
    return ObjectName == "declinedV" ? 0 : 1;
  }
};

constexpr int Unanswered = -1, Abort = -2;

/// Imports files that a test describes: sections as "type:name line line", separated by "|", files by "||". A missing
/// file is "-".
class ImportFile : public testing::Test, public TImportFileObserver {
 protected:
  ImportFile() {
    Journal = &Done;
    for (const TEIObjectClass Class : Classes) EITypeList().RegisterEIObject(Class);
    RecreateOperations().Register(ViewObjectType, [] { return std::make_unique<TCreated>(); });
  }
  ~ImportFile() override {
    for (const TEIObjectClass Class : Classes) EITypeList().UnregisterEIObject(Class);
  }

  static std::vector<std::string> Split(const std::string& Text, const std::string& Mark) {
    std::vector<std::string> Parts{""};
    for (std::size_t At = 0; At < Text.size();)
      if (Text.compare(At, Mark.size(), Mark) == 0)
        Parts.emplace_back(), At += Mark.size();
      else
        Parts.back() += Text[At++];
    return Parts;
  }

  std::vector<std::string> PutFiles(const std::string& Description) {
    std::vector<std::string> Names;
    for (const std::string& File : Split(Description, "||")) {
      Names.push_back("f" + std::to_string(Names.size()));
      if (File == "-") continue;
      std::string Content;
      for (const std::string& Section : Split(File, "|")) {
        const std::vector<std::string> Words = Split(Section, " ");
        Content += "[SECTION]\r\nType = " + Words[0].substr(0, 1) + "\r\nVersion = 100\r\nName = " + Words[0].substr(2);
        if (Words[0][0] == 'S')
          Content +=
              "\r\nObjectName = " + Words[0].substr(2) + "V\r\nObjectType = " + (Words[0] == "S:wrong" ? "x" : "72");
        Content += "\r\n[DATA]\r\n";
        for (std::size_t At = 1; At < Words.size(); ++At) Content += Words[At] + "\r\n";
        Content += "[END]\r\n";
      }
      Platform.MemoryFiles.Put(Names.back(), Content);
    }
    return Names;
  }

  template <typename TInterface>
  int Import(TInterface& Object) {
    Done.clear(), Question.clear(), Shown.clear(), Seen.clear(), Platform.Log.clear();
    auto& Operation = dynamic_cast<TUOImportFile&>(Object.Operation());
    Running = &Operation;
    Operation.Observer = this;
    Operation.FOnShowProgress = [this](std::int32_t Current, std::int32_t Total, std::string_view) {
      Shown.emplace_back(Current, Total);
    };
    return Object.Execute();
  }

  TEIFile* OpenedFile(const std::string& FileName) override {
    return Opened && Opened->FileName() == FileName ? Opened : nullptr;
  }
  bool Takes(const TEIFile&, const TEISection& Section) override { return !Section.Name().starts_with("without"); }
  bool BeginSection(const TEIFile& File, const TEISection& Section, TEIObject&) override {
    Seen += File.FileName() + "<" + Section.Name() + " ";
    return Section.Name() != "skip";
  }
  void EndSection(const TEIFile& File, const TEISection& Section, const TEIObject* Object,
                  const std::exception* Error) override {
    Seen += File.FileName() + ">" + Section.Name() + (Object ? Object->Stopped() ? "(stopped)" : "" : "(none)");
    Seen += Error ? ":" + ExceptionClassName(*Error) + " " : " ";
  }
  void ObjectEnded(const std::string& Name, int ObjectType, TRecreateState State,
                   const std::exception_ptr& Error) override {
    Ended += Name + std::to_string(ObjectType) + ":" + std::to_string(static_cast<int>(State)) + (Error ? "! " : " ");
  }
  void FileFailed(const std::string& File, const std::exception& Error) override {
    Seen += File + "!" + ExceptionClassName(Error) + " ";
  }

  const TEIObjectClass Classes[7] = {TEIObjectClass(TActing<TSectionRole::QueryData>::Descriptor),
                                     TEIObjectClass(TActing<TSectionRole::Language>::Descriptor),
                                     TEIObjectClass(TActing<TSectionRole::Resource>::Descriptor),
                                     TEIObjectClass(TActing<TSectionRole::GeneratorData>::Descriptor),
                                     TEIObjectClass(TActing<TSectionRole::Structure>::Descriptor),
                                     TEIObjectClass(TActing<TSectionRole::TableData>::Descriptor),
                                     TEIObjectClass(TActing<TSectionRole::Other>::Descriptor)};
  TTexts Platform;
  TEIFile* Opened = nullptr;
  std::string Done, Question, Seen, Ended;
  int Answer = IDYES;
  std::vector<std::pair<std::int32_t, std::int32_t>> Shown;

 private:
  int Ask(std::u16string_view Text, std::u16string_view Caption, std::uint32_t Flags, std::int32_t Yes,
          std::int32_t No) {
    EXPECT_EQ(Flags + static_cast<std::uint32_t>(Yes * 10 + No * 100), 4U + 60U + 700U);
    EXPECT_TRUE(Caption.empty());
    Question = FromUtf16(Text);
    Done += "? ";
    if (Answer == Unanswered) throw EQuestionUnanswered("nobody");
    if (Answer == Abort) throw EAbort("cancelled");
    return Answer;
  }

  const TMessageBoxGuard FMessageBox{[this](TWindowHandle, auto... Arguments) { return Ask(Arguments...); }};
  const TRecreateOperationsGuard FOperations{TRecreateOperationList()};
};

TEST_F(ImportFile, ErrorsAreAskedAbout) {
  const struct {
    const char* Files;
    int Answer;
    bool ContinueOnError;
    int Result;
    const char* Done;
    const char* Error;  // its beginning
    bool ContinuesAfter;
  } Cases[] = {
      // The order: structures and others, tables, then what the structures describe.
      {"T:t x|S:s x|O:o x", IDYES, true, 1, "s o t +sV ", "", true},
      {"T:t x", IDYES, true, 1, "t ", "", true},
      {"G:g x|Q:q x|T:t x|S:s x", IDYES, true, 1, "s q t +sV g ", "", true},
      {"G:g x|S:s x||G:h bad|Q:q alone|G:i x", IDYES, true, 1, "s q +sV g ? i ", "", true},
      {"G:g cancel|G:h x|O:o x", IDYES, true, 0, "o ", "", true},
      {"R:r x|L:l x|G:g x|S:s x||R:q bad|L:m alone", IDYES, true, 1, "s +sV g l m r ? ", "", true},
      {"R:r x|L:l cancel|G:g x", IDYES, true, 0, "g ", "", true},
      // What was left alone, left out, or has failed makes no object.
      {"S:s alone|S:skip x|S:b bad|S:a x", IDYES, true, 1, "s ? a +aV ", "", true},
      {"S:s alone||S:b bad||S:a x", IDYES, true, 1, "s ? a +aV ", "", true},
      // Every answer, in both parts.
      {"O:a bad|O:b x|T:t bad|T:u x", IDYES, true, 1, "? b ? u ", "", true},
      {"O:a bad|O:b x|T:t x", IDCANCEL, true, 1, "? b t ", "", true},
      {"O:a bad|O:b x", IDNO, true, 0, "? ", "EEIError:bad value; FileName: f0; Line: 6", false},
      {"O:a x|T:t bad|T:u x", IDNO, true, 0, "a ? ", "EEIError:bad value; FileName: f0", false},
      {"O:a bad|O:b x", Abort, true, 0, "? ", "", true},
      {"O:a bad|O:b x", Unanswered, true, 0, "? ", "EEIError:bad value; FileName: f0", false},
      {"O:a bad|O:b x", IDYES, false, 0, "", "EEIError:bad value; FileName: f0", false},
      {"O:broken x|O:b x", IDNO, true, 0, "? ", "EConvertError:no object", false},
      // What nobody is asked about.
      {"O:a abort|O:b x", IDYES, true, 0, "", "", true},
      {"O:a ask|O:b x", IDYES, true, 0, "", "EQuestionUnanswered:who?", true},
      {"O:a cancel x|O:b x|T:t x", IDYES, true, 0, "", "", true},
      {"S:a x|T:t cancel|T:u x", IDYES, true, 0, "a ", "", true},
      {"S:wrong x", IDYES, true, 0, "", "EConvertError:'x' is not a valid integer", true},
      {"-", IDYES, true, 0, "", "EEIError:f0: cannot open", true},
      // Several files: a pass over all of them, then the next one.
      {"S:s x|T:t x||T:u x|S:r remember", IDYES, true, 1, "s r(r) t(r) u(r) +sV +rV ", "", true},
      {"-||S:s x||S:wrong x|T:t x||T:u x", IDYES, true, 1, "? s ? u +sV ", "", true},
      {"O:a x||-||O:b x", IDNO, true, 0, "a ? ", "EEIError:f1: cannot open", false},
      {"O:a x||-||O:b x", Unanswered, true, 0, "a ? ", "EEIError:f1: cannot open", false},
      {"O:a x||-||O:b x", Abort, true, 0, "a ? ", "", true},
      {"O:a x||O:b bad||O:c x", IDNO, true, 0, "a ? ", "EEIError:bad value; FileName: f1", false},
      {"O:a x||O:b x|T:t bad||T:u x", IDYES, true, 1, "a b ? u ", "", true},
      {"O:a cancel||T:t x", IDYES, true, 0, "", "", true},
      {"O:a x|T:t abort||T:u x", IDYES, true, 0, "a ", "", true},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Files);
    TUOImportFilesInterface Object;
    Object.SetFiles(PutFiles(Case.Files));
    Object.SetContinueOnError(Case.ContinueOnError);
    Answer = Case.Answer;
    if (Object.Files().size() > 1)  // several files begin anew
      dynamic_cast<TUOImportFile&>(Object.Operation()).FEIObjectProperties.Add("Setting", "old");
    EXPECT_EQ(Import(Object), Case.Result);
    EXPECT_EQ(Done, Case.Done);
    EXPECT_EQ(Object.LastError().substr(0, std::string_view(Case.Error).size()), Case.Error);
    EXPECT_EQ(Object.LastError().empty(), *Case.Error == 0);
    EXPECT_EQ(Object.LastError().ends_with("\r\nnobody"), Case.Answer == Unanswered);
    EXPECT_EQ(Object.ContinueOnError(), Case.ContinuesAfter);
    for (std::size_t At = 1; At < Shown.size(); ++At)
      EXPECT_TRUE(Shown[At].first >= Shown[At - 1].first || Shown[At].first == 0 ||
                  Shown[At].second != Shown[At - 1].second)
          << "progress goes back";
    EXPECT_TRUE(Case.Result == 0 || Shown.back().first == Shown.back().second);
    for (const std::string& Name : Object.Files()) Platform.MemoryFiles.Remove(Name);
  }
}

TEST_F(ImportFile, QuestionsAndTraceHoldTheReport) {
  TUOImportFilesInterface Object;
  Object.SetFiles(PutFiles("-||O:broken x"));
  EXPECT_EQ(Import(Object), 1);
  EXPECT_EQ(Platform.Log.back(), "section 'broken'\r\nno object");
  EXPECT_EQ(Question, Platform.Log.back() + "\r\nGo on?");
  EXPECT_TRUE(Platform.Log.front().starts_with("file 'f0'\r\nf0: cannot open")) << Platform.Log.front();
  Answer = Unanswered;
  try {
    Object.Operation().Execute();
    FAIL() << "no error";
  } catch (const EUnansweredError& Error) {
    EXPECT_TRUE(Kv_FullExceptionInfo(Error).ends_with("No such file or directory"))
        << "the error that was asked about is inside: " << Kv_FullExceptionInfo(Error);
  }
}

TEST_F(ImportFile, TheLogOfAHostSaysWhatHappened) {
  static std::vector<std::string> Lines;
  TRBaseManager Manager(
      [](auto...) {}, [] { return false; },
      [](const char16_t* Text, std::int32_t Level) { Lines.push_back(std::to_string(Level) + " " + FromUtf16(Text)); },
      0, 100);
  TUOImportFileInterface Object(&Manager);
  SetRecreateOperations({});
  Object.SetFileName(PutFiles("S:s x|O:broken x").front());
  EXPECT_EQ(Import(Object), 1);
  EXPECT_EQ(Lines, (std::vector<std::string>{"1 'sV' (type 72) is stored as a structure only: the application has "
                                             "nothing that creates objects of this type in the database",
                                             "1 section 'broken'\r\nno object"}));
}

TEST_F(ImportFile, ObserverSeesAndChoosesSections) {
  TUOImportFilesInterface Object;
  Object.SetFiles(PutFiles("O:skip bad|O:a x|T:t x|O:broken x|O:b bad||-||T:u stopped|T:v x"));
  EXPECT_EQ(Import(Object), 0);
  EXPECT_EQ(Seen,
            "f0<skip f0<a f0>a f0>broken(none):EConvertError f0<b f0>b:EEIError f1!EEIError f0<t f0>t f2<u "
            "f2>u(stopped) ");
  Object.SetFiles(PutFiles("O:z x"));
  EXPECT_EQ(Import(Object), 1) << "what stopped can run again";
}

TEST_F(ImportFile, TheHostHearsWhatBecameOfObjects) {
  TUOImportFileInterface Object;
  Object.SetFileName(PutFiles("S:fails x|S:a x|S:declined x|S:alone alone").front());
  Object.SetContinueOnError(false);
  EXPECT_EQ(Import(Object), 0);
  EXPECT_TRUE(Object.LastError().ends_with("no table")) << Object.LastError();
  EXPECT_EQ(Ended, "failsV72:0! aV72:1 declinedV72:2 ");
}

TEST_F(ImportFile, AHostOpensFilesAndTakesTheirSections) {
  TUOImportFilesInterface Object;
  Object.SetFiles(PutFiles("S:without x|O:a x|T:without-rows x||O:b x"));
  TEIFile File;
  File.SetFileName("f0");
  File.SetReadonly(true);
  File.Open();
  Opened = &File;
  Platform.MemoryFiles.Remove("f0");
  EXPECT_EQ(Import(Object), 1) << Object.LastError();
  EXPECT_EQ(Done, "a b ") << "what is not taken is created neither";
  EXPECT_EQ(Seen, "f0<a f0>a f1<b f1>b ");
  EXPECT_EQ(Shown.front(), std::pair(0, 3)) << "nor does it count";
}

TEST_F(ImportFile, ProgressCountsBytesOfBodies) {
  const auto ShownText = [this] {
    std::string Result;
    for (const auto& [Current, Total] : Shown) Result += std::to_string(Current) + "/" + std::to_string(Total) + " ";
    return Result;
  };
  TUOImportFileInterface One;
  One.SetFileName(PutFiles("O:a x yyy|T:t zzzzzz|O:skip xxxx").front());
  EXPECT_EQ(Import(One), 1);
  EXPECT_EQ(ShownText(), "0/22 0/22 3/22 8/22 14/22 14/22 22/22 ");
  One.SetFileName(PutFiles("R:r x|O:a yyy|L:l zzzz").front());
  EXPECT_EQ(Import(One), 1);
  EXPECT_EQ(ShownText(), "0/5 0/5 5/5 0/9 0/9 6/9 6/9 9/9 ");
  TUOImportFilesInterface Several;
  Several.SetFiles(PutFiles("O:a x yyy|T:t zzzz||T:u x|O:b x bad|O:c x"));
  EXPECT_EQ(Import(Several), 1);
  EXPECT_EQ(ShownText(), "0/8 0/8 3/8 8/8 0/11 0/11 3/11 3/11 3/11 11/11 0/9 0/9 6/9 6/9 9/9 ")
      << "what was shown of a failed section stays";
}

TEST_F(ImportFile, SettingsReachEverySection) {
  TUOImportFileInterface Object;
  Object.SetFileName(PutFiles("O:a remember|O:b bad remember|T:t remember").front());
  Object.SetDatabaseName("@db");
  Object.SetCreateDBStructures(false);
  auto& Operation = dynamic_cast<TUOImportFile&>(Object.Operation());
  Operation.FEIObjectProperties.Add("Setting", "host");
  EXPECT_EQ(Import(Object), 0) << "without table data the job is not done";
  EXPECT_EQ(Done, "a(hosta)@db ? ");
  Object.SetCreateDBStructures(true);
  EXPECT_EQ(Import(Object), 1);
  EXPECT_EQ(Done, "a(hosta)@db ? t(hostat)@db ") << "what a section remembers holds for its run";
}

TEST_F(ImportFile, MissingTablesAreMadeOrDeclined) {
  class TMaker final : public TMissingTables {
   public:
    TMaker(std::string& Done, const std::string& Database) : FDone(Done), FDatabase(Database) {}
    void Make(const std::vector<std::string>& Names) override {
      for (const std::string& Name : Names) FDone += "make:" + Name + FDatabase + " ";
    }
    void Check(const std::string& Name) override {
      if (Name == "no") throw Exception("Creation of table 'no' cancelled");
    }
    void Complete(const TFailed& Failed, const TTakenBack&) override {
      FDone += "complete ";
      try {
        throw Exception("no index");
      } catch (const std::exception& Error) {
        Failed("t", Error);
      }
    }

   private:
    std::string& FDone;
    const std::string FDatabase;
  };
  const TMissingTablesGuard Hook(
      [this](TUtilOperation&, const std::string& Database) { return std::make_unique<TMaker>(Done, Database); });
  TUOImportFileInterface Object;
  Object.SetDatabaseName("@db");
  Object.SetFileName(PutFiles("T:no x|O:a x|T:skip x|T:t x|Q:q x").front());
  EXPECT_EQ(Import(Object), 1);
  EXPECT_EQ(Done, "a@db make:no@db make:skip@db make:t@db ? t@db q@db complete ? ");
  EXPECT_EQ(Question, "section 't'\r\nno index\r\nGo on?") << "tables are completed behind the last row";
}

TEST_F(ImportFile, RefusesWhatItCanNotDo) {
  TUOImportFilesInterface Object;
  EXPECT_EQ(Import(Object), 0);
  EXPECT_EQ(Object.LastError(), "Exception:There is no file to import: the list of files is empty");
  Object.SetFiles({"nowhere"});
  Object.SetIsCrypted(true);
  EXPECT_EQ(Import(Object), 0);
  EXPECT_TRUE(Object.LastError().starts_with("Exception:Encrypted files are not supported yet")) << Object.LastError();
}

}  // namespace
}  // namespace velkrund::tests
