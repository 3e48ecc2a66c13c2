#pragma once

#include <cstdint>
#include <memory>

#include "standalone/drivers/ConnectionTurn.h"
#include "standalone/drivers/sqlite/SQLiteReadyStatements.h"

struct sqlite3;

namespace velkrund {

/// The turn of one connection.
class TSQLiteTurn final : public TConnectionTurn {
 public:
  /// Database: borrowed.
  explicit TSQLiteTurn(sqlite3* Database) : FDatabase(Database) {}

  std::int64_t Writes() const override;

 protected:
  bool MayWorkAhead(int OwnStatements) const override;
  bool InTransaction() const override;

 private:
  sqlite3* const FDatabase;
};

/// The engine's handle of a connection, for who has its turn.
class TSQLiteHandle {
 public:
  explicit TSQLiteHandle(sqlite3* Database) : FDatabase(Database), FTurn(std::make_shared<TSQLiteTurn>(Database)) {}

  operator sqlite3*() const {
    FTurn->Take();
    return FDatabase;
  }
  TSQLiteTurn& Turn() const { return *FTurn; }
  TSQLiteReadyStatements& Ready() const { return *FReady; }

 private:
  sqlite3* FDatabase;
  // Statements may outlive the connection.
  std::shared_ptr<TSQLiteTurn> FTurn;
  std::shared_ptr<TSQLiteReadyStatements> FReady = std::make_shared<TSQLiteReadyStatements>();
};

}  // namespace velkrund
