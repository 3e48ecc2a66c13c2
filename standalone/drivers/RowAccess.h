#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "standalone/drivers/BulkAppender.h"
#include "standalone/drivers/Cursor.h"
#include "standalone/drivers/Schema.h"

namespace velkrund {

/// A column of one table that goes into one of another: their indexes.
struct TColumnPair {
  int From, To;
};

/// The way of rows out of tables and into them. Columns are indexes into the description's columns. Cursors and
/// appenders are freed before the connection. Raises EDatabaseError.
class TRowAccess {
 public:
  TRowAccess() = default;
  TRowAccess(const TRowAccess&) = delete;
  TRowAccess& operator=(const TRowAccess&) = delete;
  virtual ~TRowAccess() = default;

  /// Columns in any order. Rows come in the table's own order; with columns in Order in that of their values, NULL
  /// first, and texts by the bytes of their UTF-8. The engine sorts where the rows do not stand so.
  virtual std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                              std::span<const int> Order) = 0;
  /// Columns that are not named get their default; generated ones must not be named. An error when Table takes no rows.
  virtual std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                                      const TAppendOptions& Options) = 0;

  /// EDatabaseError where the engine would cut values on any way. Whether CopyRows makes of every value what
  /// OpenAppender makes of what OpenCursor reads, or refuses the same ones.
  virtual bool CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                             std::span<const TColumnPair> Pairs) = 0;
  /// By one statement, in the order in which the rows stand. Columns of Target that are not named get their default;
  /// counters are the affair of the engine. An error where Target is no plain table, and where a trigger or rule of it
  /// would act on the rows. Returns how many rows were copied.
  virtual std::int64_t CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                                std::span<const TColumnPair> Pairs) = 0;
};

}  // namespace velkrund
