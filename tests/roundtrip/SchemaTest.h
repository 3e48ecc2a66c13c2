#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/cli/CommandTest.h"
#include "tests/roundtrip/DatabaseState.h"

namespace velkrund::tests {

/// A file of schemas/: NAME.sql for every engine, or NAME.ENGINE.sql. It has the statements of the schema, then, each
/// after a line with its name, "-- before" (what those need: sequences, functions), "-- rows", "-- other rows" (for a
/// database that is loaded into), "-- after" (both) and
/// "-- same" (queries with equal results, where the rows of tables do not say all).
struct TSchema {
  std::string Before, Statements, Rows, OtherRows, After;
  std::vector<std::string> Same;
  // Lines such as "-- changes: a, b" say more.
  TArguments Options;           // -- options: those with which everything comes back
  std::string Refused;          // -- refused: what the error says without them; else it is an import with its triggers
  std::string Says;             // -- says: what the report of an import with them says
  std::set<std::string> Fires;  // -- fires: tables with triggers that run, which the report names
  std::set<std::string> Changes;  // -- changes: tables that those triggers change
  std::set<std::string> LeftOut;  // -- left out: tables that cannot be written, which the export names
};

/// Of those that are there for the engine: "sqlite" or "postgresql".
std::vector<std::string> SchemaNames(const std::string& Engine);
TSchema ReadSchema(const std::string& Name, const std::string& Engine);

/// Moves schemas between databases by the real command.
class TSchemaTest : public TCommandTest {
 protected:
  /// A database with nothing but what the statements make. One of that name that was made before is gone.
  TTestDatabase Made(const std::string& Engine, const std::string& Name, const std::string& Statements);
  TTestDatabase Made(const std::string& Engine, const std::string& Name, const TSchema& Schema,
                     const std::string& Rows);
  /// All tables into a new file.
  TOutcome Export(const TTestDatabase& Source, const std::string& File = "F");
  /// Arguments of an import of F.
  static TArguments Import(const TTestDatabase& Target, const TArguments& Options, const std::string& Object = "table");

 private:
  std::map<std::string, TTestDatabase> FPostgreSQL;  // a new one takes a server longer than what a test does with it
};

TArguments operator+(TArguments Left, const TArguments& Right);

}  // namespace velkrund::tests
