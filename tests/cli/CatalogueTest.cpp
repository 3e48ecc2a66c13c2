#include "tests/cli/CommandTest.h"
#include "tests/roundtrip/TestDatabase.h"

namespace velkrund::tests {
namespace {

/// gettext catalogues into a database and out of it.
class TCatalogueTest : public TCommandTest, public testing::WithParamInterface<const char*> {
 protected:
  static std::string Header(const std::string& Language = "Russian") {
    return "msgid \"\"\nmsgstr \"\"\n\"MIME-Version: 1.0\\n\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
           "\"Content-Transfer-Encoding: 8bit\\n\"\n\"Language: " +
           Language + "\\n\"\n\"X-Source-Language: English\\n\"\n";
  }
  /// Strings as they stand in a file.
  static std::string Entry(const std::string& ID, const std::string& Source, const std::string& Target,
                           const std::string& Before = {}) {
    return "\n" + Before + "msgctxt \"" + ID + "\"\nmsgid \"" + Source + "\"\nmsgstr \"" + Target + "\"\n";
  }
  static std::string In(const std::string& Section) { return "#. velkrund-section: " + Section + "\n"; }

  TTestDatabase NewDatabase(const std::string& Name) {
    if (GetParam() == std::string("postgresql")) return PostgreSQLDatabase();
    return SQLiteDatabase(Path(Name));
  }
  TOutcome Import(const std::string& Catalogue, TArguments Options = {}) {
    Write("f.po", Catalogue);
    Options.insert(Options.begin(), {"resources", "import-po", "-d", Database.Url, "-i", "f.po"});
    return Run(Options);
  }
  TOutcome Export(const std::string& Url, const std::string& File, TArguments Options = {"--all"}) {
    Options.insert(Options.begin(), {"resources", "export-po", "-d", Url, "--source-language", "English", "--language",
                                     "russian", "-o", File});
    return Run(Options);
  }
  /// Every text: SECTION/NAME L=TEXT; L is the first letter of the language.
  static std::string Texts(const TTestDatabase& Of) {
    return Of.Text(
        "SELECT s.section_id || '/' || s.name || ' ' || substr(l.name, 1, 1) || '=' || t.text FROM velkrund_texts t "
        "JOIN velkrund_strings s ON s.number = t.string_number JOIN velkrund_languages l ON l.number = "
        "t.language_number ORDER BY s.number, l.number");
  }
  /// A database with the string K_A_Open.
  void Start() {
    const TOutcome Outcome = Import(Header() + Entry("K_A_Open", "Open", "Открыть", In("K_A")),
                                    {"--source-language", "English", "--add-languages", "--overwrite", "yes"});
    EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  }

  TTestDatabase Database = NewDatabase("c.db");
};

INSTANTIATE_TEST_SUITE_P(Engines, TCatalogueTest, testing::Values("sqlite", "postgresql"),
                         [](const auto& Info) { return Info.param; });

constexpr const char* Started = "K_A/Open E=Open\nK_A/Open R=Открыть\n";

TEST_P(TCatalogueTest, ComeBackAsTheyWere) {
  // As a catalogue is written; the string B_C is in K_A, though there is a section K_A_B.
  const std::string Whole = Header() + Entry("K_A_Open", "", "", In("K_A")) +
                            Entry("K_A_B_C", "\\t\\\"%s\\\" #1\\\\ \\001", "日本 \xF0\x9F\x98\x80 שלום", In("K_A")) +
                            Entry("K_A_Lines", "\"\n\"a\\n\"\n\"b\\r\\n", "\"\n\"\\n\"\n\"я", In("K_A")) +
                            Entry("K_A_B_X", " a ", " я ", In("K_A_B")) + Entry("K_A_B", "self", "сам", In("K_A_B"));
  TOutcome Outcome = Import(Whole, {"--source-language", "English", "--add-languages", "--json"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  const auto Document = nlohmann::json::parse(Outcome.Output, nullptr, false);
  EXPECT_EQ(Document["resources"], nlohmann::json({"K_A", "K_A_B"}));
  EXPECT_EQ(Document["untranslated"], 1);
  EXPECT_EQ(Document["texts"][1]["added"], 4);
  EXPECT_EQ(Export(Database.Url, "out.po").ExitCode, 0);
  EXPECT_EQ(Read("out.po"), Whole);
  EXPECT_EQ(Import(Whole, {"--source-language", "English"}).ExitCode, 0) << "the same texts are no others";

  const TTestDatabase Other = NewDatabase("other.db");
  Outcome = Shell("$V resources export-po -d '" + Database.Url +
                  "' --all --source-language English --language Russian -o - | $V resources import-po -d '" +
                  Other.Url + "' -i - --source-language English --add-languages && $V resources export-po -d '" +
                  Other.Url + "' --section-ids K_a_,K_A_B --source-language English --language Russian -o again.po");
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_EQ(Read("again.po"), Whole);
  EXPECT_EQ(Texts(Other), Texts(Database));
}

TEST_P(TCatalogueTest, TextsComeInAsOptionsSay) {
  Start();
  const std::string Other = Header() + Entry("K_A_New", "New", "Новый") + Entry("k_a_open", "Open", "Откройте");
  const std::string Added = std::string(Started) + "K_A/New R=Новый\n";
  const std::string Plural = "\nmsgctxt \"K_P\"\nmsgid \"a\"\nmsgid_plural \"b\"\nmsgstr[0] \"c\"\n";
  const struct {
    std::string Catalogue;
    TArguments Options;
    int ExitCode;
    std::string Texts, Says;
  } Cases[] = {
      {Other, {}, 1, Started, "k_a_open (Russian). Give --overwrite yes"},
      {Other, {"--overwrite", "no"}, 0, Added, "new 1, replaced 0, the same 0, left as they are 1"},
      {Other, {"--overwrite", "yes"}, 0, "K_A/Open E=Open\nK_A/Open R=Откройте\nK_A/New R=Новый\n", "replaced 1"},
      {Other, {"--overwrite", "yes", "--dry-run"}, 0, Started, "nothing was changed"},
      {Header("English") + Entry("K_A_Open", "x", "Open"), {}, 0, Started, "the same 1"},
      {Header("ru") + Entry("K_A_Open", "x", "y"), {}, 1, Started, "no language 'ru' in the database"},
      {Entry("K_A_Open", "x", "y"), {}, 2, Started, "--language is missing, and the catalogue 'f.po' does not name"},
      {Header() + Entry("K_A_Open", "Open", ""), {}, 0, Started, "without a translation: 1"},
      {Header() + Entry("K_A_New", "New", "Новый", "#, fuzzy\n"),
       {},
       1,
       Started,
       "f.po:10: the entry of the string 'K_A_New' is fuzzy; --fuzzy skip"},
      {Header() + Entry("K_A_New", "New", "Новый", "#, fuzzy\n"), {"--fuzzy", "skip"}, 0, Started, "passed over: 1"},
      {Header() + Entry("K_A_New", "New", "Новый", "#, fuzzy\n"), {"--fuzzy", "take"}, 0, Added, "taken: 1"},
      {Header() + Plural + Entry("K_A_New", "New", "Новый"), {}, 1, Started, "plural forms, which the store cannot"},
      {Header() + Plural + Entry("K_A_New", "New", "Новый"), {"--allow-loss"}, 0, Added, "left out: 1"},
      {Header() + "\nmsgid \"New\"\nmsgstr \"x\"\n",
       {},
       1,
       Started,
       "f.po:9: the entry 'New' has no msgctxt, which would be the ID of its string; --section-id ID makes IDs"},
      {Header() + Entry("K_A_New", "", "a") + Entry("K_a_nEw", "", "b"),
       {},
       1,
       Started,
       "f.po:13: the string 'K_a_nEw' is in the catalogue already, in line 9"},
      {Header() + Entry("K_A_New ", "", "a"), {}, 1, Started, "f.po:9: The string 'K_A_New ' has a blank"},
      {Header() + Entry("K_A_New", "", "a") + Entry("K_A_Newer", "", "\\0"), {}, 1, Started, "f.po:13: "},
      {Header() + Entry("K_A_New", "", "a") + "msgid \"x\n", {}, 1, Started, "f.po:12: "},
      // A string that is there stays where it is; a new one goes where its ID leads.
      {Header() + Entry("K_A_Open", "", "Открыть", In("K")) + Entry("K_A_X_Y", "", "1") + Entry("Q_R_S", "", "2") +
           Entry("Z", "", "3"),
       {},
       0,
       std::string(Started) + "K_A/X_Y R=1\nQ_R/S R=2\nZ/ R=3\n",
       "the same 1"},
  };
  for (const auto& [Catalogue, Options, ExitCode, Expected, Says] : Cases) {
    Database.Run("DELETE FROM velkrund_texts; DELETE FROM velkrund_strings");
    Start();
    const TOutcome Outcome = Import(Catalogue, Options);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Catalogue << Joined(Options) << Outcome.Errors;
    EXPECT_EQ(Texts(Database), Expected) << Catalogue << Joined(Options) << Outcome.Errors;
    EXPECT_NE(Outcome.Errors.find(Says), std::string::npos) << Catalogue << Joined(Options) << Outcome.Errors;
  }
}

// Sections that alternate are brought in as well as those that follow each other.
TEST_P(TCatalogueTest, SectionsMayAlternate) {
  Start();
  std::string Catalogue = Header(), Expected = Started;
  std::string A, B;
  for (int I = 0; I < 9; ++I) {
    const std::string N = std::to_string(I);
    Catalogue += Entry("S_" + N, N, "s" + N, In("S")) + Entry("T_" + N, N, "t" + N, In("T"));
    A += "S/" + N + " E=" + N + "\nS/" + N + " R=s" + N + "\n";
    B += "T/" + N + " E=" + N + "\nT/" + N + " R=t" + N + "\n";
  }
  EXPECT_EQ(Import(Catalogue, {"--source-language", "English"}).ExitCode, 0);
  EXPECT_EQ(Texts(Database), Expected + A + B);
}

TEST_P(TCatalogueTest, OfOtherProgramsGetIDs) {
  Start();
  const std::string Russian = "msgid \"Open\"\nmsgstr \"Открыть\"\nmsgid \"Close\"\nmsgstr \"Закрыть\"\n";
  const std::string German = "msgid \"Close\"\nmsgstr \"Schließen\"\n\n#~ msgid \"Old\"\n#~ msgstr \"Alt\"\n";
  const TArguments Make = {"--section-id", "P", "--source-language", "English", "--add-languages", "--language"};
  const auto With = [&](const std::string& Language) {
    TArguments Result = Make;
    Result.push_back(Language);
    return Result;
  };
  EXPECT_EQ(Import(Russian, With("Russian")).ExitCode, 0);
  const TOutcome Outcome = Import(German, With("German"));
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("obsolete, and passed over: 1"), std::string::npos) << Outcome.Errors;
  // The names are the same in every build.
  EXPECT_EQ(Texts(Database), std::string(Started) +
                                 "P/1F7698C061C208C9 E=Open\nP/1F7698C061C208C9 R=Открыть\n"
                                 "P/5E8250FB85D64C23 E=Close\nP/5E8250FB85D64C23 R=Закрыть\n"
                                 "P/5E8250FB85D64C23 G=Schließen\n");
  const std::string Context = "msgctxt \"menu\"\nmsgid \"Open\"\nmsgstr \"Открыть\"\n";
  EXPECT_EQ(Import(Context, With("Russian")).ExitCode, 1);
  TArguments Allowed = With("Russian");
  Allowed.push_back("--allow-loss");
  EXPECT_EQ(Import(Context, Allowed).ExitCode, 0) << "the same msgid under another ID";
  EXPECT_EQ(Import(Russian, {"--section-id", "P", "--language", "Russian"}).ExitCode, 2);
}

TEST_P(TCatalogueTest, ExportsSayWhatCannotBeSaid) {
  Start();
  EXPECT_EQ(Import(Header("English") + Entry("K_A_None", "", "none")).ExitCode, 0);
  EXPECT_EQ(Import(Header() + Entry("K_B_Only", "", "Только")).ExitCode, 0);
  TOutcome Outcome = Export(Database.Url, "out.po");
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("1 string left out, without a text in English"), std::string::npos) << Outcome.Errors;
  const std::string Written =
      Header() + Entry("K_A_Open", "Open", "Открыть", In("K_A")) + Entry("K_A_None", "none", "", In("K_A"));
  EXPECT_EQ(Read("out.po"), Written);

  EXPECT_EQ(Export(Database.Url, "out.po", {"--section-ids", "K_B"}).ExitCode, 1) << "the file is there";
  EXPECT_EQ(Export(Database.Url, "out.po", {"--section-ids", "K_B", "--overwrite", "no"}).ExitCode, 0);
  EXPECT_EQ(Read("out.po"), Written);
  EXPECT_EQ(Export(Database.Url, "no.po", {"--section-ids", "K_C"}).ExitCode, 1);
  EXPECT_EQ(Export(Database.Url, "no.po", {"--all", "--dry-run"}).ExitCode, 0);
  EXPECT_EQ(Run({"resources", "set", "-d", Database.Url, "K_A_None", "Russian", ""}).ExitCode, 0);
  Outcome = Export(Database.Url, "no.po");
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_NE(Outcome.Errors.find("'K_A_None' in Russian is empty"), std::string::npos) << Outcome.Errors;
  EXPECT_FALSE(Exists("no.po"));
  Outcome = Export(Database.Url, "yes.po", {"--section-ids", "K_C,k_a", "--missing", "skip", "--allow-loss"});
  EXPECT_EQ(Outcome.ExitCode, 0) << Outcome.Errors;
  EXPECT_NE(Outcome.Errors.find("come back as none: 1"), std::string::npos) << Outcome.Errors;
  EXPECT_EQ(Read("yes.po"), Written);
}

}  // namespace
}  // namespace velkrund::tests
