// The words of every engine's SQL, as text. That an engine takes them is for the drivers' tests to show.

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLDialect.h"
#include "standalone/drivers/sqlite/SQLiteDialect.h"

namespace velkrund::tests {
namespace {

using TTexts = std::vector<std::pair<std::string, std::string>>;

struct TWords {
  TTexts Names;                                            // QuoteName
  std::vector<std::pair<TTableInfo, std::string>> Tables;  // SQLName
  std::vector<std::pair<int, std::string>> Marks;          // ParameterMark
  std::vector<std::pair<TKvKind, std::string>> Types;      // ColumnType
};

void Check(const TDialect& Dialect, const TWords& Words) {
  for (const auto& [Name, Quoted] : Words.Names) EXPECT_EQ(Dialect.QuoteName(Name), Quoted);
  for (const auto& [Table, Name] : Words.Tables) EXPECT_EQ(Dialect.SQLName(Table), Name);
  for (const auto& [Number, Mark] : Words.Marks) EXPECT_EQ(Dialect.ParameterMark(Number), Mark);
  for (const auto& [Kind, Type] : Words.Types) EXPECT_EQ(Dialect.ColumnType(Kind), Type);
}

const TTexts StandardNames = {
    {"", R"("")"},
    {"T", R"("T")"},
    {"select", R"("select")"},
    {"a\"b", R"("a""b")"},
    {"\"\"", R"("""""")"},
    {"x\"; DROP TABLE Y; --", R"("x""; DROP TABLE Y; --")"},
    {"x'y\\`[z]", R"("x'y\`[z]")"},
    {"%s ?1 $1", R"("%s ?1 $1")"},
    {" Заказы\n", "\" Заказы\n\""},
    {std::string("a\0b", 3), std::string("\"a\0b\"", 5)},
};

const TWords SQLiteWords = {
    .Names = StandardNames,
    .Tables = {{{"T", ""}, R"("T")"}, {{"a.\"b", ""}, R"("a.""b")"}},
    .Marks = {{1, "?1"}, {10, "?10"}},
    .Types = {{TKvKind::Int64, "INTEGER"}, {TKvKind::String, "TEXT"}, {TKvKind::Bytes, "BLOB"}},
};

const TWords PostgreSQLWords = {
    .Names = StandardNames,
    .Tables = {{{"T", ""}, R"("My ""Own"""."T")"},
               {{"b.\"c", "a.b"}, R"("a.b"."b.""c")"},
               {{"t", "", TTableKind::Table, true}, R"(ONLY "My ""Own"""."t")"},
               {{"t", "x", TTableKind::Foreign, true}, R"(ONLY "x"."t")"}},
    .Marks = {{1, "$1"}, {10, "$10"}},
    .Types = {{TKvKind::Int64, "bigint"}, {TKvKind::String, "text"}, {TKvKind::Bytes, "bytea"}},
};

TEST(DialectTest, EveryEngineHasItsWords) {
  Check(TSQLiteDialect(), SQLiteWords);
  const TPostgreSQLDialect Dialect("My \"Own\"");
  Check(Dialect, PostgreSQLWords);
  EXPECT_EQ(TSQLiteDialect().RowLock(TRowLock::Wait), "");
  EXPECT_NE(Dialect.RowLock(TRowLock::Wait), Dialect.RowLock(TRowLock::Stay));
  EXPECT_EQ(Dialect.QualifiedName({"t", "x", TTableKind::Table, true}), R"("x"."t")");
}

}  // namespace
}  // namespace velkrund::tests
