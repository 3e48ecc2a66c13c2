#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/Cursor.h"
#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

/// Whether the parameter takes a value from its caller.
inline bool TakesValue(const TDicParameter& Parameter) { return Parameter.Mode != TDicParameterMode::Out; }

/// One for each parameter of a procedure, in the order of its description; nothing: it has its default, or takes no
/// value.
using TProcedureArguments = std::vector<std::optional<TKvVariant>>;

/// A procedure that runs as its rows are asked for: it has run to its end once Next has given false. Memory does not
/// grow with their number. Freed before the connection, and before the transaction ends.
class TProcedureRun : public TCursor {
 public:
  /// The names of the columns of its rows; empty: it yields none.
  virtual const std::vector<std::string>& Columns() const = 0;
  /// Rows that its statements have changed, at its end; nothing where the engine does not count them.
  virtual std::optional<std::int64_t> ChangedRows() const = 0;
};

}  // namespace velkrund
