#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {

/// The statements, the items of a table in one line, with "; " between two.
inline std::string OneLine(const TScript& Script) {
  std::string Result;
  for (const TScriptStatement& Statement : Script.Statements) Result += (Result.empty() ? "" : "; ") + Statement.Text;
  using TPair = std::pair<std::string, std::string>;
  for (const auto& [Break, Instead] : {TPair{",\n  ", ", "}, TPair{"\n  ", ""}, TPair{"\n)", ")"}})
    for (std::size_t At = 0; (At = Result.find(Break, At)) != std::string::npos;)
      Result.replace(At, Break.size(), Instead);
  return Result;
}

class SQLiteFixture : public testing::Test {
 protected:
  std::unique_ptr<TConnection> Connect(const std::string& Path, TConnectOptions Options = {.CreateMissing = true}) {
    return TSQLiteDriver().Connect({"sqlite", Path}, Options);
  }
  void Run(const std::string& Statement) { Connection->Execute(Statement); }
  TDriverTable Open(const std::string& Name) {
    return {*Connection, Connection->Schema().FindTable(Name).value(), true};
  }

  /// Appends one value to a new table (C DeclaredType); the error, or what is stored: "typeof value".
  std::string Store(const std::string& Definition, const std::function<void(TKvVariant&)>& Set) {
    Run("DROP VIEW IF EXISTS V");
    Run("DROP TABLE IF EXISTS S");
    Run("CREATE TABLE S " + Definition);
    const std::string Error = ErrorOf([&] {
      TDriverTable Table = Open("S");
      Table.BeginAppend();
      Set(Table.Record().Fields(0).Buffer());
      Table.AppendRecord();
      Table.EndAppend();
    });
    if (Error != "no error") return Error;
    Run("CREATE VIEW V AS SELECT CAST(typeof(C) || ' ' || quote(C) AS TEXT) FROM S");
    return Rows(*Connection, "V").at(0).substr(3);
  }

  TTemporaryFolder Folder;
  std::unique_ptr<TConnection> Connection = Connect(":memory:");
};

}  // namespace velkrund::tests
