// What stays of a structure when an engine's object is described again.

#include "standalone/dictionary/Redescription.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace velkrund::tests {
namespace {

using TTable = TDicTableDescription;
using TChange = std::function<void(TTable&)>;

TDicEngineWords In(const char* Engine, const char* Text) { return {{Engine, {.Text = Text}}}; }
TDicEngineWords LinesIn(const char* Engine, const char* Line) { return {{Engine, {.Lines = {Line}}}}; }

/// As PostgreSQL describes it.
TTable Original() {
  TTable Table;
  Table.Name = "orders", Table.Schema = "sales", Table.Comment = "all of them";
  Table.Fields = {{.Name = "id",
                   .Type = TDicFieldType::Int16,
                   .NotNull = true,
                   .Comment = "the number",
                   .Auto = TDicAutoKey::Always,
                   .Counter = {.Start = "5"},
                   .Words = In("postgresql", "smallint")},
                  {.Name = "sum", .Type = TDicFieldType::Decimal, .Size = 9, .Words = In("postgresql", "numeric(9)")}};
  Table.Keys = {{"", true, {{"id"}}},
                {"u", false, {{"sum"}}, TDicDeferrable::Deferred, In("postgresql", "INCLUDE (id)")}};
  Table.Indexes = {{"part", false, {{"sum"}}, In("postgresql", "CREATE INDEX part ON orders (sum) WHERE id > 1")},
                   {"plain", false, {{"sum"}}}};
  Table.ForeignKeys = {{.Name = "", .Table = "people", .Schema = "sales", .Columns = {{"id", "id"}}}};
  Table.ForeignKeys[0].NotChecked = true;
  Table.Checks = {{"own", {}, In("postgresql", "sum ~ 'x'")}, {"", R"("sum" > 0)"}};
  Table.Triggers = {{"t", "Replica", LinesIn("postgresql", "CREATE TRIGGER t")}};
  Table.Words = In("postgresql", "UNLOGGED");
  return Table;
}

/// As SQLite describes what it made of that.
TTable Made() {
  TTable Table;
  Table.Name = "sales.orders";
  Table.Fields = {{.Name = "id",
                   .Type = TDicFieldType::Int64,
                   .NotNull = true,
                   .Auto = TDicAutoKey::RowNumber,
                   .Words = In("sqlite", "INTEGER")},
                  {.Name = "sum", .Type = TDicFieldType::Decimal, .Size = 9, .Words = In("sqlite", "DECIMAL(9)")}};
  Table.Keys = {{"", true, {{"id"}}, TDicDeferrable::No, In("sqlite", "AUTOINCREMENT")}, {"u", false, {{"sum"}}}};
  Table.Indexes = {{"plain", false, {{"sum"}}}};
  Table.ForeignKeys = {{.Table = "sales.people", .Columns = {{"id", "id"}}}};
  Table.Checks = {{"", R"("sum" > 0)"}};
  return Table;
}

TTable Stored() { return WithWords(Original(), Made(), "sqlite"); }

TTable Changed(TTable Table, const TChange& Change) {
  if (Change) Change(Table);
  return Table;
}

struct TCase {
  const char* What;
  TChange Now;       // to what SQLite describes
  TChange Expected;  // to what is stored
  std::vector<std::string> Gone;
};

const std::vector<TCase> Cases = {
    {"nothing changed", {}, {}, {}},
    {"indexes in another order",
     [](TTable& T) {
       T.Indexes.insert(T.Indexes.begin(), {"new", true, {{"id"}}});
     },
     [](TTable& T) {
       T.Indexes.push_back({"new", true, {{"id"}}});
     },
     {}},
    {"another type",
     [](TTable& T) { T.Fields[1].Words = In("sqlite", "TEXT"), T.Fields[1].Type = TDicFieldType::String; },
     [](TTable& T) {
       T.Fields[1] = {.Name = "sum", .Type = TDicFieldType::String, .Size = 9, .Words = In("sqlite", "TEXT")};
     },
     {"the words of PostgreSQL for field 'sum' of table 'sales.orders'"}},
    {"a default, though the type is the same",
     [](TTable& T) { T.Fields[1].Default = "1"; },
     [](TTable& T) { T.Fields[1] = Made().Fields[1], T.Fields[1].Default = "1"; },
     {"the words of PostgreSQL for field 'sum' of table 'sales.orders'"}},
    {"no key any more that the engine counts for",
     [](TTable& T) { T.Fields[0].Auto = TDicAutoKey::None; },
     [](TTable& T) {
       T.Fields[0] = Made().Fields[0], T.Fields[0].Auto = TDicAutoKey::None, T.Fields[0].Comment = "the number";
     },
     {"the words of PostgreSQL for field 'id' of table 'sales.orders'"}},
    {"a field in front of the others",
     [](TTable& T) { T.Fields.insert(T.Fields.begin(), {.Name = "new", .Words = In("sqlite", "")}); },
     [](TTable& T) { T.Fields.insert(T.Fields.begin(), {.Name = "new", .Words = In("sqlite", "")}); },
     {}},
    {"a field less",
     [](TTable& T) { T.Fields.pop_back(); },
     [](TTable& T) { T.Fields.pop_back(); },
     {"the words of PostgreSQL for field 'sum' of table 'sales.orders'"}},
    {"a key less, that PostgreSQL has words for", [](TTable& T) { T.Keys.pop_back(); }, {}, {}},
    {"a key of another name",
     [](TTable& T) { T.Keys[1].Name = "v"; },
     [](TTable& T) {
       T.Keys[1] = {"v", false, {{"sum"}}};
     },
     {"the words of PostgreSQL for key 'u' of table 'sales.orders'"}},
    {"a primary key without its word",
     [](TTable& T) { T.Keys[0].Words.clear(); },
     [](TTable& T) { T.Keys[0].Words.clear(); },
     {}},
    {"an index less", [](TTable& T) { T.Indexes.clear(); }, [](TTable& T) { T.Indexes.pop_back(); }, {}},
    {"an index of that name of its own",
     [](TTable& T) {
       T.Indexes.push_back({"part", false, {{"id"}}});
     },
     [](TTable& T) {
       T.Indexes[0] = {"part", false, {{"id"}}};
     },
     {"the words of PostgreSQL for index 'part' of table 'sales.orders'"}},
    {"a foreign key that deletes",
     [](TTable& T) { T.ForeignKeys[0].OnDelete = TDicKeyAction::Cascade; },
     [](TTable& T) { T.ForeignKeys[0] = Made().ForeignKeys[0], T.ForeignKeys[0].OnDelete = TDicKeyAction::Cascade; },
     {}},
    {"another check",
     [](TTable& T) { T.Checks[0].Text = R"("sum" > 1)"; },
     [](TTable& T) { T.Checks[1].Text = R"("sum" > 1)"; },
     {}},
    {"a trigger",
     [](TTable& T) {
       T.Triggers = {{"s", "", LinesIn("sqlite", "CREATE TRIGGER s")}};
     },
     [](TTable& T) {
       T.Triggers.push_back({"s", "", LinesIn("sqlite", "CREATE TRIGGER s")});
     },
     {}},
    {"words of the table",
     [](TTable& T) { T.Words = In("sqlite", "STRICT"); },
     [](TTable& T) { T.Words = In("sqlite", "STRICT"); },
     {"the words of PostgreSQL for table 'sales.orders'"}},
    {"another name", [](TTable& T) { T.Name = "bills"; }, [](TTable& T) { T.Name = "bills", T.Schema = ""; }, {}},
};

TEST(RedescriptionTest, WhatSQLiteChangedIsDescribedAnewAndTheRestStays) {
  ASSERT_EQ(Stored().Fields[1].Words.size(), 2U);
  for (const TCase& Case : Cases) {
    SCOPED_TRACE(Case.What);
    std::vector<std::string> Gone;
    EXPECT_TRUE(Redescribed(Stored(), Changed(Made(), Case.Now), "sqlite", Gone) == Changed(Stored(), Case.Expected));
    EXPECT_EQ(Gone, Case.Gone);
  }
}

TEST(RedescriptionTest, MakingAddsWordsAndNothingElse) {
  TTable Bare = Stored();
  for (TDicField& Field : Bare.Fields) Field.Words.erase("sqlite");
  Bare.Keys[0].Words.erase("sqlite");
  EXPECT_TRUE(Bare == Original());
  // Back on the engine that it is from, with the other's words in it.
  std::vector<std::string> Gone;
  EXPECT_TRUE(Redescribed(WithWords(Stored(), Original(), "postgresql"), Original(), "postgresql", Gone) == Stored());
  EXPECT_EQ(Gone, std::vector<std::string>());
}

TEST(RedescriptionTest, PostgreSQLKeepsWhatItReadsOtherwiseThanSQLite) {
  TTable From;
  From.Name = "t";
  From.Fields = {{.Name = "a", .Type = TDicFieldType::Int64, .Auto = TDicAutoKey::RowNumber}, {.Name = "b"}};
  From.Keys = {{"", true, {{"a", false, true}}}};
  From.ForeignKeys = {{.Table = "o", .Columns = {{"b", ""}}}};
  From.Checks = {{"", R"("a" > 0.5)"}, {"", R"("b" = 1)"}};
  TTable Now = From;
  Now.Comment = "new";
  Now.Fields[0].NotNull = true, Now.Fields[0].Auto = TDicAutoKey::ByDefault;
  Now.Fields[0].Words = In("postgresql", "bigint"), Now.Fields[1].Words = In("postgresql", "text");
  Now.Keys[0].Columns[0].Descending = false;
  Now.ForeignKeys[0].Columns[0].To = "id";
  Now.Checks[0] = {"", {}, In("postgresql", "((a)::numeric > 0.5)")};
  const TTable Stored = WithWords(From, Now, "postgresql");

  std::vector<std::string> Gone;
  TTable Expected = Stored;
  Expected.Comment = "new";
  EXPECT_TRUE(Redescribed(Stored, Now, "postgresql", Gone) == Expected);
  EXPECT_EQ(Stored.Checks[0].Text, R"("a" > 0.5)");
  EXPECT_TRUE(WordsOf(Stored.Checks[0].Words, "postgresql"));
}

TEST(RedescriptionTest, ViewsProceduresAndGeneratorsStayWhole) {
  std::vector<std::string> Gone;
  TDicViewDescription View;
  View.Name = "v", View.Words = LinesIn("sqlite", "SELECT 1 AS a");
  TDicViewDescription Made;
  Made.Name = "v", Made.Columns = {"a"}, Made.Words = LinesIn("postgresql", " SELECT 1 AS a;");
  const auto Stored = WithWords(View, Made, "postgresql");
  EXPECT_TRUE(Redescribed(Stored, Made, "postgresql", Gone) == Stored);
  EXPECT_TRUE(Stored.Columns.empty());
  auto Changed = Made;
  Changed.Words["postgresql"].Lines = {" SELECT 2 AS a;"};
  EXPECT_TRUE(Redescribed(Stored, Changed, "postgresql", Gone) == Changed);

  TDicProcedureDescription Procedure;
  Procedure.Name = "p", Procedure.Language = "sql", Procedure.Words = LinesIn("sqlite", "DELETE");
  Procedure.Parameters = {{.Name = "x", .Type = TDicFieldType::Int16}};
  auto MadeProcedure = Procedure;
  MadeProcedure.Words = LinesIn("postgresql", "DELETE");
  MadeProcedure.Parameters[0].Words = In("postgresql", "smallint");
  const auto StoredProcedure = WithWords(Procedure, MadeProcedure, "postgresql");
  EXPECT_TRUE(Redescribed(StoredProcedure, MadeProcedure, "postgresql", Gone) == StoredProcedure);
  MadeProcedure.Parameters[0].Words = In("postgresql", "mood");
  EXPECT_TRUE(Redescribed(StoredProcedure, MadeProcedure, "postgresql", Gone) == MadeProcedure);

  TDicGeneratorDescription Generator;
  Generator.Name = "g", Generator.Words = In("odbc", "x");
  EXPECT_TRUE(Redescribed(Generator, {{"g", "", "new"}}, "postgresql", Gone).Words == Generator.Words);
  EXPECT_TRUE(Redescribed(Generator, {{"g"}, {.Step = "2"}}, "postgresql", Gone).Words.empty());
  EXPECT_EQ(Gone, (std::vector<std::string>{"the words of SQLite for view 'v'", "the words of SQLite for procedure 'p'",
                                            "the words of ODBC for generator 'g'"}));
}

}  // namespace
}  // namespace velkrund::tests
