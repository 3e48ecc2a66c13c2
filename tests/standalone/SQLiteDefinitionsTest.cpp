#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>

#include "standalone/drivers/sqlite/SQLiteDeclarations.h"
#include "standalone/drivers/sqlite/SQLiteTableDeclaration.h"
#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::HasSubstr;

std::string Traits() {
  std::ifstream File(std::string(VELKRUND_SOURCE_DIR) + "/tests/standalone/traits.sqlite.sql");
  return {std::istreambuf_iterator<char>(File), {}};
}

class SQLiteDefinitionsTest : public SQLiteFixture {
 protected:
  /// A database that the engine's own interface makes of many statements.
  std::unique_ptr<TConnection> Made(const std::string& Name, const std::string& Statements) {
    const std::string Path = Folder / Name;
    sqlite3* Database = nullptr;
    sqlite3_open(Path.c_str(), &Database);
    const std::string All = "PRAGMA synchronous = OFF; PRAGMA journal_mode = OFF;" + Statements;
    EXPECT_EQ(sqlite3_exec(Database, All.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(Database);
    sqlite3_close(Database);
    return Connect(Path);
  }

  static void Run(TConnection& Database, const TScript& Script) {
    for (const TScriptStatement& Statement : Script.Statements) {
      SCOPED_TRACE(Statement.What);
      EXPECT_EQ(ErrorOf([&] { Database.Execute(Statement.Text); }), "no error");
    }
    for (const TScriptGap& Gap : Script.Gaps) ADD_FAILURE() << Gap.Kind << ": " << Gap.What;
  }

  /// Makes in Target what Source has: tables, then their indexes, then the rest; then both have to be described alike.
  static void ExpectSame(TConnection& Source, TConnection& Target) {
    const TScriptWriter& Writer = Source.Scripts();
    const std::vector<TDefinedObject> Objects = Source.Definitions().Objects();
    for (const TTableParts Parts :
         {TTableParts{true, false, false, false, false}, TTableParts{false, true, true, true, true}})
      for (const TDefinedObject& Object : Objects)
        if (Object.Kind == TDefinedKind::Table)
          Run(Target, Writer.Table(Source.Definitions().Table(Object.Table, {}), Parts, Writer.TablePattern()));
    for (const TDefinedObject& Object : Objects)
      if (Object.Kind == TDefinedKind::View) Run(Target, Writer.View(Source.Definitions().View(Object.Table), false));
    ASSERT_EQ(Target.Definitions().Objects().size(), Objects.size());
    for (const TDefinedObject& Object : Objects) {
      SCOPED_TRACE(Object.Table.Name);
      if (Object.Kind == TDefinedKind::View)
        EXPECT_TRUE(Target.Definitions().View(Object.Table) == Source.Definitions().View(Object.Table));
      else
        EXPECT_TRUE(Target.Definitions().Table(Object.Table, {}) == Source.Definitions().Table(Object.Table, {}));
    }
  }

  /// What the engine itself makes of the declarations, whatever their words are.
  static std::vector<std::string> Understood(TConnection& Database) {
    const char* const Queries[] = {
        "SELECT json_array(l.name, l.type, l.wr, l.strict, x.cid, x.name, x.type, x.\"notnull\", x.pk, x.hidden) FROM "
        "pragma_table_list l, pragma_table_xinfo(l.name) x WHERE l.name NOT LIKE 'sqlite_%' ORDER BY 1",
        "SELECT json_array(s.name, lower(k.\"table\"), lower(k.\"from\"), lower(k.\"to\"), k.on_update, k.on_delete, "
        "k.seq) FROM sqlite_schema s, pragma_foreign_key_list(s.name) k WHERE s.type = 'table' ORDER BY 1",
        "SELECT json_array(s.name, l.\"unique\", l.origin, l.partial, json_group_array(json_array(x.name, x.\"desc\", "
        "x.coll))) FROM sqlite_schema s, pragma_index_list(s.name) l, pragma_index_xinfo(l.name) x "
        "WHERE s.type = 'table' AND x.key GROUP BY s.name, l.name ORDER BY 1",
        "SELECT json_array(type, name, tbl_name) FROM sqlite_schema WHERE type IN ('trigger', 'view') ORDER BY 1",
    };
    std::vector<std::string> Result;
    TKvVariant Value;
    for (const char* Query : Queries) {
      const std::unique_ptr<TCursor> Rows = Database.Query(Query);
      while (Rows->Next()) {
        Rows->Read(0, Value);
        Result.emplace_back(Value.AsText());
      }
    }
    return Result;
  }
};

TEST_F(SQLiteDefinitionsTest, EveryTraitComesBack) {
  const auto Source = Made("source", Traits());
  const auto Target = Connect(":memory:");
  ExpectSame(*Source, *Target);
  EXPECT_EQ(Understood(*Source), Understood(*Target));
}

TEST_F(SQLiteDefinitionsTest, ObjectsAreThoseOfUsersInTheOrderInWhichTheyCanBeMade) {
  Connection = Made("all", Traits() +
                               "CREATE TABLE velkrund_catalogue (a); ANALYZE; PRAGMA user_version = 7;"
                               "CREATE VIRTUAL TABLE seen USING fts5vocab(words, row);");
  std::string Names;
  for (const TDefinedObject& Object : Connection->Definitions().Objects()) Names += Object.Table.Name + "|";
  EXPECT_EQ(Names,
            "altered "
            "twice|boxes|children|copied|counting_alias|descending|descending_alias|exact|generated|late_key|no_rowid|"
            "no_rowid_number|odd \"names\"|parents|plain|strict_one|strict_two|text_key|words|zz_notes|over_notes|"
            "named columns|shown|");
  EXPECT_THAT(Connection->Definitions().LeftBehind(),
              testing::ElementsAre(HasSubstr("'seen'"), "user_version 7 of the database"));
}

/// What the description of one declared table makes again.
TEST_F(SQLiteDefinitionsTest, DeclarationsAreMadeAgainInOneForm) {
  struct TCase {
    std::string Declared;  // of table t
    std::string Made;      // between the brackets behind the table's name, in one line
    std::string Words = "";
  };
  const TCase Cases[] = {
      {"(a)", R"("a")"},
      {"(a int, CONSTRAINT n PRIMARY KEY (A desc))", R"("a" int CONSTRAINT "n" PRIMARY KEY DESC)"},
      {"(a INTEGER CONSTRAINT n PRIMARY KEY ASC ON CONFLICT ROLLBACK AUTOINCREMENT)",
       R"("a" INTEGER CONSTRAINT "n" PRIMARY KEY ON CONFLICT ROLLBACK AUTOINCREMENT)"},
      {"(a INTEGER, PRIMARY KEY (a AUTOINCREMENT))", R"("a" INTEGER PRIMARY KEY AUTOINCREMENT)"},
      {"(a INTEGER PRIMARY KEY DESC)", R"("a" INTEGER PRIMARY KEY DESC)"},
      {"(a UNIQUE ON CONFLICT ABORT, b CONSTRAINT c UNIQUE ON CONFLICT REPLACE, PRIMARY KEY (b, a))",
       R"("a", "b", PRIMARY KEY ("b", "a"), UNIQUE ("a"), CONSTRAINT "c" UNIQUE ("b") ON CONFLICT REPLACE)"},
      {"(a, b, UNIQUE ('a' COLLATE nocase, [b] DESC) ON CONFLICT IGNORE)",
       R"("a", "b", UNIQUE ("a" COLLATE "nocase", "b" DESC) ON CONFLICT IGNORE)"},
      {"(a TEXT CONSTRAINT x NOT NULL ON CONFLICT FAIL COLLATE \"rtrim\" DEFAULT ('b' || 'c'))",
       R"("a" TEXT COLLATE "rtrim" NOT NULL ON CONFLICT FAIL DEFAULT ('b' || 'c'))"},
      {"(a TEXT CONSTRAINT c CHECK (b > 1) CHECK (a <> ')' -- no )\n), b INT, CONSTRAINT lost, CHECK (a || 'x' != 'y' "
       "/* ( */ ))",
       R"("a" TEXT, "b" INT, CONSTRAINT "c" CHECK ("b" > 1), CHECK ("a" <> ')'), CHECK (a || 'x' != 'y'))"},
      {"(a REFERENCES u, b REFERENCES \"u v\" (\"x\") ON UPDATE SET DEFAULT ON DELETE NO ACTION DEFERRABLE)",
       R"("a", "b", FOREIGN KEY ("a") REFERENCES "u", FOREIGN KEY ("b") REFERENCES "u v" ("x") ON UPDATE SET DEFAULT )"
       R"(DEFERRABLE)"},
      {"(a, b, CONSTRAINT f FOREIGN KEY (B, a) REFERENCES T (a, B) MATCH full DEFERRABLE INITIALLY DEFERRED)",
       R"("a", "b", CONSTRAINT "f" FOREIGN KEY ("b", "a") REFERENCES "t" ("a", "b") MATCH FULL DEFERRABLE INITIALLY DEFERRED)"},
      {"(a GENERATED ALWAYS AS (d + 1) NOT NULL, b generated, c AS (b -- \n || 'x') STORED, d INT)",
       R"("a" NOT NULL GENERATED ALWAYS AS ("d" + 1) VIRTUAL, "b" generated, "c" GENERATED ALWAYS AS (b -- )"
       "\n || 'x') STORED, \"d\" INT"},
      {"(a CHECK (a > 01) CHECK (a IS NOT NULL))", R"("a", CHECK (a > 01), CHECK ("a" IS NOT NULL))"},
      {"(a DEFAULT -1, b DEFAULT + 2, c DEFAULT NULL, d DEFAULT true, e DEFAULT 'it''s', f DEFAULT current_date)",
       R"("a" DEFAULT -1, "b" DEFAULT 2, "c" DEFAULT NULL, "d" DEFAULT TRUE, "e" DEFAULT 'it''s', "f" DEFAULT current_date)"},
      {"(a INT /* x */ NULL, b `my type` (3 , -4), c NOT NULL)", R"("a" INT, "b" `my type` (3 , -4), "c" NOT NULL)"},
      {"(a INT GENERATED ALWAYS b, c GENERATED ALWAYS)", R"("a" INT GENERATED ALWAYS b, "c" GENERATED ALWAYS)"},
      {"(a MONEY TEXT CHECK (a>9) CHECK (cast([A]as NUMERIC)>09 OR a='a'), b CHECK (CAST(a AS numeric)>b) CHECK "
       "(b>'a'))",
       R"("a" MONEY TEXT, "b", CHECK (a>9), CHECK (cast([A]as NUMERIC)>09 OR a='a'), )"
       R"(CHECK (CAST("a" AS NUMERIC) > "b"), CHECK ("b" > 'a'))"},
      {"(a BOOL CHECK (a IN (0, 1)) CHECK (a OR a IS NULL))",
       R"("a" BOOL, CHECK ("a" IN (FALSE, TRUE)), CHECK ("a" OR "a" IS NULL))"},
      {"(a TEXT, b INT, PRIMARY KEY (a)) STRICT, WITHOUT ROWID", R"("a" TEXT, "b" INT, PRIMARY KEY ("a"))",
       " STRICT, WITHOUT ROWID"},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.Declared);
    Connection->Execute("DROP TABLE IF EXISTS t");
    Connection->Execute("CREATE TABLE t " + Case.Declared);
    EXPECT_EQ(OneLine(Connection->Scripts().Table(Connection->Definitions().Table({"t", {}}, {}), {},
                                                  "{table}({items}){words}")),
              "\"t\"(" + Case.Made + ")" + Case.Words);
  }
}

/// A text that is cut off gives an error or a table, whatever the place.
TEST_F(SQLiteDefinitionsTest, NoPieceOfADeclarationIsTakenForAWhole) {
  Connection = Made("pieces", Traits());
  const std::unique_ptr<TCursor> Kept = Connection->Query("SELECT type, sql FROM sqlite_schema WHERE sql IS NOT NULL");
  TKvVariant Type;
  TKvVariant Statement;
  int Pieces = 0;
  while (Kept->Next()) {
    Kept->Read(0, Type);
    Kept->Read(1, Statement);
    const std::string_view Text = Statement.AsText();
    if (Type.AsText() == "trigger" || Text.starts_with("CREATE VIRTUAL")) continue;
    for (std::size_t Size = 0; Size < Text.size(); ++Size) {
      const std::string Piece(Text.substr(0, Size));
      const std::string Error = ErrorOf([&] {
        if (Type.AsText() == "table") ReadTableDeclaration(Piece, "x");
        if (Type.AsText() == "index") ReadIndexDeclaration(Piece, "x");
        if (Type.AsText() == "view") ReadViewDeclaration(Piece, "x");
      });
      // The closing bracket, or the whole query, may stand before the end.
      const bool MayBeWhole = Type.AsText() != "table" || Text.find(')', Size) == std::string_view::npos;
      EXPECT_TRUE((MayBeWhole && Error == "no error") ||
                  Error.starts_with("EDatabaseError: Cannot read the declaration of "))
          << Piece << "\n"
          << Error;
      ++Pieces;
    }
  }
  EXPECT_GT(Pieces, 1000);
}

TEST_F(SQLiteDefinitionsTest, ScannedTypesAreTheNarrowestThatHoldEveryCell) {
  struct TCase {
    std::string Declared, Cells;
    TDicFieldType Type;
    std::optional<int> Size = {};
  };
  using TType = TDicFieldType;
  const TCase Cases[] = {
      {"INTEGER", "1, NULL, -5", TType::Int64},
      {"INTEGER", "NULL", TType::Int64},
      {"INTEGER", "1, 'x'", TType::Any},
      {"INTEGER", "'x'", TType::String},
      {"", "1, 2.5", TType::Real64},
      {"", "9007199254740993, 2.5", TType::Any},
      {"", "x'00'", TType::Bytes},
      {"", "x'00', 'x'", TType::Any},
      {"TEXT", "x'00'", TType::Bytes},
      {"VARCHAR(3)", "'abc', 'жжж'", TType::String, 3},
      {"VARCHAR(3)", "'abcd'", TType::String},
      {"CHAR(3)", "'ab'", TType::String, 3},
      {"BLOB(2)", "x'0102'", TType::Bytes, 2},
      {"BLOB(2)", "x'010203'", TType::Bytes},
      {"BOOLEAN", "0, 1", TType::Boolean},
      {"BOOLEAN", "0, 2", TType::Int64},
      {"BOOLEAN", "0, 'no'", TType::Any},
      {"DATE", "'2024-02-29'", TType::Date},
      {"DATE", "'2024-02-29', '2023-02-29'", TType::String},
      {"DATE", "20240229", TType::Int64},
      {"DECIMAL(5, 2)", "1.25, 7, -999.99", TType::Decimal, 5},
      {"DECIMAL(5, 2)", "1.255", TType::Decimal},
      {"DECIMAL(5, 2)", "1000", TType::Decimal},
      {"DECIMAL(5, 2)", "1.00001", TType::Real64},
      {"MONEY", "1.5, 'x'", TType::Any},
      {"JSON TEXT", "'[1]'", TType::Json},
      {"JSON TEXT", "'[1]', x'00'", TType::Any},
  };
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.Declared + ": " + Case.Cells);
    Connection->Execute("DROP TABLE IF EXISTS t");
    Connection->Execute("CREATE TABLE t (c " + Case.Declared + ", d)");
    for (std::size_t Start = 0; Start < Case.Cells.size();) {
      const std::size_t End = std::min(Case.Cells.find(", ", Start), Case.Cells.size());
      Connection->Execute("INSERT INTO t (c) VALUES (" + Case.Cells.substr(Start, End - Start) + ")");
      Start = End + 2;
    }
    const TDicTableDescription Table = Connection->Definitions().Table({"t", {}}, {.ScanColumns = true});
    EXPECT_EQ(Table.Fields[0].Type, Case.Type);
    EXPECT_EQ(Table.Fields[0].Size, Case.Size);
    EXPECT_EQ(Table.Fields[0].Words.at("sqlite").Text, Case.Declared);
    EXPECT_EQ(Table.Fields[1].Type, TType::Any);
  }
}

}  // namespace
}  // namespace velkrund::tests
