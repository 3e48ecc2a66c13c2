#include <sqlite3.h>

#include "tests/cli/ShopTest.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {
namespace {

/// What goes wrong in an administrator's week, on both engines: the whole first line that is read then, which says
/// what, where, and what to do.
class TMistakesTest : public TShopTest {
 protected:
  TMistakesTest() {
    const std::string Schema =
        "CREATE TABLE \"A\" (\"ID\" integer PRIMARY KEY, \"NAME\" varchar(5), \"N\" integer CHECK (\"N\" < 5));"
        "CREATE TABLE \"B\" (\"ID\" integer PRIMARY KEY, \"A\" integer REFERENCES \"A\");"
        "CREATE TABLE \"FULL\" (\"ID\" integer); INSERT INTO \"FULL\" VALUES (1); CREATE VIEW \"V\" AS SELECT 1 AS "
        "\"ID\"";
    Query("e.db", Schema);
    Server.Run(Schema);
    Server.Run("DO $do$ BEGIN EXECUTE 'CREATE ROLE clerk_of_' || current_database() || ' LOGIN'; END $do$");
    Query("src.db", Schema);
    Query("busy.db", Schema);
    const TArguments Fields = {"ID", "N", "NAME"};
    const std::string Good = Section("A", Fields, {"1|1|'one'", "2|2|'two'"});
    const auto With = [&](const std::string& Old, const std::string& New) {
      return std::string(Good).replace(Good.find(Old), Old.size(), New);
    };
    Write("a.eif", Good);
    Write("b.eif", Section("B", {"A", "ID"}, {"7|1"}));
    Write("full.eif", Section("FULL", {"ID"}, {"2"}));
    Write("unread.eif", With("<2|", "<2x|"));
    Write("lengthy.eif", With("<1|", "<" + std::string(5000, 'x') + "|"));
    Write("bracket.eif", With("<2|", "2|"));
    Write("escape.eif", With("'two'", "'tw#00G0'"));
    Write("utf8.eif", With("'two'", "'t\xFF'"));
    Write("long.eif", With("'two'", "'too long'"));
    Write("check.eif", With("|2|'", "|7|'"));
    Write("twice.eif", With("<2|", "<1|"));
    Write("renamed.eif", With("  NAME", "  NAEM"));
    Write("version.eif", With("= 200", "= 300"));
    Write("table.eif", With("TableName", "Table"));
    Write("cut.eif", Good.substr(0, 150));
    Write("text.txt", "hello");
    Write("empty.eif", "");
    Write("wide.eif", "\xFF\xFE[");
    Write("bad.toml", "databse = 1\n");
    Write("broken.toml", "[database.x\n");
    Write("busy.toml", "busy_seconds = 0.1\n");
    Write("velkrund.toml", "[database.shop]\nurl = \"sqlite:src.db\"\n");
    Write("tail.eif", Good + Good.substr(0, 100) + Replaced(Good.substr(100), "\r", ""));
    Write("narrow.eif", std::string("[\0S\0", 4));
    Write("json.eif", "{}");
    Write("remarks.eif", "; a file of settings\n[section]\n");
    Write("damaged.eif", Good + "[SECTIOM]" + Good.substr(std::string("[SECTION]").size()));
    Shell("gzip -k a.eif; tr -d '\\r' <a.eif >lf.eif; tar cf tar.eif a.eif");
  }

  struct TMistake {
    std::string Line;           // D: the database
    std::string Says;           // behind "velkrund: "; D and F: the folder, as they are shown
    std::string OnServer = {};  // where it is another
  };

  static std::string Replaced(std::string Text, const std::string& Old, const std::string& New) {
    for (std::size_t At = 0; (At = Text.find(Old, At)) != std::string::npos; At += New.size())
      Text.replace(At, Old.size(), New);
    return Text;
  }
  std::string FirstLine(const std::string& Line, const std::string& Database) {
    const TOutcome Outcome = Shell(Replaced(Line, "$D", Database) + " 2>&1 >out");
    EXPECT_GT(Outcome.ExitCode, 0) << Line << "\n" << Outcome.Output;
    std::string First = Outcome.Output.substr(0, Outcome.Output.find('\n'));
    EXPECT_TRUE(First.starts_with("velkrund: ")) << Line << "\n" << First;
    First.erase(0, std::string("velkrund: ").size());
    const std::string Url = Server.Url();
    const std::size_t Name = Url.rfind('/') + 1, Port = Url.rfind(':') + 1;
    for (const auto& [Old, New] :
         {std::pair(Database, "$D"), std::pair(Path(""), "$F/"), std::pair(Url.substr(Name), "$N"),
          std::pair(Url.substr(Port, Name - 1 - Port), "$P")})
      First = Replaced(First, Old, New);
    return First;
  }

  TPostgreSQLDatabase Server;
};

TEST_F(TMistakesTest, EachIsToldOnOneLineWithPostgreSQLToo) {
  const std::string Export = "$V export table -d $D -t A -o o.eif ", Import = "$V import table -d $D -i ";
  const std::string LineFeeds =
      "'lf.eif' holds no section: what looks like a section is passed over (Position:0): [SECTION]. Its lines end with "
      "a "
      "line feed alone; velkrund file repair 'lf.eif' mends it";
  const std::string Tail =
      "'tail.eif' has a section (Position:173) that cannot be read, or that hides others: lines of it end with a line "
      "feed alone; velkrund file repair 'tail.eif' mends it";
  const TMistake Mistakes[] = {
      {"$V exprot table -d $D -t A -o o.eif",
       "'exprot' is not a verb: there are export, import, copy, delete, recreate, dictionary, languages, resources, "
       "file, database; did you mean "
       "'export'?"},
      {"$V export tabel -d $D",
       "'tabel' is not an object of export: there are table, structure, query, generator, resource, single-resources, "
       "language, xml; did you mean 'table'?"},
      {"$V table export -d $D",
       "'table' is not a verb: there are export, import, copy, delete, recreate, dictionary, languages, resources, "
       "file, database; did you mean "
       "'export "
       "table'?"},
      {"$V export table --tabel A", "'--tabel' is not understood here; did you mean '--table'?"},
      {"$V export table -d $D -t A", "--output is required"},
      {Export + "--overwrite yse", "--overwrite takes ask|yes|no, not 'yse'; did you mean 'yes'?"},
      {Export + "--json -o p.eif", "--output takes exactly one value"},
      {"$V import table -d $D -i a.eif --append --replace",
       "--replace and --append contradict each other: give one of them"},
      {"$V export table -d $D -t AA -o o.eif",
       "There is no table 'AA' in the database $D: it has A, B, FULL, V; did you mean 'A'?"},
      {"$V export table -d $D -t A --fields NAM -o o.eif",
       "There is no field 'NAM' in the table 'A': it has ID, NAME, N; did you mean 'NAME'?"},
      {"$V export table -d src.db -t A -o o.eif",
       "'src.db' is a file; the address of a database file begins with its kind: sqlite:src.db"},
      {"$V export table -d shpo -t A -o o.eif",
       "The database 'shpo' is not in velkrund.toml, and it is not an address (SCHEME:...); the configuration has "
       "shop; did you mean 'shop'?"},
      {"$V export table -d sqllite:e.db -t A -o o.eif",
       "The database 'sqllite:e.db' has the unknown scheme 'sqllite'; known are: sqlite, postgresql; did you mean "
       "'sqlite'?"},
      {"$V export table -d sqlite:nix.db -t A -o o.eif", "The database file '$F/nix.db' does not exist"},
      {Export + "--config nix.toml", "Cannot read the configuration 'nix.toml': there is no such file"},
      {Export + "--config bad.toml",
       "bad.toml:1: key 'databse': the key is unknown; known are default_database, code_page, strict_values, "
       "strict_text, work_as_17_version, language, busy_seconds, trace, database; did you mean 'database'?"},
      {Export + "--config broken.toml", "broken.toml:1: Error while parsing table header: expected ']', saw '\\n'"},
      {"$V export table -d $D -t A -o nix/o.eif", "Cannot create file 'nix/o.eif': there is no folder 'nix'"},
      {"$V export table -d $D -t A -o text.txt",
       "File 'text.txt' is there already and is not an export/import file: nothing is added to it"},
      {"$V export table -d $D -t A -o src.db",
       "File 'src.db' is there already and is an SQLite database: nothing is added to it"},
      {"$V export table -d $D -t A -o .", "Cannot open file '.': Is a directory"},
      {"$V export table -d $D -t A -o /dev/full",
       "Cannot write to /dev/full: No space left on device; make room, then run it again"},
      {"$V export table -d sqlite:src.db -t A -o a.eif",
       "Already in 'a.eif': the section 'A'. Give --overwrite yes to replace, --overwrite no to leave it out, or --add "
       "to keep both; there is no terminal to ask"},
      {"$V export table -d $D -t A -o /proc/o.eif", "Cannot create file '/proc/o.eif': No such file or directory"},
      {Import + "nix.eif", "Cannot open file 'nix.eif': No such file or directory"},
      {Import + "text.txt", "'text.txt' is not an export/import file: no line of it is [SECTION]"},
      {Import + "src.db", "'src.db' is an SQLite database; as a database its address is sqlite:src.db"},
      {Import + "a.eif.gz", "'a.eif.gz' is compressed (gzip); unpack it first"},
      {Import + "wide.eif", "'wide.eif' is a text in UTF-16; convert it to UTF-8 with carriage returns and line feeds"},
      {Import + "empty.eif", "'empty.eif' is empty: it holds no section"},
      {Import + "narrow.eif",
       "'narrow.eif' is a text in UTF-16; convert it to UTF-8 with carriage returns and line feeds"},
      {Import + "json.eif", "'json.eif' is a JSON document: no line of it is [SECTION]"},
      {"$V file remove src.db 0", "'src.db' is an SQLite database; as a database its address is sqlite:src.db"},
      {"$V file repair tar.eif", "'tar.eif' is an archive (tar); unpack it first"},
      {"$V file list remarks.eif", "'remarks.eif' is not an export/import file: no line of it is [SECTION]"},
      {"$V export table -d $D -t A -o remarks.eif",
       "File 'remarks.eif' is there already and is not an export/import file: nothing is added to it"},
      {Import + "lf.eif", LineFeeds},
      {"$V file list lf.eif", LineFeeds},
      {"$V file check lf.eif", LineFeeds},
      {"$V file remove lf.eif 0", LineFeeds},
      {Export.substr(0, Export.rfind("o.eif")) + "lf.eif", LineFeeds},
      {"cat lf.eif | " + Import + "-",
       "'standard input' holds no section: what looks like a section is passed over (Position:0): [SECTION]. Its lines "
       "end with a line feed alone; keep it in a file, which velkrund file repair mends"},
      {Import + "tail.eif", Tail},
      {"$V file list tail.eif", Tail},
      {"$V file check tail.eif", Tail},
      {Import + "damaged.eif",
       "In 'damaged.eif' what looks like a section is passed over (Position:173): [SECTIOM]. Its \"[SECTION]\" line is "
       "damaged or missing: write it anew"},
      {"$V file repair damaged.eif",
       "In 'damaged.eif' what looks like a section is passed over (Position:173): [SECTIOM]. Its \"[SECTION]\" line is "
       "damaged or missing: write it anew"},
      {Import + "cut.eif",
       "cut.eif:13: Invalid Export/Import source structure. Section end not found (Position:150). velkrund file repair "
       "'cut.eif' cuts off what an export has left unfinished"},
      {Import + "version.eif",
       "version.eif:7: Invalid Export/Import source structure. Section type is not registered "
       "(Type:'TableData';Position:94). velkrund file check 'version.eif' names every fault"},
      {Import + "table.eif -t A",
       "table.eif:7: Parameter '%s' not found; velkrund file check 'table.eif' names every fault"},
      {Import + "a.eif --section AB",
       "'a.eif' has no section 'AB': it holds section 0 'A' (TableData); did you mean 'A'?"},
      {Import + "a.eif -t AB",
       "There is no table 'AB' for section 0 'A' (TableData) in the database $D: it has A, B, FULL, V; did you mean "
       "'A'?"},
      {"$V import table -d sqlite:new.db --create -i a.eif",
       "There is no table 'A' for section 0 'A' (TableData) in the database sqlite:new.db: it has no tables"},
      {Import + "a.eif --fields NAM",
       "a.eif: There is no field 'NAM' in section 0 'A' (TableData): it has ID, N, NAME; did you mean 'NAME'?"},
      {Import + "bracket.eif",
       "bracket.eif:14: Can not import table data. Invalid record data structure. '<' is missing (Position:71) (table "
       "A, record 2, value 2|2|'two'>); velkrund file check 'bracket.eif' names every fault"},
      {Import + "unread.eif",
       "unread.eif:14: Can not import table data. Invalid record data structure. Field value is incorrect "
       "(Field:'ID'); Value: 2x (table A, record 2); --lenient makes such values NULL and counts them"},
      {Import + "lengthy.eif",
       "lengthy.eif:13: Can not import table data. Invalid record data structure. Field value is incorrect "
       "(Field:'ID'); Value: " +
           std::string(60, 'x') +
           "... (table A, record 1); "
           "--lenient makes such values NULL and counts them"},
      {Import + "escape.eif",
       "escape.eif:14: Error importing table data. Invalid character (#$00G0) in string constant. (table A, field "
       "NAME, record 2, value 'tw#00G0'); velkrund file check 'escape.eif' names every fault"},
      {Import + "utf8.eif",
       "utf8.eif:14: The text is not valid UTF-8 (Position:71). Allow losses to read it with replacement characters "
       "(table A, record 2): --allow-loss"},
      {Import + "long.eif --replace", "",
       "long.eif:14: Cannot append record 2 to table 'A', column 'NAME': the text is longer than the column takes "
       "(value too long)"},
      {Import + "check.eif --replace",
       "check.eif:14: Cannot append record 2 to table 'A': CHECK constraint failed: N (SQLite error 275)",
       "check.eif:14: Cannot append record 2 to table 'A': new row for relation \"A\" violates check constraint "
       "\"A_N_check\" (PostgreSQL error 23514); Failing row contains (2, two, 7)"},
      {Import + "twice.eif --replace",
       "twice.eif:14: Cannot append record 2 to table 'A': UNIQUE constraint failed: A.ID (SQLite error 1555)",
       "twice.eif:14: Cannot append record 2 to table 'A': duplicate key value violates unique constraint \"A_pkey\" "
       "(PostgreSQL error 23505); Key (\"ID\")=(1) already exists"},
      {Import + "renamed.eif --replace",
       "renamed.eif: The table 'A' lacks the field 'NAEM' of section 0 'A' (TableData); did you mean 'NAME'? "
       "--missing-fields skip passes over fields that the table lacks"},
      {Import + "b.eif",
       "Foreign keys of the table 'B' would be broken by what was loaded: 1 value refers to "
       "rows that are not there (before: 0), for example row 1 to a row of 'A'; --broken-references allow lets such "
       "rows in, and counts them",
       "b.eif:12: Cannot append record 1 to table 'B': insert or update on table \"B\" violates foreign key constraint "
       "\"B_A_fkey\" (PostgreSQL error 23503); Key (A)=(7) is not present in table \"A\"; "
       "--broken-references allow lets such rows in, and counts them"},
      {Import + "full.eif",
       "Table 'FULL' has 1 row. Give --replace to delete them first, or --append to keep them; there is no terminal to "
       "ask"},
      {Import + "full.eif -t V --append", "full.eif: Cannot append to table 'V': it is a view (section FULL)"},
      {"$V file remove a.eif 5", "'a.eif' has no section with the index 5: it holds section 0 'A' (TableData)"},
      {"$V file repair text.txt", "'text.txt' is not an export/import file: no line of it is [SECTION]"},
      {"$V file list text.txt", "'text.txt' is not an export/import file: no line of it is [SECTION]"},
      {"$V file check empty.eif", "'empty.eif' is empty: it holds no section"},
      {"$V dictionary show -d $D --name FORM",
       "There is no structure 'FORM' in the database $D; velkrund dictionary list shows what there is"},
      {"$V import table -d sqlite:text.txt -i a.eif",
       "Cannot open the database '$F/text.txt': file is not a database (SQLite error 26)"},
      {"$V import table -d sqlite:. -i a.eif", "The database '$F/.' is a folder"},
      {"$V import table --config busy.toml -d sqlite:busy.db -i a.eif",
       "Cannot start a transaction in the database '$F/busy.db': database is locked (SQLite error 5); another program "
       "is using the database, and has done so for longer than busy_seconds; run it again when that is done"},
      {"R=$(echo $D | sed s/postgres@/nix@/); $V import table -d $R -i a.eif", "",
       "Cannot open the database 'postgresql://nix@127.0.0.1:$P/$N': connection to server at \"127.0.0.1\", port $P "
       "failed: FATAL: role \"nix\" does not exist"},
      {"R=$(echo $D | sed 's/postgres@\\(.*\\)\\/\\(.*\\)/clerk_of_\\2@\\1\\/\\2/'); $V import table -d $R -i a.eif "
       "--append",
       "",
       "a.eif: Cannot append to table 'A': permission denied for table A (PostgreSQL error 42501); have the right "
       "granted, or connect as a role that has it"},
      {"$V import table -d $D-nix -i a.eif", "The database file '$F/e.db-nix' does not exist; --create makes it",
       "Cannot open the database '$D-nix': connection to server at \"127.0.0.1\", port $P failed: FATAL: database "
       "\"$N-nix\" does not exist"},
      {"$V import table -d postgresql://postgres@127.0.0.1:1/x -i a.eif",
       "Cannot open the database 'postgresql://postgres@127.0.0.1:1/x': connection to server at \"127.0.0.1\", port 1 "
       "failed: Connection refused. Is the server running on that host and accepting TCP/IP connections?"},
  };
  sqlite3* Busy = nullptr;
  ASSERT_EQ(sqlite3_open(Path("busy.db").c_str(), &Busy), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(Busy, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  for (const auto& [Line, Says, OnServer] : Mistakes) {
    if (!Says.empty()) {
      EXPECT_EQ(FirstLine(Line, "sqlite:e.db"), Says) << Line;
    }
    EXPECT_EQ(FirstLine(Line, Server.Url()), OnServer.empty() ? Says : OnServer) << Line;
  }
  sqlite3_close(Busy);
}

}  // namespace
}  // namespace velkrund::tests
