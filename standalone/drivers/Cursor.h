#pragma once

#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// Rows of a table, one after the other, as the engine delivers them; memory does not grow with their number. Begins
/// before the first row. Inside a transaction other tables of the same connection can be written while it is open;
/// outside, an engine may refuse every other statement until the last row or the cursor's end. Raises EDatabaseError.
class TCursor {
 public:
  TCursor() = default;
  TCursor(const TCursor&) = delete;
  TCursor& operator=(const TCursor&) = delete;
  virtual ~TCursor() = default;

  /// Moves to the next row; false behind the last one.
  virtual bool Next() = 0;
  /// Decodes one cell of the current row into Value. Column counts from 0 in the columns that the cursor was opened
  /// with. Texts and bytes are borrowed from the engine, until the next row.
  virtual void Read(int Column, TKvVariant& Value) = 0;
};

}  // namespace velkrund
