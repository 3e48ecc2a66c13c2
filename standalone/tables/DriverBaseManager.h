#pragma once

#include <functional>

#include "standalone/drivers/Connection.h"
#include "velkrund/platform/database/BaseManager.h"

namespace velkrund {

/// The tables of a database that a driver reaches.
class TDriverBaseManager final : public TODBCBaseManager {
 public:
  /// The connection to a database, by its name.
  using TConnections = std::function<TConnection&(const std::string& DatabaseName)>;

  /// Connection: borrowed. Connections: empty: this is the only database.
  explicit TDriverBaseManager(TConnection& Connection, TConnections Connections = {})
      : FConnection(Connection), FConnections(std::move(Connections)) {}

  std::int64_t CopyTableData(const std::string& Source, const std::string& Target, bool Replace) override;
  std::optional<std::int64_t> CopyFields(const std::string& SourceDatabase, const std::string& Source,
                                         const std::string& Target, const TFieldPairs& Pairs,
                                         bool MovesAutoSequence) override;
  void DropTable(const std::string& TableName) override;

 private:
  static TTableDescription Description(TConnection& Connection, const std::string& TableName);

  TConnection& FConnection;
  const TConnections FConnections;
};

}  // namespace velkrund
