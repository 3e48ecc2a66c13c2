#include "tests/cli/ShopTest.h"
#include "tests/roundtrip/TestDatabase.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {
namespace {

/// Two languages, and the sections K_A (A, B_X) and K_A_B (Y) with texts in them.
class TResourcesTest : public TShopTest, public testing::WithParamInterface<const char*> {
 protected:
  static std::string Texts(const std::string& Section, const std::string& Body,
                           const std::string& Languages = "  English\r\n  Russian\r\n") {
    return "[SECTION]\r\nEncoding = UTF8\r\nName = " + Section +
           "\r\nType = LocalizedResource\r\nVersion = 200\r\nSectionID = " + Section +
           "\r\n[DATA]\r\n [LANGUAGES]\r\n" + Languages + " [STRINGS]\r\n" + Body + "[END]\r\n";
  }
  static std::string Language(const std::string& Name, const std::string& Native) {
    return "[SECTION]\r\nEncoding = UTF8\r\nName = " + Name +
           "\r\nType = Language\r\nVersion = 100\r\nLanguageID = " + Name + "\r\n[DATA]\r\n  RussianName=" + Name +
           "\r\n  EnglishName=" + Name + "\r\n  NativeName=" + Native + "\r\n[END]\r\n";
  }
  const std::string KA = Texts("K_A",
                               "  A:\r\n   English = 'one #0023'\r\n   Russian = 'один'\r\n"
                               "  B_X:\r\n   Russian = ''\r\n");
  const std::string KAB = Texts("K_A_B", "  Y:\r\n   English = 'why'\r\n");

  bool IsServer() const { return GetParam() == std::string("postgresql"); }
  void SetUp() override {
    Write("languages", Language("English", "English") + Language("Russian", "Русский"));
    Write("texts", KA + KAB);
    ASSERT_EQ(Run({"import", "languages", "-d", Database.Url, "-i", "languages"}).ExitCode, 0);
  }
  TOutcome Import(const std::string& File, TArguments More = {}) {
    More.insert(More.begin(), {"import", "resource", "-d", Database.Url, "-i", File});
    return Run(More);
  }
  void Load() { ASSERT_EQ(Import("texts").ExitCode, 0); }
  /// Every text with its string and section, by string and language.
  std::string State() {
    std::string Result = Database.Text(
        "SELECT CASE WHEN s.name = '' THEN s.section_id ELSE s.section_id || '_' || s.name END, s.section_id, l.name, "
        "t.text FROM velkrund_texts t JOIN velkrund_strings s ON s.number = t.string_number JOIN velkrund_languages l "
        "ON l.number = t.language_number ORDER BY s.string_key, l.number");
    std::replace(Result.begin(), Result.end(), '\t', ' ');
    std::replace(Result.begin(), Result.end(), '\n', ';');
    return Result;
  }
  static constexpr const char* Loaded =
      "K_A_A K_A English one #;K_A_A K_A Russian один;K_A_B_X K_A Russian ;K_A_B_Y K_A_B English why;";

  TTestDatabase Database = IsServer() ? PostgreSQLDatabase() : SQLiteDatabase(Path("r.db"));
};

INSTANTIATE_TEST_SUITE_P(Engines, TResourcesTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

TEST_P(TResourcesTest, ComeBackFromAFileAsTheyWere) {
  Load();
  EXPECT_EQ(State(), Loaded);
  const auto Exported = RunJson({"export", "resources", "-d", Database.Url, "--all", "-o", "again"});
  EXPECT_EQ(Exported["sections"][0]["resource"], "K_A");
  EXPECT_EQ(Exported["sections"][0]["texts"], 3);
  EXPECT_EQ(Read("again"), "\xEF\xBB\xBF\r\n" + KA + KAB);
  EXPECT_EQ(Run({"export", "languages", "-d", Database.Url, "-o", "all"}).ExitCode, 0);
  EXPECT_EQ(Run({"export", "resources", "-d", Database.Url, "--all", "-o", "all"}).ExitCode, 0);
  // One file for both, whatever stands first.
  EXPECT_EQ(Run({"import", "file", "-d", "sqlite:other.db", "--create", "-i", "all"}).ExitCode, 0);
  EXPECT_EQ(Run({"export", "resources", "-d", "sqlite:other.db", "--all", "-o", "third"}).ExitCode, 0);
  EXPECT_EQ(Read("third"), Read("again"));
  EXPECT_EQ(Run({"file", "check", "all"}).ExitCode, 0);
}

TEST_P(TResourcesTest, ExportsWhatIsAskedFor) {
  Load();
  const struct {
    TArguments Options;
    int ExitCode;
    std::string Body, Says;
  } Cases[] = {
      {{"--section-id", "k_a_", "--languages", "russian", "--names", "b_x"},
       0,
       Texts("K_A", "  B_X:\r\n   Russian = ''\r\n", "  Russian\r\n"),
       "exported resource K_A, section 'K_A': 1 string, 1 text"},
      {{"--section-ids", "K_A_B,K_A_B"}, 0, KAB, ""},
      {{"--section-ids", "K_A_B,NONE", "--missing", "skip"}, 0, KAB, "left out resource NONE"},
      {{"--section-id", "K_B"}, 1, "", "There is no resource 'K_B' in the database"},
      {{"--section-id", "K_A", "--languages", "French"}, 1, "", "There is no language 'French'"},
      {{"--section-id", "K_A", "--names", "AA"}, 1, "", "has no string 'AA'"},
      {{"--section-ids", "K_A,K_A_B", "--names", "A"}, 2, "", "--names are strings of one section"},
      {{}, 2, "", "--section-id ID or --all"},
  };
  for (const auto& [Options, ExitCode, Body, Says] : Cases) {
    TArguments Line = {"export", "resource", "-d", Database.Url, "-o", "out", "--new"};
    Line.insert(Line.end(), Options.begin(), Options.end());
    Shell("rm -f out");
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Joined(Options) << Outcome.Errors;
    EXPECT_EQ(Exists("out"), ExitCode == 0) << Joined(Options);
    if (ExitCode == 0) {
      EXPECT_EQ(Read("out"), "\xEF\xBB\xBF\r\n" + Body) << Joined(Options);
    }
  }
}

TEST_P(TResourcesTest, ImportsAsTheOptionsSay) {
  const std::string New =
      Texts("K_A", "  A:\r\n   English = 'new'\r\n  C:\r\n   English = 'see'\r\n   French = 'c'\r\n",
            "  English\r\n  French\r\n");
  const std::string Kept = Loaded, Replaced = "K_A_A K_A English new;K_A_A K_A Russian один;K_A_B_X K_A Russian ;";
  const struct {
    std::string File;
    TArguments Options;
    int ExitCode;
    std::string State, Says;
  } Cases[] = {
      {New, {}, 1, Kept, "texts in a language that the database"},
      {New, {"--languages", "English"}, 1, Kept, "Strings that are there already: K_A_A (English). Give --overwrite"},
      {New,
       {"--languages", "English", "--overwrite", "no"},
       0,
       Kept.substr(0, Kept.find("K_A_B_Y")) + "K_A_B_Y K_A_B English why;K_A_C K_A English see;",
       "1 text already there, and kept"},
      {New,
       {"--languages", "English", "--overwrite", "yes"},
       0,
       Replaced + "K_A_B_Y K_A_B English why;K_A_C K_A English see;",
       "1 text in languages that were not asked for"},
      {New,
       {"--add-languages", "--overwrite", "yes"},
       0,
       Replaced + "K_A_B_Y K_A_B English why;K_A_C K_A English see;K_A_C K_A French c;",
       "2 strings, 3 texts"},
      {New, {"--add-languages", "--overwrite", "yes", "--dry-run"}, 0, Kept, "nothing was changed"},
      {New, {"--languages", "Frensh"}, 2, Kept, "--languages names 'Frensh', which no section has"},
      {KAB, {"--section-id", "K_Z"}, 0, Kept + "K_Z_Y K_Z English why;", ""},
      {KA + KAB, {"--section-id", "K_Z"}, 2, Kept, "--section-id is for one section"},
      {KAB + Texts("K_Q", "  A:\r\n   English = 'x\r\n"),
       {"--overwrite", "yes", "--on-error", "stop"},
       1,
       Kept,
       "Invalid text value"},
      {Texts("K_Q", "  A:\r\n   German = 'x'\r\n"), {}, 1, Kept, "lacks the language 'German'"},
      {Texts("K_Q", "  A:\r\n   German = 'x'\r\n  B:\r\n   English = 'b'\r\n"),
       {"--allow-loss"},
       0,
       Kept + "K_Q_B K_Q English b;",
       "1 will be read as others"},
      {Texts("K_Q", "  A:\r\n   English = 'x'\r\n  a:\r\n   English = 'y'\r\n"), {}, 1, Kept, "second text"},
      {Section("A", {"ID"}, {"1"}), {}, 1, Kept, "localized resource"},
  };
  for (const auto& [File, Options, ExitCode, Expected, Says] : Cases) {
    Run({"delete", "resources", "-d", Database.Url, "--section-ids", "K_A,K_A_B,K_Z,K_Q", "--missing", "skip", "-y"});
    Run({"languages", "remove", "-d", Database.Url, "French", "-y"});
    Load();
    Write("f", File);
    const TOutcome Outcome = Import("f", Options);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << File << Joined(Options) << Outcome.Errors;
    EXPECT_EQ(State(), Expected) << File << Joined(Options) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << File << Joined(Options) << Outcome.Errors;
  }
}

TEST_P(TResourcesTest, FolderGetsAFileForEachSection) {
  Load();
  Shell("mkdir d");
  EXPECT_EQ(Run({"export", "resources", "-d", Database.Url, "--all", "--folder", "d"}).ExitCode, 0);
  EXPECT_EQ(Read("d/K_A.eif"), "\xEF\xBB\xBF\r\n" + KA);
  EXPECT_EQ(Read("d/K_A_B.eif"), "\xEF\xBB\xBF\r\n" + KAB);
  EXPECT_EQ(Run({"export", "languages", "-d", Database.Url, "--folder", "d/"}).ExitCode, 0);
  EXPECT_EQ(Names("d/Languages.eif"), "English Russian");
  Write("d/K_A.eif", "\xEF\xBB\xBF\r\n");
  const TArguments Again = {"export", "resources", "-d", Database.Url, "--all", "--folder", "d"};
  TOutcome Outcome = Run(Again);
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_NE(Outcome.Errors.find("--overwrite yes to replace it"), std::string::npos) << Outcome.Errors;
  Outcome = Run({"export", "resources", "-d", Database.Url, "--all", "--folder", "d", "--overwrite", "no"});
  EXPECT_EQ(Outcome.ExitCode, 0);
  EXPECT_NE(Outcome.Errors.find("the file is already there"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Read("d/K_A.eif"), "\xEF\xBB\xBF\r\n");
  EXPECT_EQ(Run({"export", "resources", "-d", Database.Url, "--all", "--folder", "d", "--overwrite", "yes"}).ExitCode,
            0);
  EXPECT_EQ(Read("d/K_A.eif"), "\xEF\xBB\xBF\r\n" + KA);
  Run({"resources", "set", "-d", Database.Url, "../x_A", "English", "t"});
  Outcome = Run({"export", "resources", "-d", Database.Url, "--all", "--folder", "d", "--overwrite", "yes"});
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_NE(Outcome.Errors.find("'../x' cannot be the name of a file"), std::string::npos) << Outcome.Errors;
}

TEST_P(TResourcesTest, SingleStringsAndLanguages) {
  Load();
  const struct {
    std::string Line;
    int ExitCode;
    std::string Output, Says;
  } Lines[] = {
      {"resources get k_a_a English", 0, "one #\n", ""},
      {"resources get K_A_B_X Russian", 0, "\n", ""},
      {"resources get K_A_B_X English", 1, "", "'K_A_B_X' has no text in English"},
      {"resources get K_A_B_X", 0, "Russian\n", ""},
      {"resources get NONE", 1, "", "no string 'NONE'"},
      {"resources set K_A_B_X English 'two words'", 0, "", "added K_A_B_X of the resource K_A, in English"},
      {"resources set K_A_B_Z English z", 0, "", "added K_A_B_Z of the resource K_A_B"},
      {"resources set NEW_SECTION_Name English n", 0, "", "of the resource NEW_SECTION"},
      {"resources set K_A_A English ''", 0, "", "changed K_A_A of the resource K_A, in English: it was 'one #'"},
      {"resources set K_A_A French x", 1, "", "no language 'French'"},
      {"resources set 'K_A_ x' English x", 1, "", "has a blank at its end or beginning"},
      {"resources set K_A_Q English", 2, "", "say one text"},
      {"resources set Q_R English x --section-id K_A", 2, "", "does not begin with that of the section"},
      {"resources list --section-id K_A", 0,
       "STRING   LANGUAGE  TEXT\nK_A_A    English\nK_A_A    Russian   один\nK_A_B_X  English   two words\n"
       "K_A_B_X  Russian\n",
       ""},
      {"resources list", 0,
       "RESOURCE     STRINGS  TEXTS\nK_A                2      4\nK_A_B              2      2\n"
       "NEW_SECTION        1      1\n",
       ""},
      {"delete string K_A_B_X NONE -y", 1, "", "no string 'NONE'"},
      {"delete string K_A_B_X", 1, "", "To be deleted: the string 'K_A_B_X'. Give --yes"},
      {"delete string K_A_B_X -y", 0, "", "deleted string K_A_B_X"},
      {"delete sections --section-id NEW_SECTION --dry-run", 0, "", "nothing was changed"},
      {"delete sections --section-id NEW_SECTION -y", 0, "", "deleted resource NEW_SECTION: 1 string, 1 text"},
      {"languages add 'en us'", 1, "", "has a blank, an equals sign"},
      {"languages add German --native Deutsch", 0, "", "added the language 'German'"},
      {"languages add German --native Deutsh", 1, "", "--overwrite yes"},
      {"languages remove Russian", 1, "", "1 text would go with the language 'Russian'. Give --yes"},
      {"languages remove Russian -y", 0, "", "removed the language 'Russian' with 1 text"},
      {"languages list", 0,
       "LANGUAGE  RUSSIAN  ENGLISH  NATIVE   TEXTS\nEnglish   English  English  English      3\n"
       "German    German   German   Deutsch      0\n",
       ""},
  };
  for (const auto& [Line, ExitCode, Output, Says] : Lines) {
    const TOutcome Outcome = Shell("$V " + Line + " -d '" + Database.Url + "'");
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Line << Outcome.Errors;
    if (ExitCode != 0 || !Output.empty()) {
      EXPECT_EQ(Outcome.Output, Output) << Line << Outcome.Errors;
    }
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Line << Outcome.Errors;
  }
  EXPECT_EQ(State(), "K_A_A K_A English ;K_A_B_Y K_A_B English why;K_A_B_Z K_A_B English z;");
}

TEST_P(TResourcesTest, CopiesGoToAnotherDatabaseOrSection) {
  Load();
  const TArguments Copy = {"copy", "resources", "--from", Database.Url, "--to", "sqlite:to.db", "--all"};
  Query("to.db", "CREATE TABLE t (i)");
  TOutcome Outcome = Run(Copy);
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_NE(Outcome.Errors.find("has texts in languages that the database"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Run({"copy", "languages", "--from", Database.Url, "--to", "sqlite:to.db"}).ExitCode, 0);
  Outcome = Run(Copy);
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("copied resource K_A: 2 strings, 3 texts"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Run({"export", "resources", "-d", "sqlite:to.db", "--all", "-o", "out"}).ExitCode, 0);
  EXPECT_EQ(Read("out"), "\xEF\xBB\xBF\r\n" + KA + KAB);
  Outcome = Run(Copy);
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_NE(Outcome.Errors.find("--overwrite"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Run({"copy", "resources", "--from", Database.Url, "--to", Database.Url, "--all"}).ExitCode, 2);
  Outcome = Run({"copy", "resource", "-d", Database.Url, "--section-id", "K_A", "--to-section-id", "K_C"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(State(), std::string(Loaded) + "K_C_A K_C English one #;K_C_A K_C Russian один;K_C_B_X K_C Russian ;");
  EXPECT_EQ(Run({"copy", "resource", "-d", Database.Url, "--section-id", "K_A", "--to-section-id", "k_a_"}).ExitCode,
            2);
}

TEST_P(TResourcesTest, XmlIsWrittenAsAWhole) {
  Load();
  const TArguments Line = {"export", "xml", "-d", Database.Url, "--section-ids", "K_A_B", "-o", "x.xml"};
  EXPECT_EQ(Run(Line).ExitCode, 0);
  EXPECT_EQ(Shell("iconv -f UTF-16LE -t UTF-8 x.xml").Output,
            "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n<LRES Version=\"1\">\r\n\t<LANGUAGES>\r\n"
            "\t\t<LANGUAGE VALUE=\"English\" ALIAS=\"E\"/>\r\n\t\t<LANGUAGE VALUE=\"Russian\" ALIAS=\"R\"/>\r\n"
            "\t</LANGUAGES>\r\n<SECTION SectionID=\"K_A_B\">\r\n\t<DATA>\r\n\t\t<ITEM ID=\"Y\">\r\n"
            "\t\t\t<E>why</E>\r\n\t\t</ITEM>\r\n\t</DATA>\r\n</SECTION>\r\n</LRES>\r\n");
  Write("x.xml", "mine");
  EXPECT_EQ(Run(Line).ExitCode, 1);
  EXPECT_EQ(Read("x.xml"), "mine");
  EXPECT_EQ(Run({"export", "xml", "-d", Database.Url, "--all", "-o", "x.xml", "--overwrite", "yes"}).ExitCode, 0);
  EXPECT_NE(Read("x.xml"), "mine");
  const std::string Whole = Read("x.xml");
  EXPECT_EQ(Run({"export", "xml", "-d", Database.Url, "--all", "-o", "-"}).Output, Whole);
  Run({"resources", "set", "-d", Database.Url, "K_A_A", "English", "\x01"});
  const TOutcome Lost = Run({"export", "xml", "-d", Database.Url, "--all", "-o", "x.xml", "--overwrite", "yes"});
  EXPECT_EQ(Lost.ExitCode, 1) << Lost.Errors;
  EXPECT_EQ(Read("x.xml"), Whole);
}

// IDs of which one is the beginning of another, and names that are no names.
TEST_P(TResourcesTest, NoStringIsMovedOrLostOnTheWay) {
  const auto Set = [&](const std::string& Line) { return Shell("$V resources set -d '" + Database.Url + "' " + Line); };
  Set("K_A_x English a");
  Set("K_A_B_x English b --section-id K_A");
  const TOutcome Moves = Run({"copy", "resource", "-d", Database.Url, "--section-id", "K_A", "--to-section-id", "K_A_B",
                              "--overwrite", "yes"});
  EXPECT_EQ(Moves.ExitCode, 1) << Moves.Errors;
  EXPECT_NE(Moves.Errors.find("which is a string of section 'K_A' itself"), std::string::npos) << Moves.Errors;
  EXPECT_EQ(State(), "K_A_B_x K_A English b;K_A_x K_A English a;");
  EXPECT_EQ(Set("K_A_B_ English c").ExitCode, 0) << "of K_A, with the name B_";
  EXPECT_EQ(Set("Q_ English c").ExitCode, 1);
  EXPECT_EQ(Set("Q_x English c --section-id Q__").ExitCode, 0);
  EXPECT_EQ(State(), "K_A_B_ K_A English c;K_A_B_x K_A English b;K_A_x K_A English a;Q_x Q English c;");
  // What cannot be exported is no affair of a yes to something else.
  Set("K_A_x English \xF0\x9F\x98\x80");
  const TOutcome Lost =
      Run({"export", "resource", "-d", Database.Url, "--section-id", "K_A", "-o", "o", "--release", "rv17", "-y"});
  EXPECT_EQ(Lost.ExitCode, 1) << Lost.Errors;
  EXPECT_FALSE(Exists("o"));
  Write("f", Texts("K", "  A:\r\n   German = 'x'\r\n", "  German\r\n") +
                 "[SECTION]\r\nName = German\r\nType = Language\r\nVersion = 100\r\nLanguageID = German\r\n[DATA]\r\n"
                 "[END]\r\n");
  const TOutcome Empty = Run({"import", "file", "-d", Database.Url, "-i", "f"});
  EXPECT_NE(Empty.Errors.find("--add-languages"), std::string::npos) << Empty.Errors;
  EXPECT_EQ(Run({"import", "file", "-d", Database.Url, "-i", "f", "--add-languages"}).ExitCode, 0);
}

// The section that stands in the way belongs to a person, who answers for each text.
TEST_P(TResourcesTest, PersonsAreAskedAboutTexts) {
  Load();
  Write("f", Texts("K_A", "  A:\r\n   English = 'new'\r\n   Russian = 'новый'\r\n"));
  const TOutcome Outcome = RunOnTerminal({"import", "resource", "-d", Database.Url, "-i", "f"}, "K_A_A", "y\nn\n");
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Output;
  EXPECT_EQ(State().substr(0, State().find("K_A_B_X")), "K_A_A K_A English new;K_A_A K_A Russian один;");
}

}  // namespace
}  // namespace velkrund::tests
