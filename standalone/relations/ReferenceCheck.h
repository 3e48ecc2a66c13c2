#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "standalone/drivers/SchemaReader.h"
#include "velkrund/platform/database/LText.h"

namespace velkrund {

/// Rows that refer to nothing, before and after a load.
class TReferenceCheck {
 public:
  /// Schema: borrowed. Allowed: those of the tables that are loaded are let in.
  TReferenceCheck(TSchemaReader& Schema, bool Allowed) : FSchema(Schema), FAllowed(Allowed) {}

  /// Counts what is broken in a table that has foreign keys, each once. IsLoaded: rows come into it.
  void Count(const TTableInfo& Table, bool IsLoaded);
  /// Raises EDatabaseError where there is more than before and that is not allowed. Adds what people should know.
  void Compare(std::vector<TLText>& Remarks) const;

 private:
  struct TTable {
    TTableInfo Info;
    bool IsLoaded;
    std::int64_t Before;
  };

  TSchemaReader& FSchema;
  const bool FAllowed;
  std::map<std::string, TTable> FTables;
  std::map<std::string, std::string> FUnchecked;  // the engine's reason, by the table
};

}  // namespace velkrund
