#include <gmock/gmock.h>

#include "tests/standalone/SQLiteFixture.h"

namespace velkrund::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using TStrings = std::vector<std::string>;

class SQLiteSurroundingsTest : public SQLiteFixture {
 protected:
  void RunAll(const TStrings& Statements) {
    for (const std::string& Statement : Statements) Run(Statement);
  }
  TStrings AskFor(const std::string& Statement) {
    const auto Cursor = Connection->Query(Statement, {});
    TStrings Result;
    for (TKvVariant Value; Cursor->Next();) Cursor->Read(0, Value), Result.push_back(Shown(Value).substr(3));
    return Result;
  }
  /// All that the database keeps of its objects, and what the engine keeps beside.
  TStrings Snapshot() {
    TStrings Result = AskFor(
        "SELECT type || ' ' || name || ' ' || tbl_name || ' ' || ifnull(sql, '') FROM sqlite_schema UNION ALL "
        "SELECT 'temp ' || type || ' ' || name || ' ' || tbl_name || ' ' || sql FROM sqlite_temp_schema ORDER BY 1");
    for (const char* Kept : {"sqlite_sequence", "sqlite_stat1"}) {
      if (AskFor(std::string("SELECT name FROM sqlite_schema WHERE name = '") + Kept + "'").empty()) continue;
      const std::string Cells =
          std::string(Kept) == "sqlite_stat1" ? "tbl || ' ' || ifnull(idx, '-') || ' ' || stat" : "name || ' ' || seq";
      for (std::string& Row : AskFor("SELECT " + Cells + " FROM " + Kept + " ORDER BY 1"))
        Result.push_back(std::string(Kept) + " " + std::move(Row));
    }
    return Result;
  }
  /// As the job does it. Anew: from the new object on, and its rows. Returns the error.
  std::string Recreate(const TTableInfo& Object, const TStrings& Anew, const TRenamedFields& Renamed = {}) {
    Remarks.clear();
    Connection->Begin(TIsolationLevel::RepeatableRead);
    const auto Surroundings = Connection->Surroundings(Object, Renamed);
    const std::string Refused = ErrorOf([&] { Surroundings->SetAside(); });
    const std::string Result = Refused != "no error" ? Refused : ErrorOf([&] {
      const std::string Name = QuoteStandardName(Object.Name);
      const bool IsView = Object.Kind == TTableKind::View;
      if (!IsView) Run("CREATE TEMP TABLE \"the rows\" AS SELECT * FROM " + Name);
      Run((IsView ? "DROP VIEW " : "DROP TABLE ") + Name);
      RunAll(Anew);
      if (!IsView) Run("DROP TABLE \"the rows\"");
      Surroundings->PutBack(TPutBack::Whole);
    });
    Remarks = Surroundings->Remarks();
    Result == "no error" ? Connection->Commit() : Connection->Rollback();
    return Result;
  }
  static std::string Back(const std::string& Name) {
    return "INSERT INTO " + Name + " SELECT * FROM temp.\"the rows\"";
  }

  TStrings Remarks;
};

TEST_F(SQLiteSurroundingsTest, WhatIsMadeAgainAsItWasStandsAsItStood) {
  for (const char* Name : {"T", "\"a \"\"b\"\".c\"", "\"select\"", "[Ünïcode 東京]", "\"x'y%s\""}) {
    SCOPED_TRACE(Name);
    const std::string T = Name;
    Connection = Connect(":memory:");
    const std::string Table = "CREATE TABLE " + T +
                              " (id INTEGER PRIMARY KEY AUTOINCREMENT, \"w x\" TEXT UNIQUE, n INTEGER, up INTEGER "
                              "REFERENCES " +
                              T + ")";
    const std::string Index = "CREATE INDEX i ON " + T + " (n DESC, \"w x\" COLLATE NOCASE)";
    RunAll({Table, Index, "CREATE TABLE log (w)", "CREATE TABLE other (t REFERENCES " + T + " (\"w x\"))",
            "INSERT INTO " + T + " VALUES (1, 'one', 7, 1), (9, 'nine', 7, 1), (500, 'gone', 0, 1)",
            "DELETE FROM " + T + " WHERE id = 500", "INSERT INTO other VALUES ('nine'), ('nowhere')",
            "CREATE VIEW v (w) AS SELECT \"w x\" || 'text' FROM " + T, "CREATE VIEW v2 AS SELECT * FROM v",
            "CREATE TRIGGER \"t \"\"1\" AFTER INSERT ON " + T +
                " WHEN NEW.n BEGIN /* ; */ INSERT INTO log VALUES "
                "(NEW.\"w x\"); END",
            "CREATE TRIGGER t2 BEFORE UPDATE OF n, \"w x\" ON " + T + " BEGIN SELECT RAISE(FAIL, 'no'); END",
            "CREATE TRIGGER t3 INSTEAD OF DELETE ON v2 BEGIN DELETE FROM " + T + " WHERE \"w x\" = OLD.w; END",
            "CREATE TRIGGER t4 AFTER UPDATE ON log BEGIN UPDATE " + T + " SET n = 0; END",
            "CREATE TEMP TRIGGER t5 AFTER DELETE ON " + T + " BEGIN INSERT INTO log SELECT OLD.n; END",
            "CREATE VIRTUAL TABLE words USING fts5(\"w x\", content=" + T + ", content_rowid=id)",
            "INSERT INTO words (words) VALUES ('rebuild')", "ANALYZE"});
    const TStrings Before = Snapshot();
    TTableInfo Object = *Connection->Schema().FindTable(AskFor("SELECT name FROM sqlite_schema ORDER BY rowid")[0]);
    EXPECT_EQ(Recreate(Object, {Table, Back(T), Index}), "no error");
    EXPECT_EQ(Snapshot(), Before);
    EXPECT_THAT(Remarks, IsEmpty());
    EXPECT_THAT(AskFor("SELECT w FROM log"), IsEmpty());
    EXPECT_THAT(AskFor("SELECT rowid FROM words WHERE words MATCH 'nine'"), ElementsAre("9"));
    Run("INSERT INTO " + T + " (n) VALUES (3)");
    EXPECT_THAT(AskFor("SELECT max(id) FROM " + T), ElementsAre("501"));
    EXPECT_THAT(AskFor("SELECT ifnull(w, 'NULL') FROM log"), ElementsAre("NULL"));
  }
}

TEST_F(SQLiteSurroundingsTest, ARehearsalWithoutRowsPassesAndLeavesNothing) {
  RunAll({"CREATE TABLE T (A INTEGER PRIMARY KEY AUTOINCREMENT)", "CREATE TABLE C (A REFERENCES T)",
          "INSERT INTO T VALUES (1), (2)", "INSERT INTO C VALUES (1), (3)",
          "CREATE TRIGGER G AFTER DELETE ON T BEGIN DELETE FROM C; END"});
  RunAll({"CREATE VIRTUAL TABLE X USING fts5(A, content=T)", "INSERT INTO X (X) VALUES ('rebuild')"});
  const TStrings Before = Snapshot();
  Connection->Begin(TIsolationLevel::RepeatableRead);
  Connection->SetSavepoint(1);
  const auto Surroundings = Connection->Surroundings({"T", {}}, {});
  Surroundings->SetAside();
  RunAll({"DROP TABLE T", "CREATE TABLE T (A INTEGER PRIMARY KEY AUTOINCREMENT)"});
  Surroundings->PutBack(TPutBack::Rehearsed);
  EXPECT_TRUE(Surroundings->Remarks().empty());
  EXPECT_EQ(Snapshot(), Before);
  Connection->RollbackToSavepoint(1);
  Connection->Commit();
  EXPECT_EQ(Snapshot(), Before);
  EXPECT_THAT(AskFor("SELECT A FROM T"), ElementsAre("1", "2"));
  EXPECT_THAT(AskFor("SELECT rowid FROM X WHERE X MATCH '2'"), ElementsAre("2"));
}

TEST_F(SQLiteSurroundingsTest, WhatDoesNotFitAnyMoreIsNamedAndWhatDidNotBeforeIsLeft) {
  const struct {
    TStrings Around;
    std::string Error;   // "": none
    std::string Remark;  // "": none
  } Cases[] = {
      {{"CREATE VIEW V AS SELECT OLD FROM T"}, "view 'V': no such column: OLD", ""},
      {{"CREATE VIEW V AS SELECT \"OLD\" FROM T"}, "view 'V': no such column: OLD", ""},
      {{"CREATE VIEW V AS SELECT \"a text\", \"Old\" FROM T"},
       "view 'V': the engine would take the field \"old\" for a text",
       ""},
      {{"CREATE VIEW V AS SELECT KEPT, \"a text\" FROM T"}, "", ""},
      {{"CREATE VIEW V (A, B, C) AS SELECT * FROM T"}, "view 'V': expected 3 columns for 'V' but got 2", ""},
      {{"CREATE VIEW W AS SELECT * FROM T", "CREATE VIEW V AS SELECT OLD FROM W"}, "view 'V': no such column: OLD", ""},
      {{"CREATE TEMP VIEW V AS SELECT OLD FROM T"}, "temporary view 'V': no such column: OLD", ""},
      {{"CREATE VIEW V AS SELECT NONE FROM T"}, "", "view 'V' did not work before either"},
      {{"CREATE VIEW V AS SELECT NONE FROM O"}, "", ""},
      {{"CREATE VIEW V AS SELECT KEPT FROM T ORDER BY OLD COLLATE NONE"}, "", "view 'V' did not work before either"},
      {{"CREATE TRIGGER G AFTER INSERT ON T BEGIN INSERT INTO O VALUES (NEW.OLD); END"},
       "trigger 'G': no such column: NEW.OLD",
       ""},
      {{"CREATE TRIGGER G AFTER INSERT ON T BEGIN DELETE FROM O; END",
        "CREATE TRIGGER H BEFORE INSERT ON T BEGIN SELECT NEW.OLD; END"},
       "trigger 'H' or trigger 'G': no such column: NEW.OLD",
       ""},
      {{"CREATE TRIGGER G AFTER UPDATE OF OLD ON T BEGIN DELETE FROM O; END"}, "trigger 'G': no such column: OLD", ""},
      {{"CREATE TRIGGER G AFTER UPDATE OF KEPT ON T BEGIN DELETE FROM O; END"}, "", ""},
      {{"CREATE TRIGGER G AFTER UPDATE ON O BEGIN UPDATE T SET OLD = 1; END"}, "trigger 'G': no such column: OLD", ""},
      {{"CREATE TRIGGER G AFTER DELETE ON O BEGIN INSERT INTO T VALUES (1, 2, 3); END"},
       "trigger 'G': table T has 2 columns but 3 values were supplied",
       ""},
      {{"CREATE VIEW V AS SELECT 1 AS A", "CREATE TRIGGER G INSTEAD OF INSERT ON V BEGIN DELETE FROM T WHERE OLD; END"},
       "trigger 'G': no such column: OLD",
       ""},
      {{"CREATE TEMP TRIGGER G AFTER DELETE ON T BEGIN SELECT OLD.OLD; END"},
       "temporary trigger 'G': no such column: OLD.OLD",
       ""},
      {{"CREATE TRIGGER G AFTER DELETE ON T BEGIN DELETE FROM NOWHERE; END"},
       "",
       "trigger 'G' did not work before either"},
      {{"CREATE TABLE C (A REFERENCES T (OLD))", "CREATE UNIQUE INDEX I ON T (OLD)"},
       "around it: Cannot check the foreign keys of table 'C': foreign key mismatch - \"C\" referencing \"T\"",
       ""},
      {{"CREATE TABLE C (A REFERENCES T (OLD))"}, "", "foreign keys of table 'C' did not work before either"},
      {{"CREATE TABLE C (A REFERENCES T (KEPT))", "INSERT INTO C VALUES (1), (NULL), (5)"}, "", ""},
      {{"CREATE TABLE C (A REFERENCES T (KEPT))", "INSERT INTO C VALUES (2), (7)"},
       "1 more row of table 'C' refers to nothing (row 1 to a row of 'T')",
       ""},
      {{"CREATE VIRTUAL TABLE X USING fts5(OLD, content=T)"}, "text index 'X': no such column: T.OLD", ""},
      {{"CREATE VIRTUAL TABLE X USING fts4(OLD, content=T)"}, "text index 'X': ", ""},
      {{"CREATE VIRTUAL TABLE X USING fts4(KEPT, content=T)"}, "", ""},
      {{"CREATE VIRTUAL TABLE X USING fts5(NONE, content=T)"}, "", "text index 'X' did not work before either"},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Around.back());
    Connection = Connect(":memory:");
    RunAll({"CREATE TABLE O (A)", "CREATE TABLE T (KEPT INTEGER PRIMARY KEY, OLD, GONE)",
            "INSERT INTO T VALUES (1, 1, 1), (2, 2, 2)"});
    RunAll(Case.Around);
    const TStrings Before = Snapshot();
    const std::string Error = Recreate({"T", {}},
                                       {"CREATE TABLE T (KEPT INTEGER PRIMARY KEY, NEW)",
                                        "INSERT INTO T SELECT KEPT, OLD FROM temp.\"the rows\" WHERE KEPT = 1"},
                                       {{"OLD", "NEW"}});
    if (Case.Error.empty()) {
      EXPECT_EQ(Error, "no error");
    } else {
      EXPECT_THAT(Error,
                  AllOf(HasSubstr("Cannot recreate table 'T': the new one does not fit"), HasSubstr(Case.Error)));
      EXPECT_EQ(Snapshot(), Before);
    }
    EXPECT_EQ(Remarks, Case.Remark.empty() ? TStrings() : TStrings{Case.Remark});
  }
}

TEST_F(SQLiteSurroundingsTest, NothingIsBegunWithWhatCouldNotBePutBack) {
  RunAll({"CREATE TABLE T (A PRIMARY KEY)", "CREATE TABLE C (A REFERENCES T)",
          "CREATE TABLE S (A PRIMARY KEY REFERENCES S)", "CREATE TABLE H (A INTEGER PRIMARY KEY AUTOINCREMENT)",
          "CREATE TEMP VIEW h AS SELECT 1", "CREATE VIRTUAL TABLE F USING fts5(A)",
          "CREATE VIRTUAL TABLE R USING rtree(A, B, C)"});
  Run("PRAGMA foreign_keys = ON");
  const TStrings Before = Snapshot();
  const struct {
    TTableInfo Object;
    std::string Error;
  } Cases[] = {{{"T", {}},
                "set to enforce foreign keys, so that dropping it would delete or refuse rows of others that "
                "refer to it (C); use"},
               {{"F", {}, TTableKind::Extension}, "it is a virtual table; drop it"},
               {{"R", {}, TTableKind::Extension}, "it is a virtual table"},
               {{"F_data", {}}, "it is a part of a virtual table"},
               {{"sqlite_sequence", {}}, "it is the engine's own"},
               {{"H", {}}, "hides it; drop that first"},
               {{"T", "temp"}, "Cannot recreate table 'temp.T': it is not in the database itself"},
               {{"N", {}}, "it is not in the database"}};
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Object.Name);
    EXPECT_THAT(Recreate(Case.Object, {"SELECT 1"}),
                AllOf(HasSubstr("Cannot recreate table '"), HasSubstr(Case.Error)));
    EXPECT_EQ(Snapshot(), Before);
  }
  // Where none but its own rows refer to it.
  EXPECT_EQ(Recreate({"S", {}}, {"CREATE TABLE S (A PRIMARY KEY REFERENCES S)"}), "no error");
  EXPECT_THAT(ErrorOf([&] {
                Connection->Surroundings({"C", {}}, {})->SetAside();
              }),
              HasSubstr("no transaction is open"));
  EXPECT_THAT(Recreate({"S", {}}, {}), HasSubstr("Cannot recreate table 'S': it was not created again"));
}

TEST_F(SQLiteSurroundingsTest, AViewKeepsItsTriggersAndItsTextIndex) {
  RunAll({"CREATE TABLE T (A, B)", "INSERT INTO T VALUES ('word', 1)", "CREATE VIEW V AS SELECT rowid, A, B FROM T",
          "CREATE TRIGGER G INSTEAD OF UPDATE OF B ON V BEGIN UPDATE T SET B = NEW.B; END",
          "CREATE TRIGGER H INSTEAD OF INSERT ON V BEGIN INSERT INTO T VALUES (NEW.A, 0); END",
          "CREATE VIRTUAL TABLE X USING fts5(A, content=V)", "CREATE VIEW W AS SELECT A FROM V"});
  const TTableInfo View{"V", {}, TTableKind::View};
  EXPECT_EQ(Recreate(View, {"CREATE VIEW V AS SELECT rowid, A || 's' AS A, B FROM T",
                            "CREATE TRIGGER H INSTEAD OF INSERT ON V BEGIN SELECT 'new'; END"}),
            "no error");
  EXPECT_THAT(AskFor("SELECT sql FROM sqlite_schema WHERE type = 'trigger' ORDER BY name"),
              ElementsAre(HasSubstr("SET B = NEW.B"), HasSubstr("'new'")));
  EXPECT_THAT(AskFor("SELECT rowid FROM X WHERE X MATCH 'words'"), ElementsAre("1"));
  const TStrings Before = Snapshot();
  EXPECT_THAT(Recreate(View, {"CREATE VIEW V AS SELECT rowid, A FROM T"}),
              AllOf(HasSubstr("Cannot recreate view 'V': "), HasSubstr("trigger 'G': no such column: B")));
  EXPECT_EQ(Snapshot(), Before);
}

TEST_F(SQLiteSurroundingsTest, NumbersGoOnAndWhatThePlannerKnowsHoldsForIndexesThatAreThereAgain) {
  const std::string Rest = " (A INTEGER PRIMARY KEY AUTOINCREMENT, B, C UNIQUE)";
  const struct {
    TStrings Anew;
    TStrings Kept;
  } Cases[] = {
      {{"CREATE TABLE T (A INTEGER PRIMARY KEY AUTOINCREMENT, D, C UNIQUE)", Back("T"), "CREATE INDEX I ON T (D)",
        "CREATE INDEX J ON T (C)"},
       {"sqlite_sequence T 9", "sqlite_stat1 T I 2 2", "sqlite_stat1 T sqlite_autoindex_T_1 2 1"}},
      {{"CREATE TABLE T (A INTEGER PRIMARY KEY AUTOINCREMENT, D UNIQUE, C)", "CREATE INDEX J ON T (D DESC)"},
       {"sqlite_sequence T 9"}},
      {{"CREATE TABLE t (A INTEGER PRIMARY KEY AUTOINCREMENT, D, C)", Back("T"), "CREATE INDEX J ON T (D)"},
       {"sqlite_sequence t 9", "sqlite_stat1 t J 2 2"}},
      {{"CREATE TABLE T (A INTEGER PRIMARY KEY, D, C UNIQUE)", Back("T"), "CREATE INDEX J ON T (D)"},
       {"sqlite_stat1 T J 2 2", "sqlite_stat1 T sqlite_autoindex_T_1 2 1"}},
      {{"CREATE TABLE T (A INTEGER PRIMARY KEY AUTOINCREMENT, D, C)", "INSERT INTO T VALUES (77, 1, 1)"},
       {"sqlite_sequence T 77"}},
  };
  for (const auto& Case : Cases) {
    SCOPED_TRACE(Case.Anew.front() + Case.Anew.back());
    Connection = Connect(":memory:");
    RunAll({"CREATE TABLE T" + Rest, "CREATE INDEX I ON T (B)", "CREATE INDEX J ON T (B)",
            "INSERT INTO T VALUES (1, 0, 0), (2, 0, 1), (9, 0, 2)", "DELETE FROM T WHERE A = 9", "ANALYZE"});
    EXPECT_EQ(Recreate({"T", {}}, Case.Anew, {{"b", "D"}}), "no error");
    TStrings Kept = Snapshot();
    std::erase_if(Kept, [](const std::string& Line) { return !Line.starts_with("sqlite_s"); });
    EXPECT_EQ(Kept, Case.Kept);
  }
  Connection = Connect(":memory:");
  const std::string Keyed = "CREATE TABLE K (A, B, PRIMARY KEY (B)) WITHOUT ROWID";
  RunAll({Keyed, "INSERT INTO K VALUES (1, 1), (1, 2)", "ANALYZE"});
  const TStrings Before = Snapshot();
  EXPECT_THAT(Before, testing::Contains("sqlite_stat1 K K 2 1"));
  EXPECT_EQ(Recreate({"K", {}}, {Keyed, Back("K")}), "no error");
  EXPECT_EQ(Snapshot(), Before);
}

}  // namespace
}  // namespace velkrund::tests
