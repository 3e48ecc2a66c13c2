#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "standalone/drivers/Schema.h"
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
  /// The same with all cells. Row: as many as the cursor was opened with columns.
  virtual void ReadRow(std::span<TKvVariant> Row) {
    for (std::size_t Column = 0; Column < Row.size(); ++Column) Read(static_cast<int>(Column), Row[Column]);
  }
  /// The cells of the current row, where all of them are decoded already, until the next row; null: they are not.
  virtual const TKvVariant* Decoded() const { return nullptr; }
  /// Whether nothing but this cursor is lost when the engine is stopped on the way to a row.
  virtual bool StopsAlone() const { return true; }
};

/// The rows of a query, and what is known of their columns: names, which may repeat, and kinds.
struct TQueryRows {
  std::vector<TColumnInfo> Columns;
  std::unique_ptr<TCursor> Cursor;
};

}  // namespace velkrund
