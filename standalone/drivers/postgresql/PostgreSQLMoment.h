#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "standalone/drivers/postgresql/PostgreSQLTypes.h"

namespace velkrund {

class TPostgreSQLDialect;

/// Schema and name of a table.
using TPostgreSQLName = std::pair<std::string, std::string>;

/// A table in the list of all, with what a name may mean it by.
struct TPostgreSQLListed {
  TTableInfo Info;
  std::string Qualified;  // name behind its schema, also where the full name has none
  bool IsPartition = false;
  std::int64_t PathPlace = 0;  // of its schema on the search path, from 1; 0: not on it
};

/// What was read of the catalogue in a transaction that only reads: asking again would give the same answers.
struct TPostgreSQLMoment {
  std::map<std::string, TTableInfo, std::less<>> Found;      // by the name that was looked for
  std::vector<TPostgreSQLListed> Tables;                     // all, in their order, once they are listed
  std::unordered_multimap<std::string, std::size_t> Places;  // in Tables, by name without a schema in lower case
  std::map<TPostgreSQLName, TPostgreSQLTable> Described;
  bool IsListed = false;
  int Searches = 0;  // by name, before that

  void List(std::vector<TPostgreSQLListed> All);
  /// A table that is to be described, and behind it others, where the list is known, that are not described: tables
  /// are mostly gone through in its order. As many as are described already, but not very many.
  std::vector<TPostgreSQLName> Next(const TPostgreSQLName& Table, const TPostgreSQLDialect& Dialect) const;
};

}  // namespace velkrund
