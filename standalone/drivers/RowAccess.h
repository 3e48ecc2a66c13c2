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

struct TWalkOptions {
  /// Rows come in the table's own order; with columns here in that of their values, NULL first, and texts by the bytes
  /// of their UTF-8. The engine sorts where the rows do not stand so.
  std::span<const int> Order = {};
  /// In the engine's language: those that it holds for; empty: all. An error that names it when it is no condition, or
  /// more than one.
  std::string_view Condition = {};
  /// As they are at the beginning, whatever this connection does meanwhile.
  bool Unmoved = false;
};

/// The way of rows from one table into another by a statement of the engine. Raises EDatabaseError.
class TRowCopier {
 public:
  TRowCopier() = default;
  TRowCopier(const TRowCopier&) = delete;
  TRowCopier& operator=(const TRowCopier&) = delete;
  virtual ~TRowCopier() = default;

  /// EDatabaseError where the engine would cut values on any way. Whether CopyRows makes of every value what
  /// TRowAccess::OpenAppender makes of what OpenCursor reads, or refuses the same ones.
  virtual bool CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                             std::span<const TColumnPair> Pairs) = 0;
  /// By one statement, in the order in which the rows stand. Columns of Target that are not named get their default;
  /// counters are the affair of the engine. An error where Target is no plain table, and where a trigger or rule of it
  /// would act on the rows. Returns how many rows were copied.
  virtual std::int64_t CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                                std::span<const TColumnPair> Pairs) = 0;
};

/// The way of rows out of tables and into them. Columns are indexes into the description's columns. Cursors and
/// appenders are freed before the connection. Raises EDatabaseError.
class TRowAccess : public TRowCopier {
 public:
  /// Columns in any order.
  virtual std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                              const TWalkOptions& Options) = 0;
  /// How many rows a condition holds for, which is as for OpenCursor.
  virtual std::int64_t CountRows(const TTableDescription& Table, std::string_view Condition) = 0;
  /// Columns that are not named get their default; generated ones must not be named. An error when Table takes no rows,
  /// and where rows are to be updated when it has no primary key, or Columns not all of it.
  virtual std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                                      const TAppendOptions& Options) = 0;

  /// Rows were copied: automatic numbering is moved behind the highest key, where the engine has not done so itself.
  virtual void MoveAutoSequence(const TTableDescription& /*Target*/, std::span<const TColumnPair> /*Pairs*/) {}
};

}  // namespace velkrund
