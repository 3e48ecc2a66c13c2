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
    EXPECT_EQ(sqlite3_exec(Database, Statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(Database);
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
  const auto Target = Made("target", "");
  ExpectSame(*Source, *Target);
  EXPECT_EQ(Understood(*Source), Understood(*Target));
}

}  // namespace
}  // namespace velkrund::tests
