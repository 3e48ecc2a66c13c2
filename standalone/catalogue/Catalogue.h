#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standalone/drivers/Connection.h"

namespace velkrund {

/// A table of the platform's own: a name that begins with CataloguePrefix, and the columns with their types.
struct TCatalogueTable {
  struct TColumn {
    const char* Name;
    TKvKind Kind;  // Int64, String or Bytes
    bool Nullable = true;
    bool ByBytes = false;  // texts sort by their bytes
  };
  struct TIndex {
    const char* Name;     // begins with that of the table
    const char* Columns;  // separated by commas
    bool Unique = false;
  };

  const char* Name;
  std::vector<TColumn> Columns;
  const char* Key;  // names of columns, separated by commas
  std::vector<TIndex> Indexes = {};
  bool Clustered = false;  // rows stand in the order of the key, where the engine can
};

/// The platform's own tables in one database. They are made when something is to be kept in them for the first time,
/// and the row of velkrund_catalogue tells by which version of their layout. Raises EDatabaseError. Borrows the
/// connection.
class TCatalogue {
 public:
  explicit TCatalogue(TConnection& Connection) : FConnection(Connection) {}

  /// Of the layout, as the database says it; nothing when the platform keeps nothing there.
  std::optional<std::int64_t> Version();
  /// Whether the table is there. A layout that this program does not know is an error.
  bool Has(const TCatalogueTable& Table);
  /// Makes the table, and the catalogue, unless they are there. Inside a transaction that the caller has started.
  void Make(const TCatalogueTable& Table);

 private:
  void Create(const TCatalogueTable& Table);
  void CheckVersion();

  TConnection& FConnection;
};

}  // namespace velkrund
