#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/standalone/Support.h"
#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {

inline std::unique_ptr<TConnection> Connect(const std::string& Url) {
  return TPostgreSQLDriver().Connect(ParseDatabaseUrl(Url).value(), {});
}

class PostgreSQLFixture : public testing::Test {
 protected:
  PostgreSQLFixture() {
    // What users may have set must not change what is read and written.
    for (const char* Setting :
         {"datestyle = 'German'", "intervalstyle = 'sql_standard'", "timezone = 'Asia/Kolkata'",
          "bytea_output = 'escape'", "extra_float_digits = -15", "standard_conforming_strings = off"})
      Set(Setting);
    Connection = Connect(Raw.Url());
  }

  /// For the sessions that begin from now on.
  void Set(const std::string& Setting) {
    Raw.Run("DO $do$ BEGIN EXECUTE format($q$ALTER DATABASE %I SET " + Setting + "$q$, current_database()); END $do$");
  }
  TDriverTable Open(const std::string& Name) {
    return {*Connection, Connection->Schema().FindTable(Name).value(), true};
  }
  std::vector<std::string> Names() {
    std::vector<std::string> Result;
    for (const TTableInfo& Table : Connection->Schema().Tables())
      Result.push_back(TDriverTable(*Connection, Table, false).TableName());
    return Result;
  }
  /// Appends records of one field; the error, if any.
  std::string Append(const std::string& Name, const std::vector<std::function<void(TKvVariant&)>>& Records) {
    return ErrorOf([&] {
      TDriverTable Table = Open(Name);
      Table.SetCanRecreateAutoSequence(true);
      Table.BeginAppend();
      for (const auto& SetValue : Records) {
        SetValue(Table.Record().Fields(0).Buffer());
        Table.AppendRecord();
      }
      Table.EndAppend();
    });
  }
  void EndSession() {
    Raw.Run(
        "SELECT pg_terminate_backend(pid, 10000) FROM pg_stat_activity WHERE pid <> pg_backend_pid() AND datname = "
        "current_database()");
  }

  TPostgreSQLDatabase Raw;
  std::unique_ptr<TConnection> Connection;
};

inline const auto SetInteger = [](std::int64_t N) { return [N](TKvVariant& V) { V.SetInteger(N); }; };
inline const auto SetText = [](std::string_view T) { return [T](TKvVariant& V) { V.SetText(T); }; };

}  // namespace velkrund::tests
