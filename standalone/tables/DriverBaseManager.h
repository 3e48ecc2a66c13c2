#pragma once

#include "standalone/drivers/Connection.h"
#include "velkrund/platform/database/BaseManager.h"

namespace velkrund {

/// The tables of a database that a driver reaches.
class TDriverBaseManager final : public TODBCBaseManager {
 public:
  /// Borrowed.
  explicit TDriverBaseManager(TConnection& Connection) : FConnection(Connection) {}

  std::int64_t CopyTableData(const std::string& Source, const std::string& Target, bool Replace) override;
  std::optional<std::int64_t> CopyFields(const std::string& Source, const std::string& Target,
                                         const TFieldPairs& Pairs) override;
  void DropTable(const std::string& TableName) override;

 private:
  TTableDescription Description(const std::string& TableName) const;

  TConnection& FConnection;
};

}  // namespace velkrund
