#pragma once

#include <string>

typedef struct pg_conn PGconn;

namespace velkrund::tests {

/// A database of its own on the server of the tests, gone with the object; and a connection to it past the code under
/// test.
class TPostgreSQLDatabase {
 public:
  /// ServerUrl: another server than that of the tests, whose folder is in VELKRUND_TEST_SERVER. Raises
  /// std::runtime_error, as every operation does.
  explicit TPostgreSQLDatabase(const std::string& ServerUrl = {});
  TPostgreSQLDatabase(const TPostgreSQLDatabase&) = delete;
  TPostgreSQLDatabase& operator=(const TPostgreSQLDatabase&) = delete;
  ~TPostgreSQLDatabase();

  const std::string& Url() const { return FUrl; }
  /// One statement or several.
  void Run(const std::string& Statements);
  /// What COPY writes of the rows of a query: a line for each, its values separated by tabs.
  std::string Rows(const std::string& Query);
  /// Waits until the server has ended the connection, as it does with all when a session has crashed.
  void AwaitEnd();
  /// Connects again when the server has ended the connection, and waits until it lets.
  void Reconnect();

 private:
  std::string FServerUrl, FName, FUrl;
  PGconn* FConnection = nullptr;
};

/// A server of one test, for what would disturb others: it may crash, and keeps what was committed. Ends with the
/// object.
class TPostgreSQLServer {
 public:
  TPostgreSQLServer();
  TPostgreSQLServer(const TPostgreSQLServer&) = delete;
  TPostgreSQLServer& operator=(const TPostgreSQLServer&) = delete;
  ~TPostgreSQLServer();

  const std::string& Url() const { return FUrl; }

 private:
  std::string FFolder, FUrl;
};

}  // namespace velkrund::tests
