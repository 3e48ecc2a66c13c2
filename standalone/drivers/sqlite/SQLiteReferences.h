#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/SchemaReader.h"

namespace velkrund {

/// Rows that refer to rows of a table, and its own that refer to others, while it is dropped and made again: how many
/// find nothing, and whether the engine understands the foreign keys at all. Raises EDatabaseError.
class TSQLiteReferences {
 public:
  /// Counts. Schema: borrowed.
  TSQLiteReferences(TSchemaReader& Schema, const TTableInfo& Table);

  struct TChanges {
    std::vector<std::string> Worse;      // "5 more rows of table 'B' refer to nothing (row 17 to a row of 'A')"
    std::vector<std::string> Broken;     // keys that worked: "Cannot check the foreign keys of table 'B': ..."
    std::vector<std::string> NotBefore;  // "foreign keys of table 'B'": did not work before, and do not now
  };
  /// Counts again.
  TChanges Changes() const;

 private:
  struct TCounted {
    TTableInfo Table;
    TBrokenReferences Broken = {};
    std::string Error = {};  // why nothing can be counted; empty: it could
  };
  TCounted Count(const TTableInfo& Table) const;

  TSchemaReader& FSchema;
  std::vector<TCounted> FBefore;
};

}  // namespace velkrund
