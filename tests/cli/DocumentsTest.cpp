#include <signal.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "tests/cli/ShopTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"
#include "velkrund/platform/ormtools/ErrorInfo.h"

namespace velkrund::tests {
namespace {

using TJson = nlohmann::ordered_json;

TArguments Split(std::string Text, const std::string& Separator) {
  TArguments Result;
  for (std::size_t At; (At = Text.find(Separator)) != std::string::npos; Text.erase(0, At + Separator.size()))
    Result.push_back(Text.substr(0, At));
  Result.push_back(Text);
  return Result;
}

/// docs/json.md, whose tables say all that a program has to know: a heading names what a table is about, rows of four
/// cells are members of an object, rows of two are words.
class TDescription {
 public:
  TDescription() {
    std::ifstream Lines(VELKRUND_SOURCE_DIR "/docs/json.md");
    std::string Heading;
    for (std::string Line; std::getline(Lines, Line);) {
      if (Line.starts_with("### ")) Heading = Line.substr(4);
      if (!Line.starts_with("| `")) continue;
      const TArguments Cells = Split(Line.substr(3, Line.size() - 5), " | ");
      const std::string Word = Cells[0].substr(0, Cells[0].find('`'));
      if (Cells.size() == 2)
        FWords[Heading].insert(Word);
      else
        FMembers[Heading].push_back({Word, Cells.at(1), Cells.at(2) == "always"});
    }
  }

  /// Checks a whole document; says what is wrong with it.
  std::string Faults(const TJson& Document) {
    FFaults.clear();
    CheckDocument(Document);
    return FFaults;
  }
  /// The same of an event.
  std::string FaultsOfEvent(const TJson& Event) {
    FFaults.clear();
    const std::string Kind = Event.value("event", "");
    CheckObject(Event, Kind, FMembers[Kind]);
    return FFaults;
  }
  /// What no document has had so far.
  TArguments Unmet() const {
    TArguments Result;
    for (const auto& [Name, Members] : FMembers)
      for (const TMember& Member : Members)
        if (!FMet.contains(Member.Name + " of " + Name) && Name != "Document")
          Result.push_back(Member.Name + " of " + Name);
    return Result;
  }
  const std::set<std::string>& Words(const std::string& Name) { return FWords[Name]; }

 private:
  struct TMember {
    std::string Name, Type;
    bool IsAlways;
  };

  bool CheckDocument(const TJson& Document) {
    const std::string Schema = Document.value("schema", "");
    std::vector<TMember> Members = FMembers["Document"];
    const bool IsError = Schema == "velkrund/error/1";
    if (!IsError && !FMembers.contains(Schema)) FFaults += "no schema '" + Schema + "'\n";
    if (!IsError) Members.insert(Members.end(), FMembers[Schema].begin(), FMembers[Schema].end());
    CheckObject(Document, IsError ? "Document" : Schema, Members);
    if (Document.contains("error") == (Document.value("exitCode", -1) == 0)) FFaults += "error and exitCode disagree\n";
    return true;
  }
  void CheckObject(const TJson& Value, const std::string& Name, const std::vector<TMember>& Members) {
    std::size_t Reached = 0;  // members stand in the order of the table
    for (const auto& [Key, Content] : Value.items()) {
      const auto Found = std::find_if(Members.begin() + static_cast<std::ptrdiff_t>(Reached), Members.end(),
                                      [&Key = Key](const TMember& Member) { return Member.Name == Key; });
      const std::string Member = Key + " of " + Name;
      if (Found == Members.end()) {
        FFaults += Member + " is not described, or comes too late\n";
        continue;
      }
      Reached = static_cast<std::size_t>(Found - Members.begin()) + 1;
      FMet.insert(Member);
      if (!IsOf(Content, Found->Type)) FFaults += Member + " is no " + Found->Type + ": " + Content.dump() + "\n";
    }
    for (const TMember& Member : Members)
      if (Member.IsAlways && !Value.contains(Member.Name)) FFaults += Member.Name + " of " + Name + " is missing\n";
  }
  bool IsOf(const TJson& Value, std::string Types) {
    if (const std::size_t Or = Types.find(" or "); Or != std::string::npos) Types.replace(Or, 4, ", ");
    const TArguments Each = Split(Types, ", ");
    return std::any_of(Each.begin(), Each.end(), [&](const std::string& Type) { return IsOfOne(Value, Type); });
  }
  bool IsOfOne(const TJson& Value, const std::string& Type) {
    const auto All = [&](const std::string& Element) {
      return std::all_of(Value.begin(), Value.end(), [&](const TJson& One) { return IsOf(One, Element); });
    };
    if (Type.starts_with("list of ")) return Value.is_array() && All(Type.substr(8));
    if (Type.starts_with("map of ")) return Value.is_object() && All(Type.substr(7));
    if (Type == "string") return Value.is_string();
    if (Type == "integer") return Value.is_number_integer();
    if (Type == "number") return Value.is_number();
    if (Type == "boolean") return Value.is_boolean();
    if (Type == "null") return Value.is_null();
    if (Type == "Value") return IsOf(Value, "integer, number, boolean, string, null");
    if (Type == "Report") return CheckDocument(Value);
    if (FWords.contains(Type)) return Value.is_string() && FWords[Type].contains(Value.get<std::string>());
    if (!FMembers.contains(Type) || !Value.is_object()) return false;
    CheckObject(Value, Type, FMembers[Type]);
    return true;
  }

  std::map<std::string, std::vector<TMember>> FMembers;
  std::map<std::string, std::set<std::string>> FWords;
  std::set<std::string> FMet;
  std::string FFaults;
};

class TDocumentsTest : public TShopTest {
 protected:
  TDocumentsTest() {
    Query("shop.db", "CREATE TABLE C (T TEXT); INSERT INTO C VALUES ('日')");
    Query("tied.db",
          "CREATE TABLE O (I INTEGER PRIMARY KEY); CREATE TABLE L (I INTEGER, P INTEGER REFERENCES O);"
          "INSERT INTO O VALUES (7); INSERT INTO L VALUES (8, 7); CREATE VIEW V AS SELECT 1");
    Query("broken.db", "CREATE TABLE T (I INTEGER); CREATE VIEW W AS SELECT * FROM T; DROP TABLE T");
    Query(
        "slow.db",
        "CREATE TABLE A (I INTEGER); CREATE TABLE BIG AS WITH RECURSIVE R(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM "
        "R WHERE N < 50000) SELECT N FROM R; CREATE VIEW S AS SELECT N, hex(zeroblob(500)) AS X, "
        "(SELECT sum(T.N) FROM BIG T WHERE T.N < 2000 AND T.N <> BIG.N) AS Y FROM BIG");
    const std::string Structure =
        "[SECTION]\r\nEncoding = UTF8\r\nName = S\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = 12\r\n"
        "ObjectName = S\r\nTableName =\r\nParentObject =\r\nRootNode =\r\n[DATA]\r\n [REMARKS]\r\n  \r\n [TREE]\r\n";
    Write("S", Structure +
                   "  a:integer = 1\r\n    b:double = 0.5\r\n    c:boolean = TRUE\r\n    d:DELETED\r\n    "
                   "e:variant = NULL\r\n    f:variant = STRING(x)\r\n    g\r\n[END]\r\n");
    const std::string Ids = Section("O", {"I"}, {"1"});
    Write("O", Ids);
    Write("L", Section("L", {"I", "P"}, {"1|1"}));
    Write("X", Section("B", {"ID", "X"}, {"1|x"}));
    Write("M", Section("B", {"ID", "MORE"}, {"1|1"}));
    Write("U", Section("B", {"ID"}, {"1"}) + "[SECTION]\r\nName = U\r\n");
    Write("HALF", Ids + "[SECT");
    Write("LEFT", Ids + ";SECTION]\r\nName = T\r\n");
    Write("BAD", Ids + Section("T", {"I"}, {"1"}).substr(0, 40));
    Write("HIDDEN", Section("B", {"ID"}, {"1", "'\xC6'"}) + Ids + Ids + " " + Ids);
    Write("NAMES", std::string(Structure)
                           .replace(Structure.find("= S"), 3, "= N")
                           .replace(Structure.find("ObjectName = S"), 14, "ObjectName = N") +
                       "  a#0023\r\n[END]\r\n");
    Write("PO", "msgctxt \"K_A\"\nmsgid \"a\"\nmsgstr \"b\"\n");
    Write("LF", "[SECTION]\n" + Ids.substr(std::string("[SECTION]\r\n").size()));
    Write("broken.toml", "[database.x]\nurl = 5\n");
  }

  /// The document that a line of the command prints; a fault where it is not as described.
  void Check(const std::string& Line, int ExitCode, const std::string& Schema, const TOutcome& Outcome) {
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Line << "\n" << Outcome.Errors;
    const TJson Document = TJson::parse(Outcome.Output, nullptr, false);
    ASSERT_TRUE(Document.is_object()) << Line << "\n" << Outcome.Output;
    EXPECT_EQ(Document.value("schema", ""), "velkrund/" + Schema + "/1") << Line;
    EXPECT_EQ(Document.value("exitCode", -1), ExitCode) << Line;
    EXPECT_EQ(Description.Faults(Document), "") << Line << "\n" << Outcome.Output;
  }
  /// Runs a line of the shell whose standard error carries events and nothing else; their kinds in order, each once in
  /// a row.
  std::string Events(const std::string& Line) {
    std::string Kinds, Last;
    for (const std::string& Event : Split(Shell(Line).Errors, "\n")) {
      if (Event.empty()) continue;
      const TJson Told = TJson::parse(Event, nullptr, false);
      EXPECT_TRUE(Told.is_object()) << Line << "\n" << Event;
      if (!Told.is_object()) continue;
      EXPECT_EQ(Description.FaultsOfEvent(Told), "") << Line << "\n" << Event;
      const auto Kind = Told.value("event", "");
      if (Kind != Last) Kinds += (Kinds.empty() ? "" : " ") + Kind;
      Last = Kind;
    }
    return Kinds;
  }
  struct TCase {
    std::string Line;
    int ExitCode;
    std::string Schema;
  };
  void Check(const std::vector<TCase>& Cases) {
    for (const auto& [Line, ExitCode, Schema] : Cases)
      Check(Line, ExitCode, Schema, Shell("exec $V " + Line + " --json"));
  }

  TDescription Description;
};

TEST_F(TDocumentsTest, DescribedAreExactlyTheCodesThatThereAre) {
  std::set<std::string> Codes = {"other"};
  for (int Code = 1; ErrorCodeText(static_cast<TErrorCode>(Code)) != "other"; ++Code)
    Codes.emplace(ErrorCodeText(static_cast<TErrorCode>(Code)));
  EXPECT_EQ(Description.Words("ErrorCode"), Codes);
}

TEST_F(TDocumentsTest, EveryDocumentIsAsDescribedWithPostgreSQLToo) {
  const std::string Shop = " -d sqlite:shop.db ", Empty = " -d sqlite:empty.db ", Tied = " -d sqlite:tied.db ";
  Check({
      {"export table" + Shop + "-t A -t B -o F", 0, "transfer"},
      {"export table" + Shop + "-t A -o F --overwrite no", 0, "transfer"},
      {"export table" + Shop + "-t A -o F", 1, "error"},
      {"export table" + Shop + "-t C -t A -o G --encoding ansi --on-error continue", 1, "transfer"},
      {"export table" + Shop + "-t NONE -o G", 1, "error"},
      {"export table -d shop.db -t A -o G", 2, "error"},
      {"exprot", 2, "error"},
      {"export table --tabel A", 2, "error"},
      {"export table -d none -t A -o G", 1, "error"},
      {"export table -d sqlite:none.db -t A -o G", 1, "error"},
      {"export table --config broken.toml -d x -t A -o G", 1, "error"},
      {"export table -d sqlite:broken.db -t W -o G", 1, "error"},
      {"import table" + Empty + "-i F", 0, "transfer"},
      {"import table" + Empty + "-i F", 1, "error"},
      {"import table" + Empty + "-i F --append", 1, "transfer"},
      {"import table" + Empty + "-i F --append --on-error continue", 1, "transfer"},
      {"import table" + Empty + "-i X --replace", 1, "transfer"},
      {"import table" + Empty + "-i X --replace --lenient", 0, "transfer"},
      {"import table" + Empty + "-i M --replace", 1, "error"},
      {"import table" + Empty + "-i M --replace --missing-fields skip", 0, "transfer"},
      {"import table" + Tied + "-i O --replace", 1, "transfer"},
      {"import file" + Tied + "-i O -i L -i HALF -i none --replace --repeated-tables join --on-error continue", 1,
       "transfer"},
      {"import file" + Empty + "-i S -i F --replace", 0, "transfer"},
      {"import structure" + Empty + "-i S --overwrite no", 0, "transfer"},
      {"import structure" + Empty + "-i S", 1, "error"},
      {"export structure" + Empty + "--all -o T", 0, "transfer"},
      {"import structure" + Empty + "-i NAMES", 0, "transfer"},
      {"export structure" + Empty + "--name N -o G", 1, "transfer"},
      {"dictionary list" + Empty, 0, "structures"},
      {"dictionary show" + Empty + "--name S", 0, "structure"},
      {"dictionary show" + Empty + "--name NONE", 1, "error"},
      {"dictionary drop" + Empty + "--name S --dry-run", 0, "drop"},
      {"dictionary drop" + Empty + "--name S", 1, "error"},
      {"dictionary drop" + Empty + "--name S --yes", 0, "drop"},
      {"file list F", 0, "sections"},
      {"file list BAD", 1, "sections"},
      {"file list LEFT", 0, "sections"},
      {"file check LEFT", 1, "check"},
      {"file list none", 1, "error"},
      {"file check F S", 0, "check"},
      {"file check BAD HIDDEN none X", 1, "check"},
      {"file check HIDDEN --allow-loss", 1, "check"},
      {"file remove F 0 --dry-run", 0, "removal"},
      {"file remove F 0", 0, "removal"},
      {"file remove F 9", 1, "error"},
      {"file remove F x", 2, "error"},
      {"file repair F", 0, "repair"},
      {"file repair U", 0, "repair"},
      {"file repair HALF", 0, "repair"},
      {"file repair LF", 0, "repair"},
      {"dictionary adopt" + Tied + "--all --dry-run", 0, "adoption"},
      {"dictionary adopt" + Tied + "--all", 0, "adoption"},
      {"dictionary adopt" + Tied + "--all", 0, "adoption"},
      {"export table" + Tied + "--all --structures -o DESCRIBED", 0, "transfer"},
      {"import file -d sqlite:made.db --create -i DESCRIBED --create-tables yes --dry-run", 0, "transfer"},
      {"import file" + Tied + "-i DESCRIBED --replace --overwrite yes --dry-run", 0, "transfer"},
      {"resources import-po" + Empty + "-i PO --language B --source-language A --add-languages", 0, "catalogue-import"},
      {"resources import-po" + Empty + "-i PO --language A --dry-run --overwrite yes", 0, "catalogue-import"},
      {"resources import-po" + Empty + "-i PO --language C", 1, "error"},
      {"resources export-po" + Empty + "--all --source-language A --language B -o PO2", 0, "catalogue-export"},
      {"resources export-po" + Empty + "--all --source-language A --language B -o PO2", 1, "error"},
      {"resources export-po" + Empty + "--all --source-language A --language B -o PO2 --dry-run", 0,
       "catalogue-export"},
      {"database info" + Tied, 0, "database"},
      {"database info" + Empty, 0, "database"},
  });

  Write("N", "; empty\r\n");
  const pid_t Process = Start({"export", "table", "-d", "sqlite:slow.db", "-t", "S", "-t", "A", "-o", "N", "--json"});
  ASSERT_TRUE(WaitUntil([&] { return Read("N").size() > 9; }));
  kill(Process, SIGINT);
  Check("a cancelled export", 3, "transfer", Finish(Process));

  // Events: a run, one with a question that is answered at the second attempt, one that nobody answers, wrong lines.
  const std::string With = " --progress json ";
  EXPECT_EQ(Events("$V import table -i X -i F --replace" + With + Empty), "end");
  EXPECT_EQ(Events("$V import file -i F --replace" + With + Empty), "begin message item end");
  EXPECT_EQ(Events("$V export table --help" + With), "end");
  EXPECT_EQ(Events("(echo what; printf append) | $V import file -i O" + With + Tied), "question begin item end");
  EXPECT_EQ(Events("$V import file -i O </dev/null" + With + Tied), "end");
  EXPECT_EQ(Events("(echo yes) | $V import structure -i S" + With + Empty), "begin item end");
  EXPECT_EQ(Events("(echo skip) | $V import structure -i S" + With + Empty), "begin question item end");
  EXPECT_EQ(Events("$V file check F X -v" + With), "begin item begin item end");
  EXPECT_EQ(Events("$V file list F" + With), "end");
  EXPECT_EQ(Events("timeout --foreground -s INT 3 $V export table -o - -t S -d sqlite:slow.db" + With),
            "begin progress item end");

  TPostgreSQLDatabase Database;
  Database.Run(
      "CREATE FOREIGN DATA WRAPPER w; CREATE SERVER s FOREIGN DATA WRAPPER w; CREATE TABLE p (i int) PARTITION BY LIST "
      "(i);"
      "CREATE FOREIGN TABLE f PARTITION OF p DEFAULT SERVER s; CREATE TABLE t (i int CHECK (i <> 1));"
      "CREATE SCHEMA own; CREATE TABLE own.t ()");
  Write("t", Section("t", {"i"}, {"1"}));
  Check({
      {"database info -d " + Database.Url(), 0, "database"},
      {"import table -i t -d " + Database.Url(), 1, "transfer"},
      {"export table -t f -o G -d " + Database.Url(), 1, "transfer"},
      {"database info -d postgresql://postgres@127.0.0.1:1/none", 1, "error"},
  });
  // An object that PostgreSQL alone has words for, as it is and changed in another engine.
  Database.Run(
      "CREATE TYPE mood AS ENUM ('x'); CREATE TABLE c (m mood, k int CHECK (k % 2 = 0));"
      "CREATE FUNCTION two() RETURNS SETOF text LANGUAGE sql AS $$SELECT NULL::text UNION ALL SELECT 'x'$$; ALTER "
      "TABLE c OWNER TO "
      "pg_database_owner");
  Check({
      {"database run-procedure two --dry-run -d " + Database.Url(), 0, "procedure"},
      {"database run-procedure two --param x=1 -d " + Database.Url(), 1, "error"},
      {"dictionary adopt -t c -d " + Database.Url(), 0, "adoption"},
      {"dictionary script --name c -d " + Database.Url(), 0, "script"},
      {"dictionary script --name c --engine sqlite -d " + Database.Url(), 0, "script"},
      {"export structure --name c -o C -d " + Database.Url(), 0, "transfer"},
      {"import file -d sqlite:c.db --create -i C --create-tables yes", 1, "error"},
      {"import file -d sqlite:c.db --create -i C --create-tables yes --allow-missing checks", 0, "transfer"},
  });
  Query("c.db", "ALTER TABLE c RENAME k TO j");
  Check({
      {"dictionary adopt -t c -d sqlite:c.db --overwrite no", 0, "adoption"},
      {"dictionary adopt -t c -d sqlite:c.db --overwrite yes", 0, "adoption"},
  });
  // Where a generator stands, and rows without a file.
  Database.Run("CREATE SEQUENCE g; SELECT setval('g', 5)");
  Query("copy.db", "CREATE TABLE t (a INTEGER); CREATE TABLE u (a INTEGER); INSERT INTO u VALUES (1)");
  Check({
      {"export generator --all -o Q -d " + Database.Url(), 0, "transfer"},
      {"import generator -i Q -d sqlite:copy.db", 0, "transfer"},
      {"copy table --from sqlite:copy.db --to sqlite:copy.db -t u --to-table t", 0, "transfer"},
      {"copy table --from sqlite:copy.db --to sqlite:copy.db -t u", 1, "error"},
  });
  // Localized strings and languages.
  Query("texts.db", "CREATE TABLE t (i)");
  Query("others.db", "CREATE TABLE t (i)");
  const std::string Texts = " -d sqlite:texts.db";
  Check({
      {"languages add A --native a" + Texts, 0, "language"},
      {"languages add B --dry-run" + Texts, 0, "language"},
      {"languages list" + Texts, 0, "languages"},
      {"resources set K_X A x" + Texts, 0, "string"},
      {"resources set K_X A y --dry-run" + Texts, 0, "string"},
      {"resources get K_X" + Texts, 0, "string"},
      {"resources list" + Texts, 0, "resources"},
      {"resources list --section-id K" + Texts, 0, "resources"},
      {"export resource --section-id K -o L" + Texts, 0, "transfer"},
      {"export single-resources --section-id K --section-ids K --language A -o L1" + Texts, 0, "transfer"},
      {"export language -o L" + Texts, 0, "transfer"},
      {"export xml --all -o L.xml" + Texts, 0, "xml"},
      {"export xml --all -o L.xml --overwrite no" + Texts, 0, "xml"},
      {"export xml --all -o L.xml --dry-run" + Texts, 0, "xml"},
      {"import resource -i L --overwrite no" + Texts, 0, "transfer"},
      {"import resource -i L -d sqlite:others.db", 1, "error"},
      {"copy language --from sqlite:texts.db --to sqlite:others.db", 0, "transfer"},
      {"copy resource --from sqlite:texts.db --to sqlite:others.db --all", 0, "transfer"},
      {"delete string K_X -y" + Texts, 0, "transfer"},
      {"delete resource --section-id K -y -d sqlite:others.db", 0, "transfer"},
      {"languages remove A -y" + Texts, 0, "language"},
  });
  // Objects that are made anew.
  Query("anew.db", "CREATE TABLE t (a INTEGER); INSERT INTO t VALUES (1); CREATE VIEW v AS SELECT a FROM t");
  Check({
      {"dictionary adopt --all -d sqlite:anew.db", 0, "adoption"},
      {"recreate table t --overwrite yes --dry-run -d sqlite:anew.db", 0, "recreation"},
      {"recreate table t --overwrite no -d sqlite:anew.db", 0, "recreation"},
      {"recreate table t --overwrite yes -d sqlite:anew.db", 0, "recreation"},
      {"recreate table t --overwrite yes --drop-data -d sqlite:anew.db", 0, "recreation"},
      {"recreate table none -d sqlite:anew.db", 1, "error"},
      {"recreate view v --overwrite yes -d sqlite:anew.db", 0, "recreation"},
  });
  Query("anew.db", "DROP VIEW v; DROP TABLE t");
  Check({{"recreate view v -d sqlite:anew.db", 1, "recreation"}});
  EXPECT_EQ(Description.Unmet(), TArguments());
}

}  // namespace
}  // namespace velkrund::tests
