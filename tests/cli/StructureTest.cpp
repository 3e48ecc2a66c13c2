#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/cli/ShopTest.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

/// Structures of d.db, which a test makes by importing.
class TStructureTest : public TShopTest {
 protected:
  /// A section of a structure; lines of the tree without the blanks that all have.
  static std::string Structure(const std::string& Name, int Type, const TArguments& Lines, const std::string& Root = {},
                               const TArguments& Remarks = {""}) {
    std::string Result = "[SECTION]\r\nEncoding = UTF8\r\nName = " + Name + " (" + std::to_string(Type) +
                         ")\r\nType = DSPStructure\r\nVersion = 200\r\nObjectType = " + std::to_string(Type) +
                         "\r\nObjectName = " + Name + "\r\nTableName = T\r\nParentObject = P\r\nRootNode = " + Root +
                         "\r\n[DATA]\r\n [REMARKS]\r\n";
    for (const std::string& Line : Remarks) Result += "  " + Line + "\r\n";
    Result += " [TREE]\r\n";
    for (const std::string& Line : Lines) Result += "  " + Line + "\r\n";
    return Result + "[END]\r\n";
  }
  static TArguments On(const std::string& Verb, const std::string& Object, const TArguments& More) {
    TArguments Result = {Verb, Object, "-d", "sqlite:d.db"};
    Result.insert(Result.end(), More.begin(), More.end());
    return Result;
  }
  /// Makes d.db anew, with what the sections hold.
  void Store(const std::string& Sections) {
    unlink(Path("d.db").c_str());
    Write("store.eif", Sections);
    RunJson(On("import", "structure", {"-i", "store.eif", "--create"}));
  }
  std::string Show(const std::string& Name, const std::string& Type = "12") {
    return Run(On("dictionary", "show", {"--name", Name, "--type", Type})).Output;
  }
  /// The nodes of a tree of one level, as shown, with "|" between them.
  std::string Nodes(const std::string& Name, const std::string& Type = "12") {
    std::string Result = Show(Name, Type);
    Result.erase(0, Result.find("\n\n") + 2);
    std::replace(Result.begin(), Result.end(), '\n', '|');
    return Result;
  }
};

TEST_F(TStructureTest, WhatWasImportedIsExportedAgainByteForByte) {
  const TArguments Values = {"A:ANSIString = 'x#CF'",
                             "AC:ANSIChar = '#00'",
                             "B:boolean = TRUE",
                             "BI:binary = 0A FF",
                             "BY:byte = 255",
                             "C:Currency = -12.5",
                             "CH:Char = '#0027'",
                             "D:double = -0.0",
                             "DT:DateTime = 2024-02-29 23:59:59.5",
                             "E:Extended = 1E300",
                             "I:integer = -1",
                             "I6:Int64 = -9223372036854775808",
                             "N:DELETED",
                             "S:string = ' #000D#000A''#0009|'",
                             "SD:SysDate = 2024-02-29",
                             "SI:smallint = -5",
                             "ST:SysTime = 10:00:00",
                             "U3:UInt32 = 4294967295",
                             "U6:UInt64 = 18446744073709551615",
                             "V:variant = STRING(a#0023)",
                             "VN:variant = NULL",
                             "W:Word = 65535",
                             "WB:WordBool = FALSE"};
  TArguments Lines = {"Top", "  Deeper", "    " + std::string(120'000, 'x')};
  for (const std::string& Value : Values) Lines.push_back("    " + Value);
  Lines[2] = "    0L:string = '" + std::string(60'000, 'x') + "'";
  Store(Structure("Имя формы", 12, Lines, {}, {"one", "", " three"}) + Structure("G", 71, {}) +
        Structure("PROC", 73, {"SQL:string = 'a#000D#000Ab'"}, {}, {}));
  for (const TArguments& Release : {TArguments{}, {"--release", "rv17"}}) {
    for (const char* const File : {"A", "B", "C"}) {
      TArguments Export = On("export", "structure", {"--all", "-o", File});
      Export.insert(Export.end(), Release.begin(), Release.end());
      ASSERT_EQ(RunJson(Export)["sections"].size(), 3U) << Joined(Release);
      unlink(Path("d.db").c_str());
      RunJson(On("import", "structure", {"-i", File, "--create"}));
    }
    EXPECT_EQ(Names("A"), "Имя формы (12) G (71) PROC (73)");
    // In the older release values take the types that it has, once.
    EXPECT_EQ(Release.empty() ? Read("A") : Read("B"), Read("C")) << Joined(Release);
    for (const char* const File : {"A", "B", "C"}) unlink(Path(File).c_str());
  }
}

TEST_F(TStructureTest, OptionsDecideWhatBecomesOfAStructureThatIsThere) {
  const std::string Before = "a: byte = 1|k|x|", Replaced = "a: byte = 2|b|x: DELETED|";
  const std::string Merged = "a: byte = 2|b|k|x: DELETED|";
  Write("F", Structure("S", 12, {"a:byte = 2", "b", "x:DELETED"}) + Structure("NEW", 12, {"n"}));
  Write("TWICE", Structure("NEW", 12, {"n"}) + Structure("new", 12, {"m"}));
  struct TCase {
    TArguments Options;
    int ExitCode;
    std::string Nodes;  // of S afterwards
    bool Made;          // NEW
    std::string Says;
  };
  const TCase Cases[] = {
      {{"-i", "F"}, 1, Before, false, "Structures that are there already: S (12). Give --overwrite yes"},
      {{"-i", "F", "--yes", "--on-error", "continue"}, 1, Before, false, "or --merge"},
      {{"-i", "TWICE"}, 1, Before, false, "Structures that come more than once: NEW (12)."},
      {{"-i", "TWICE", "--overwrite", "no"}, 0, Before, true, "left out structure new (12)"},
      {{"-i", "F", "--section", "1"}, 0, Before, true, "imported structure NEW (12), section 'NEW (12)': "},
      {{"-i", "F", "--overwrite", "no"}, 0, Before, true, "left out structure S (12), section 'S (12)': the structure"},
      {{"-i", "F", "--overwrite", "yes"}, 0, Replaced, true, "in all 2 sections: "},
      {{"-i", "F", "--overwrite", "yes", "--no-clear-root"}, 0, Merged, true, ""},
      {{"-i", "F", "--merge", "skip"}, 0, "a: byte = 1|b|k|x|", true, ""},
      {{"-i", "F", "--merge", "replace"}, 0, Replaced, true, ""},
      {{"-i", "F", "--merge", "replace", "--no-clear-root"}, 0, Merged, true, ""},
      {{"-i", "F", "--merge", "difference"}, 0, "a: byte = 2|b|k|", true, ""},
      {{"-i", "F", "--name", "NEW"}, 2, Before, false, "but 2 are to be loaded: choose one with --section"},
      {{"-i", "F", "--section", "S (12)", "--name", "NEW"}, 0, Before, true, "imported structure NEW (12)"},
      {{"-i", "F", "--section", "1", "--name", "s", "--merge", "skip"}, 0, "a: byte = 1|k|n|x|", false, "structure s"},
      {{"-i", "F", "--section", "1", "--name", "S", "--root", "k"}, 1, Before, false, "already: S (12)"},
      {{"-i", "F", "--section", "NONE"}, 1, Before, false, "it holds section 0 'S (12)' (DSPStructure)"},
  };
  for (const auto& [Options, ExitCode, Expected, Made, Says] : Cases) {
    Store(Structure("S", 12, {"a:byte = 1", "k", "x"}));
    const TOutcome Outcome = Run(On("import", "structure", Options));
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options) << "\n" << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, HasSubstr(Says)) << Joined(Options);
    EXPECT_EQ(Nodes("S"), Expected) << Joined(Options);
    EXPECT_EQ(!Show("NEW").empty(), Made) << Joined(Options);
  }
  // A node alone, and properties that stay.
  Store(Structure("S", 12, {"k", "  old", "l"}, {}, {"before"}));
  Write("PART", Structure("S", 12, {"k", "  new"}, "k"));
  RunJson(On("import", "structure", {"-i", "PART", "--overwrite", "yes", "--keep-properties"}));
  EXPECT_EQ(Nodes("S"), "k|  new|l|");
  EXPECT_THAT(Show("S"), HasSubstr("remarks    before\n"));
  RunJson(On("import", "structure", {"-i", "PART", "--overwrite", "yes", "--root", "l\\m"}));
  EXPECT_EQ(Nodes("S"), "k|  new|l|  m|    new|");
}

TEST_F(TStructureTest, KeysAnswerWhatBecomesOfStructuresThatAreThere) {
  const std::string Old = "x|", New = "y: DELETED|z|", Updated = "x|y: DELETED|z|";
  Write("F", Structure("A", 12, {"y:DELETED", "z"}) + Structure("NEW", 12, {"y:DELETED", "z"}) +
                 Structure("B", 12, {"y:DELETED", "z"}));
  struct TCase {
    std::string Keys;
    int ExitCode;
    std::string A, B;
    std::string Says;
  };
  const TCase Cases[] = {
      {"s\nr\n", 0, Old, New, "left out structure A (12)"},
      {"u\nr\n", 0, Updated, New, "imported structure A (12)"},  // an update is for that structure alone
      {"r\nu\n", 0, New, Updated, "imported structure B (12)"},
      {"f s\n", 0, Old, Old, "left out structure B (12)"},
      {"f r\n", 0, New, New, "imported structure B (12)"},
      {"f u\n", 0, Updated, Updated, "imported structure B (12)"},
      {"c\n", 3, Old, Old, "cancelled structure A (12)"},
      {"r\nc\n", 3, Old, Old, "taken back structure A (12)"},
  };
  for (const char* const Object : {"structure", "file"}) {
    for (const auto& [Keys, ExitCode, A, B, Says] : Cases) {
      Store(Structure("A", 12, {"x"}) + Structure("B", 12, {"x"}));
      const TOutcome Outcome =
          RunOnTerminal(On("import", Object, {"-i", "F"}), "The structure 'A' (type 12) already exists", Keys);
      EXPECT_EQ(Outcome.ExitCode, ExitCode) << Object << Keys << Outcome.Output;
      EXPECT_EQ(Nodes("A"), A) << Object << Keys << Outcome.Output;
      EXPECT_EQ(Nodes("B"), B) << Object << Keys << Outcome.Output;
      if (ExitCode == 0) {
        EXPECT_EQ(Nodes("NEW"), New) << Object << Keys;
        EXPECT_THAT(Outcome.Output, HasSubstr(Says)) << Object << Keys;
      }
    }
  }
}

TEST_F(TStructureTest, ExportFindsStructuresAndSections) {
  Store(Structure("Clients", 12, {"a", "  b:byte = 1"}) + Structure("CLIENTS", 10, {}) + Structure("G", 71, {}));
  struct TCase {
    TArguments Options;
    int ExitCode;
    std::string Names;  // of F afterwards, which had "CLIENTS (12)"
    std::string Says;
  };
  const TCase Cases[] = {
      {{"--name", "g"}, 0, "CLIENTS (12) G (71)", "exported structure G (71), section 'G (71)': "},
      {{"--name", "g", "--name", "G", "--section", "Other"}, 2, "CLIENTS (12)", "but several structures"},
      {{"--name", "g", "--name", "G"}, 0, "CLIENTS (12) G (71)", ""},
      {{"--name", "g", "--section", "Other"}, 0, "CLIENTS (12) Other", ""},
      {{"--name", "clients"}, 2, "CLIENTS (12)", "choose with --type (10 table, 12 visual form)"},
      {{"--name", "clients", "--type", "10"}, 0, "CLIENTS (12) CLIENTS (10)", ""},
      {{"--name", "clients", "--type", "12"}, 1, "CLIENTS (12)", "the section 'Clients (12)'. Give --overwrite yes"},
      {{"--name", "clients", "--type", "12", "--add"}, 0, "CLIENTS (12) Clients (12)", ""},
      {{"--name", "clients", "--type", "12", "--root", "a\\b"}, 0, "CLIENTS (12) Clients (12) a\\b", ""},
      {{"--name", "clients", "--type", "12", "--root", "a\\"},
       1,
       "CLIENTS (12)",
       "node not found (OT:12;ON:'Clients';Node:'a\\')"},
      {{"--all", "--overwrite", "yes"}, 0, "CLIENTS (10) Clients (12) G (71)", "in all 3 sections"},
      {{"--all", "--overwrite", "no"}, 0, "CLIENTS (12) CLIENTS (10) G (71)", "left out structure Clients (12)"},
      {{"--all", "--type", "71"}, 0, "CLIENTS (12) G (71)", ""},
      {{"--all", "--type", "5"}, 0, "CLIENTS (12)", "there are no structures of type 5"},
      {{"--name", "G", "--name", "CLIENT"},
       1,
       "CLIENTS (12)",
       "did you mean 'CLIENTS'? velkrund dictionary list shows what there is"},
      {{"--name", "G", "--type", "12"}, 1, "CLIENTS (12)", "velkrund dictionary list shows what there is"},
      {{"--name", "G", "--root", "none"}, 1, "CLIENTS (12)", "node not found (OT:71;ON:'G';Node:'none')"},
  };
  for (const auto& [Options, ExitCode, Expected, Says] : Cases) {
    Write("F", Structure("CLIENTS", 12, {"old"}));
    TArguments Arguments = On("export", "structure", {"-o", "F"});
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Arguments);
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options) << "\n" << Outcome.Errors;
    EXPECT_THAT(Outcome.Errors, HasSubstr(Says)) << Joined(Options);
    EXPECT_EQ(Names("F"), Expected) << Joined(Options);
  }
  // A table's section of the same name is another thing.
  Write("F", Section("G (71)", {"ID"}, {"1"}));
  RunJson(On("export", "structure", {"-o", "F", "--name", "G"}));
  EXPECT_EQ(Names("F"), "G (71) G (71)");
  EXPECT_EQ(Shell("$V export structure -d sqlite:d.db --name Clients --type 12 --root 'a\\b' -o - | "
                  "$V import structure -d sqlite:d.db -i - --name G --type 71 --root b --merge replace")
                .ExitCode,
            0);
  EXPECT_EQ(Nodes("G", "71"), "b: byte = 1|");
}

TEST_F(TStructureTest, FilesOfStructuresAndTables) {
  Write("F", Structure("S", 12, {"new"}) + Section("A", {"ID"}, {"1"}) + Structure("BAD", 12, {" x"}) +
                 Structure("NEW", 12, {"n"}));
  struct TCase {
    TArguments Options;
    int ExitCode;
    std::string Nodes;
    std::string States;
  };
  const TCase Cases[] = {
      {{}, 1, "old|", ""},
      {{"--overwrite", "no"}, 1, "old|", "left-out, not-reached, failed, not-reached"},
      {{"--overwrite", "no", "--on-error", "continue"}, 1, "old|", "left-out, done, failed, done"},
      {{"--overwrite", "yes", "--on-error", "continue"}, 1, "new|", "done, done, failed, done"},
  };
  for (const auto& [Options, ExitCode, Expected, States] : Cases) {
    Store(Structure("S", 12, {"old"}));
    Query("d.db", "CREATE TABLE A (ID INTEGER)");
    TArguments Arguments = On("import", "file", {"-i", "F", "--json"});
    Arguments.insert(Arguments.end(), Options.begin(), Options.end());
    const TOutcome Outcome = Run(Arguments);
    const auto Report = nlohmann::json::parse(Outcome.Output, nullptr, false);
    std::string Found;
    if (Report.contains("sections"))
      for (const auto& Item : Report["sections"])
        Found += (Found.empty() ? "" : ", ") + Item["state"].get<std::string>();
    else
      EXPECT_THAT(Report["error"]["message"].get<std::string>(),
                  HasSubstr("there already: S (12). Give --overwrite yes"));
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options) << "\n" << Outcome.Errors;
    EXPECT_EQ(Found, States) << Joined(Options) << "\n" << Outcome.Errors;
    EXPECT_EQ(Nodes("S"), Expected) << Joined(Options);
    if (States.empty()) continue;
    EXPECT_EQ(Report["sections"][0]["structure"].dump(), R"({"name":"S","type":12})");
    EXPECT_FALSE(Report["sections"][0].contains("rows"));
  }
}

TEST_F(TStructureTest, ListsAndShowsWhatIsStored) {
  EXPECT_EQ(Run({"dictionary", "list", "-d", "sqlite:shop.db"}).Output, "no structures\n");
  Store(Structure("S", 12,
                  {"z:string = 'a#000D#000Ab#001B'", "A", "  n#003Am#001B:double = NAN", "  f:Extended = 0.1",
                   "  v:variant = ANSISTRING(#CF)", "  w:variant = NULL", "  u:UInt64 = 18446744073709551615",
                   "  b:WordBool = TRUE", "  c:Currency = 0.0001", "  h:binary = 0A FF", "  d:DELETED"},
                  {}, {"first", "second"}) +
        Structure("GEN", 71, {}) + Structure("X", 999, {}));
  EXPECT_EQ(Run(On("dictionary", "list", {})).Output,
            "TYPE            NAME  TABLE  PARENT  REMARKS\n"
            "12 visual form  S     T      P       first\n"
            "71 generator    GEN   T      P\n"
            "999             X     T      P\n");
  EXPECT_EQ(Show("s"),
            "structure  S\ntype       12 visual form\ntable      T\nparent     P\nremarks    first\n"
            "           second\n\n"
            "A\n  b: WordBool = TRUE\n  c: Currency = 0.0001\n  d: DELETED\n  f: Extended = 0.1\n"
            "  h: binary = 0A FF\n  n:m\\x1B: double = NAN\n  u: UInt64 = 18446744073709551615\n"
            "  v: variant ANSIString = 'П'\n  w: variant null\nz: string =\n  | a\n  | b\\x1B\n");
  EXPECT_EQ(RunJson(On("dictionary", "list", {"--type", "12"}))["structures"].dump(),
            R"([{"name":"S","parentObject":"P","remarks":"first\r\nsecond","table":"T","type":12}])");
  const auto Document = RunJson(On("dictionary", "show", {"--name", "S"}));
  EXPECT_EQ(Document["structure"]["remarks"], "first\r\nsecond");
  std::string Values;
  for (const auto& Node : Document["nodes"][0]["nodes"])
    Values += Node["name"].get<std::string>() + " " + Node["type"].dump() + " " +
              Node.value("value", nlohmann::json("none")).dump() + "\n";
  EXPECT_EQ(
      Values,
      "b \"WordBool\" true\nc \"Currency\" \"0.0001\"\nd \"DELETED\" \"none\"\nf \"Extended\" 0.1\n"
      "h \"binary\" \"0AFF\"\nn:m\x1B \"double\" \"NAN\"\nu \"UInt64\" 18446744073709551615\n"
      "v \"variant\" {\"kind\":\"ANSIString\",\"value\":\"П\"}\nw \"variant\" {\"kind\":\"null\",\"value\":null}\n");
  EXPECT_FALSE(Document["nodes"][0].contains("type"));
  EXPECT_EQ(Document["nodes"][1]["value"], "a\r\nb\x1B");
  EXPECT_EQ(RunJson({"database", "info", "-d", "sqlite:d.db"})["catalogueVersion"], 1);
  EXPECT_FALSE(RunJson({"database", "info", "-d", "sqlite:shop.db"}).contains("catalogueVersion"));
}

// The merge would keep the last one.
TEST_F(TStructureTest, TopNodesOfOneName) {
  const std::string File = Structure("S", 12, {"a:integer = 1", "b", "A:integer = 2"});
  Write("f.eif", File);
  const auto LinesBefore =
      std::count(File.begin(), File.begin() + static_cast<std::ptrdiff_t>(File.find("  a:")), '\r');
  const std::string Lines =
      "in the lines " + std::to_string(LinesBefore + 1) + " and " + std::to_string(LinesBefore + 3);
  const TArguments Import = On("import", "structure", {"-i", "f.eif", "--create"});
  for (const TArguments& Line : {TArguments{"file", "check", "f.eif"}, Import,
                                 TArguments{"import", "file", "-d", "sqlite:d.db", "-i", "f.eif", "--create"}}) {
    const TOutcome Outcome = Run(Line);
    EXPECT_EQ(Outcome.ExitCode, 1);
    EXPECT_THAT(Outcome.Output + Outcome.Errors, HasSubstr(Lines));
  }
  TArguments Lossy = Import;
  Lossy.push_back("--allow-loss");
  EXPECT_EQ(RunJson(Lossy)["textsAltered"], 1);
  EXPECT_THAT(Show("S"), HasSubstr("a: integer = 2\nb\n"));
}

TEST_F(TStructureTest, TreesThatCanNotBeShown) {
  TArguments Deep;
  for (std::size_t Level = 0; Level <= 1000; ++Level) Deep.push_back(std::string(2 * Level, ' ') + "n");
  Write("deep.eif", Structure("DEEP", 12, Deep));
  const TOutcome Outcome = Run(On("import", "structure", {"-i", "deep.eif", "--create"}));
  EXPECT_EQ(Outcome.ExitCode, 1);
  EXPECT_THAT(Outcome.Errors, HasSubstr("more than 1000 levels"));
  Deep.pop_back();
  Store(Structure("DEEP", 12, Deep) + Structure("BAD", 12, {"a"}));
  EXPECT_THAT(Show("DEEP"), HasSubstr("\n" + std::string(1998, ' ') + "n\n"));
  EXPECT_EQ(RunJson(On("dictionary", "show", {"--name", "DEEP"}))["nodes"].size(), 1U);

  Query("d.db", "UPDATE velkrund_structures SET tree = x'00' WHERE object_name = 'BAD'");
  const TOutcome Damaged = Run(On("dictionary", "show", {"--name", "BAD"}));
  EXPECT_EQ(Damaged.ExitCode, 1);
  EXPECT_THAT(Damaged.Errors, HasSubstr("BAD"));
  EXPECT_EQ(Damaged.Output, "");
  EXPECT_EQ(Run(On("dictionary", "drop", {"--name", "BAD", "--yes"})).ExitCode, 0);
}

TEST_F(TStructureTest, DropsAfterAQuestion) {
  Store(Structure("S", 12, {"a"}) + Structure("S", 10, {}) + Structure("G", 71, {}));
  struct TCase {
    TArguments Options;
    int ExitCode;
    std::string Says;
    std::size_t Left;
  };
  const TCase Cases[] = {
      {{"--name", "G"}, 1, "Drop the structure 'G' of type 71? Give --yes", 3},
      {{"--name", "s", "--yes"}, 2, "choose with --type", 3},
      {{"--name", "s", "--type", "12", "--yes"}, 0, "dropped the structure 'S' of type 12", 2},
      {{"--name", "s", "--type", "12", "--yes"},
       1,
       "of that name there is one of type 10 table; velkrund dictionary list",
       2},
      {{"--name", "s", "--yes"}, 0, "dropped the structure 'S' of type 10", 1},
  };
  for (const auto& [Options, ExitCode, Says, Left] : Cases) {
    const TOutcome Outcome = Run(On("dictionary", "drop", Options));
    EXPECT_EQ(Outcome.ExitCode, ExitCode) << Joined(Options);
    EXPECT_THAT(Outcome.Errors, HasSubstr(Says)) << Joined(Options);
    EXPECT_EQ(RunJson(On("dictionary", "list", {}))["structures"].size(), Left) << Joined(Options);
  }
  const TArguments Drop = On("dictionary", "drop", {"--name", "G"});
  EXPECT_EQ(RunOnTerminal(Drop, "Drop the structure 'G'", "c\n").ExitCode, 3);
  EXPECT_EQ(RunOnTerminal(Drop, "Drop the structure 'G'", "y\n").ExitCode, 0);
  EXPECT_EQ(Run(On("dictionary", "list", {})).Output, "no structures\n");
}

}  // namespace
}  // namespace velkrund::tests
