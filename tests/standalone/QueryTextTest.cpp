#include "standalone/drivers/QueryText.h"

#include <gmock/gmock.h>

#include "standalone/drivers/postgresql/PostgreSQLDialect.h"
#include "standalone/drivers/sqlite/SQLiteDialect.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {
namespace {

/// The text with every parameter as "<its number>", or what is wrong with it.
std::string Marked(const std::string& Text, const TDialect& Dialect) {
  const TQueryText Query(Text, Dialect.QuerySyntax());
  const std::string Error = ErrorOf([&] { Query.Check(); });
  if (Error != "no error") return Error.substr(("EDatabaseError: " + Query.Failed() + ": ").size());
  return Query.With([](std::size_t Index) { return "<" + std::to_string(Index) + ">"; });
}

TEST(QueryTextTest, ParametersAreFoundWhereTheEngineWouldReadWords) {
  const std::string Same;  // as it was given
  const struct {
    std::string Text, SQLite, PostgreSQL;
  } Cases[] = {
      {"SELECT :A, :b_2,:a+:имя", "SELECT <0>, <1>,<0>+<2>", "SELECT <0>, <1>,<0>+<2>"},
      {"SELECT ':A'':A' || \":A\"\":A\" || :A", "SELECT ':A'':A' || \":A\"\":A\" || <0>",
       "SELECT ':A'':A' || \":A\"\":A\" || <0>"},
      {"-- :A '\nSELECT /* :A /* */ :A /* */ :B", "SELECT /* :A /* */ <0> /* */ <1>", "SELECT"},
      {"SELECT 1 --:A\r, :A", "SELECT 1", "SELECT 1 --:A\r, <0>"},
      {"SELECT `:A`, [:A], :A", "SELECT `:A`, [:A], <0>", "SELECT `<0>`, [<0>], <0>"},
      {"SELECT X'00', 1e-5:A, .5:A", "SELECT X'00', 1e-5<0>, .5<0>", "SELECT X'00', 1e-5<0>, .5<0>"},
      {"SELECT 'a\\', :A, '", "SELECT 'a\\', <0>, '", "SELECT 'a\\', <0>, '"},
      {"SELECT E'a\\', :A, '", "SELECT E'a\\', <0>, '", Same},
      {"SELECT E'\\\\'' :A' || :A", "SELECT E'\\\\'' :A' || <0>", "SELECT E'\\\\'' :A' || <0>"},
      {"SELECT E'a' --\n '\\':A', :A", "SELECT E'a' --\n '\\'<0>', :A", "SELECT E'a' --\n '\\':A', <0>"},
      {"SELECT E'a' '\\':A", "SELECT E'a' '\\'<0>", "SELECT E'a' '\\'<0>"},
      {"SELECT TYPE'\\':A", "SELECT TYPE'\\'<0>", "SELECT TYPE'\\'<0>"},
      {"SELECT :A::text, a[1:2], f(x := :A), 'a'::B", "", "SELECT <0>::text, a[1:2], f(x := <0>), 'a'::B"},
      {"SELECT $$:A $x$ $$, $t$:A$$:A$t$, a$b$, :A", "", "SELECT $$:A $x$ $$, $t$:A$$:A$t$, a$b$, <0>"},
      {"SELECT j ? 'a' AND j @> :A AND j @? :A", "", "SELECT j ? 'a' AND j @> <0> AND j @? <0>"},
      {" ;; SELECT 1 ; -- :A\n ;", "SELECT 1", "SELECT 1"},
      {"SELECT ?", "? is no parameter here: write :NAME, and give NAME a value", Same},
      {"SELECT @x", "@x is no parameter here: write :NAME, and give NAME a value", Same},
      {"SELECT $1", "$1 is no parameter here: write :NAME, and give NAME a value",
       "$1 is no parameter here: write :NAME, and give NAME a value"},
      {"SELECT :1", ":1 is no parameter here: write :NAME, and give NAME a value", Same},
      {"SELECT 1; SELECT 2", "it is more than one statement", "it is more than one statement"},
      {" ; -- nothing", "it is empty", "it is empty"},
      {std::string("SELECT 1\0", 9), "it holds a character U+0000", "it holds a character U+0000"},
  };
  for (const auto& [Text, SQLite, PostgreSQL] : Cases) {
    SCOPED_TRACE(Text);
    if (!SQLite.empty()) {
      EXPECT_EQ(Marked(Text, TSQLiteDialect()), SQLite);
    }
    EXPECT_EQ(Marked(Text, TPostgreSQLDialect()), PostgreSQL.empty() ? Text : PostgreSQL);
  }
}

}  // namespace
}  // namespace velkrund::tests
