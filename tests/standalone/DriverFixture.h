#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "standalone/drivers/Driver.h"
#include "standalone/tables/DriverTable.h"
#include "tests/standalone/Support.h"

namespace velkrund::tests {

struct TConnected {
  std::shared_ptr<void> Database;  // what has to live as long as the connection
  std::unique_ptr<TConnection> Connection;
};

struct TAddressed {
  std::shared_ptr<void> Database;  // what has to live as long as connections to it
  std::string Url;
};

struct TEngine {
  std::string Name;
  std::function<TAddressed(const TTemporaryFolder&)> Address;
  std::function<TConnected(const TTemporaryFolder&, TConnectOptions)> Connect;
  std::map<TKvKind, std::string> Types;        // words of CREATE TABLE
  std::map<std::string, std::string> ReadsAs;  // Shown of what was written: Shown of what comes back
  std::string GeneratedColumn;                 // declares G as A + 1
  std::string ReadOnly;                        // a statement after which the connection writes no more
  std::string Deletes, Selects;                // bodies of procedures: WORDS with the parameter A; a row
};

void PrintTo(const TEngine& Engine, std::ostream* Out);

/// An engine joins what every driver has to keep by an entry here; what it does otherwise than others is said there, so
/// that no driver leaves a case out.
const std::vector<TEngine>& Engines();

class DriverFixture : public testing::TestWithParam<TEngine> {
 protected:
  void Run(const std::string& Statement) { Connection->Execute(Statement); }
  std::string Type(TKvKind Kind) const { return GetParam().Types.at(Kind); }
  TDriverTable Open(const std::string& Name) {
    return {*Connection, Connection->Schema().FindTable(Name).value(), true};
  }

  TTemporaryFolder Folder;
  TConnected Connected = GetParam().Connect(Folder, {});
  TConnection* const Connection = Connected.Connection.get();
};

template <typename TSetter>
TKvVariant Made(TSetter Set) {
  TKvVariant Result;
  Set(Result);
  return Result;
}

}  // namespace velkrund::tests
