#include "tests/support/postgresql/PostgreSQLDatabase.h"

#include <libpq-fe.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>

namespace velkrund::tests {

namespace {

constexpr const char* Script = VELKRUND_SOURCE_DIR "/scripts/postgresql-server";
constexpr auto Patience = std::chrono::seconds(30);

using TResult = std::unique_ptr<PGresult, decltype(&PQclear)>;

std::string FirstLine(const std::string& Path) {
  std::ifstream File(Path);
  std::string Line;
  std::getline(File, Line);
  return Line;
}

std::string SharedServerUrl() {
  const char* Folder = std::getenv("VELKRUND_TEST_SERVER");
  const std::string Url = Folder ? FirstLine(std::string(Folder) + "/url") : "";
  if (Url.empty())
    throw std::runtime_error(
        "This test needs a PostgreSQL server. ctest starts one; by hand: scripts/postgresql-server start /tmp/server "
        "&& "
        "export VELKRUND_TEST_SERVER=/tmp/server");
  return Url;
}

PGconn* Connected(const std::string& Url) {
  PGconn* Result = PQconnectdb(Url.c_str());
  PQsetNoticeProcessor(
      Result, [](void*, const char*) {}, nullptr);
  return Result;
}

void Check(PGconn* Connection, bool Good, const std::string& What) {
  if (!Good) throw std::runtime_error(What + ": " + PQerrorMessage(Connection));
}

void RunOnce(const std::string& Url, const std::string& Statement) {
  const std::unique_ptr<PGconn, decltype(&PQfinish)> Connection(Connected(Url), &PQfinish);
  const TResult Result(PQexec(Connection.get(), Statement.c_str()), &PQclear);
  Check(Connection.get(), PQresultStatus(Result.get()) == PGRES_COMMAND_OK, Statement);
}

}  // namespace

TPostgreSQLDatabase::TPostgreSQLDatabase(const std::string& ServerUrl)
    : FServerUrl(ServerUrl.empty() ? SharedServerUrl() : ServerUrl) {
  static int Number = 0;
  FName = "test_" + std::to_string(getpid()) + "_" + std::to_string(++Number);
  FUrl = FServerUrl.substr(0, FServerUrl.rfind('/') + 1) + FName;
  RunOnce(FServerUrl, "CREATE DATABASE " + FName + " TEMPLATE template0 STRATEGY file_copy");
  FConnection = Connected(FUrl);
  Check(FConnection, PQstatus(FConnection) == CONNECTION_OK, FUrl);
}

TPostgreSQLDatabase::~TPostgreSQLDatabase() {
  PQfinish(FConnection);
  try {
    RunOnce(FServerUrl, "DROP DATABASE " + FName + " WITH (FORCE)");
  } catch (const std::exception&) {
    // It goes with its server.
  }
}

void TPostgreSQLDatabase::Run(const std::string& Statements) {
  const TResult Result(PQexec(FConnection, Statements.c_str()), &PQclear);
  const ExecStatusType Status = PQresultStatus(Result.get());
  Check(FConnection, Status == PGRES_COMMAND_OK || Status == PGRES_TUPLES_OK || Status == PGRES_EMPTY_QUERY,
        Statements);
}

std::string TPostgreSQLDatabase::Rows(const std::string& Query) {
  const std::string Statement = "COPY (" + Query + ") TO STDOUT";
  const TResult Result(PQexec(FConnection, Statement.c_str()), &PQclear);
  Check(FConnection, PQresultStatus(Result.get()) == PGRES_COPY_OUT, Statement);
  std::string Text;
  char* Line = nullptr;
  for (int Size; (Size = PQgetCopyData(FConnection, &Line, 0)) > 0; PQfreemem(Line))
    Text.append(Line, static_cast<std::size_t>(Size));
  const TResult End(PQgetResult(FConnection), &PQclear);
  Check(FConnection, PQresultStatus(End.get()) == PGRES_COMMAND_OK, Statement);
  while (PGresult* Rest = PQgetResult(FConnection)) PQclear(Rest);
  return Text;
}

void TPostgreSQLDatabase::AwaitEnd() {
  const auto End = std::chrono::steady_clock::now() + Patience;
  while (PQstatus(FConnection) == CONNECTION_OK && std::chrono::steady_clock::now() < End) {
    const TResult Result(PQexec(FConnection, "SELECT"), &PQclear);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void TPostgreSQLDatabase::Reconnect() {
  const auto End = std::chrono::steady_clock::now() + Patience;
  do {
    PQfinish(FConnection);
    FConnection = Connected(FUrl);
    if (PQstatus(FConnection) == CONNECTION_OK) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  } while (std::chrono::steady_clock::now() < End);
  Check(FConnection, false, "cannot connect again");
}

TPostgreSQLServer::TPostgreSQLServer() {
  std::string Pattern = "/tmp/velkrund-server-XXXXXX";
  if (!mkdtemp(Pattern.data())) throw std::runtime_error("no temporary folder");
  FFolder = Pattern;
  const std::string Command =
      std::string(Script) + " start " + FFolder + " --with " + std::to_string(getpid()) + " synchronous_commit=on";
  if (std::system((Command + " >/dev/null").c_str()) != 0) throw std::runtime_error("no server: " + Command);
  FUrl = FirstLine(FFolder + "/url");
}

TPostgreSQLServer::~TPostgreSQLServer() {
  if (std::system((std::string(Script) + " stop " + FFolder).c_str()) != 0) return;  // it ends with the process
}

}  // namespace velkrund::tests
