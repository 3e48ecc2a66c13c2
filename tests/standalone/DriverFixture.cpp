#include "tests/standalone/DriverFixture.h"

#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {

void PrintTo(const TEngine& Engine, std::ostream* Out) { *Out << Engine.Name; }

const std::vector<TEngine>& Engines() {
  static const std::vector<TEngine> Result = {
      {.Name = "sqlite",
       .Address =
           [](const TTemporaryFolder& Folder) {
             return TAddressed{nullptr, "sqlite:" + Folder / "contract.db"};
           },
       .Connect =
           [](const TTemporaryFolder& Folder, TConnectOptions Options) {
             Options.CreateMissing = true;
             auto Opened = TSQLiteDriver().Connect({"sqlite", Folder / "contract.db"}, Options);
             Opened->Execute("PRAGMA synchronous = OFF");
             return TConnected{nullptr, std::move(Opened)};
           },
       .Types = {{TKvKind::Int64, "BIGINT"},
                 {TKvKind::Double, "DOUBLE PRECISION"},
                 {TKvKind::Currency, "DECIMAL(18,4)"},
                 {TKvKind::Boolean, "BOOLEAN"},
                 {TKvKind::String, "VARCHAR(200)"},
                 {TKvKind::Bytes, "BLOB"},
                 {TKvKind::SysDate, "DATE"},
                 {TKvKind::SysTime, "TIME"},
                 {TKvKind::DateTime, "TIMESTAMP"}},
       // Whole amounts are stored as integers.
       .ReadsAs = {{"20 -7", "18 -7"}, {"20 0", "18 0"}},
       .GeneratedColumn = "G BIGINT AS (A + 1)",
       .ReadOnly = "PRAGMA query_only = ON",
       .Deletes = "DELETE FROM \"WORDS\" WHERE \"W\" = :A;\n-- and\nDELETE FROM \"WORDS\" WHERE \"W\" = :A + 1;",
       .Selects = "SELECT 5"},
      {.Name = "postgresql",
       .Address =
           [](const TTemporaryFolder&) {
             auto Database = std::make_shared<TPostgreSQLDatabase>();
             return TAddressed{Database, Database->Url()};
           },
       .Connect =
           [](const TTemporaryFolder&, const TConnectOptions& Options) {
             auto Database = std::make_shared<TPostgreSQLDatabase>();
             return TConnected{Database, TPostgreSQLDriver().Connect(*ParseDatabaseUrl(Database->Url()), Options)};
           },
       .Types = {{TKvKind::Int64, "BIGINT"},
                 {TKvKind::Double, "DOUBLE PRECISION"},
                 {TKvKind::Currency, "DECIMAL(18,4)"},
                 {TKvKind::Boolean, "BOOLEAN"},
                 {TKvKind::String, "VARCHAR(200)"},
                 {TKvKind::Bytes, "BYTEA"},
                 {TKvKind::SysDate, "DATE"},
                 {TKvKind::SysTime, "TIME"},
                 {TKvKind::DateTime, "TIMESTAMP"}},
       .ReadsAs = {},
       .GeneratedColumn = "G BIGINT GENERATED ALWAYS AS (A + 1) STORED",
       .ReadOnly = "SET default_transaction_read_only = on",
       .Deletes = "DELETE FROM \"WORDS\" WHERE \"W\" = \"A\";\n-- and\nDELETE FROM \"WORDS\" WHERE \"W\" = \"A\" + 1;",
       .Selects = "SELECT 5::bigint"},
  };
  return Result;
}

}  // namespace velkrund::tests
