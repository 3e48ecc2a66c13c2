#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/drivers/Schema.h"

namespace velkrund {

class TPostgreSQLResult;
class TPostgreSQLSession;
struct TPostgreSQLListed;
struct TPostgreSQLMoment;

/// The tables of users in all schemas, and which of them a name means. Raises EDatabaseError.
class TPostgreSQLTableSearch {
 public:
  /// Session: borrowed.
  explicit TPostgreSQLTableSearch(TPostgreSQLSession& Session) : FSession(Session) {}

  /// Without partitions.
  std::vector<TTableInfo> Tables();
  /// As TPostgreSQLSchemaReader::FindTable.
  std::optional<TTableInfo> Find(std::string_view Name);
  /// Marks the tables whose names others share, as the list of tables does.
  void MarkShared(std::vector<TTableInfo*> Tables);

 private:
  using TListed = std::vector<TPostgreSQLListed>;

  TListed All(const std::string& What);
  const TPostgreSQLMoment* Listed(const std::string& What);
  TListed Named(const std::string& What, const std::string& Name);
  TListed NamedInAnyCase(const std::string& What, std::string_view Name);
  TListed ListedIn(const TPostgreSQLResult& Rows) const;
  std::optional<TTableInfo> Search(std::string_view Name);
  std::optional<TTableInfo> SearchExactly(const std::string& What, const std::vector<std::string>& Parts);

  TPostgreSQLSession& FSession;
};

}  // namespace velkrund
