#pragma once

#include <functional>
#include <string>
#include <vector>

#include "standalone/catalogue/Catalogue.h"
#include "velkrund/platform/structures/DSPContainer.h"

namespace velkrund {

/// The structures of one database, in the catalogue table velkrund_structures: a row each with type, name, properties
/// and the bytes of the tree. Nothing is made in a database that is only read. What writes runs in a transaction, in
/// the caller's where there is one.
class TStructureTable final : public TDSPTable {
 public:
  /// The database's connection, asked for with every call, since it may be closed and made again.
  using TConnect = std::function<TConnection&()>;
  /// The number of the running transaction, as TDatabases::TransactionMark; 0 outside of one.
  using TMark = std::function<std::int64_t()>;

  TStructureTable(std::string DatabaseName, TConnect Connect, TMark Mark)
      : FDatabaseName(std::move(DatabaseName)), FConnect(std::move(Connect)), FMark(std::move(Mark)) {}

  bool DSPStructureExist(const std::string& ObjectName, int ObjectType) override;
  std::optional<TDSPListItem> GetStructureProperties(const std::string& ObjectName, int ObjectType) override;
  void ChangeStructureProperties(const TDSPListItem& Item) override;
  TDSPList List() override;
  bool DeleteStructure(const std::string& ObjectName, int ObjectType) override;

  /// The bytes of the tree; nothing when there is no such structure, or none has been stored for it.
  std::optional<std::string> ReadTree(const std::string& ObjectName, int ObjectType);
  /// Stores them; a structure that does not exist is made, with empty properties.
  void WriteTree(const std::string& ObjectName, int ObjectType, std::string_view Bytes);

 private:
  struct TSetting;

  bool IsThere(TConnection& Connection);
  std::unique_ptr<TCursor> Select(const char* Columns, const std::string& ObjectName, int ObjectType);
  void Store(const std::string& ObjectName, int ObjectType, const std::vector<TSetting>& Settings);

  const std::string FDatabaseName;
  const TConnect FConnect;
  const TMark FMark;
  std::int64_t FKnownAt = 0;  // the transaction that has found its table, and in which it is locked since
};

}  // namespace velkrund
