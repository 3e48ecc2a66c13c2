#pragma once

#include <string>
#include <utility>
#include <vector>

#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// The small table that a BLOB field of another table may hold inside its value. Rows live in memory.
class TBLOBTable : public TTable {
 public:
  /// Names and kinds, in order.
  using TFields = std::vector<std::pair<std::string, TKvKind>>;

  /// The value to be stored in the field, with what was appended.
  virtual std::string Bytes() const = 0;
};

}  // namespace velkrund
