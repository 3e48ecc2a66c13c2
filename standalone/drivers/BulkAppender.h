#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "velkrund/platform/ormtools/ErrorInfo.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

struct TAppendOptions {
  /// The number that error messages give to the first record.
  std::int64_t FirstRecord = 1;
  /// Automatic numbering is moved behind the highest key, where the engine does not do so by itself.
  bool CanRecreateAutoSequence = false;
  /// A value of which the engine can hold the most is stored so and counted; otherwise it is an error.
  bool AllowLoss = false;
  /// A record takes the place of the row with its primary key, where there is one.
  bool UpdateByKey = false;
};

/// The engine's fastest way to add rows to one table. Errors (EDatabaseError) name the table, the record and, where
/// known, the column. Freed before Finish: what was not yet handed to the engine is dropped.
class TBulkAppender {
 public:
  TBulkAppender() = default;
  TBulkAppender(const TBulkAppender&) = delete;
  TBulkAppender& operator=(const TBulkAppender&) = delete;
  virtual ~TBulkAppender() = default;

  /// One value per column that the appender was opened with, in that order. The values and the bytes that they borrow
  /// are needed until the call returns. The row may be held back: then its error shows at a later call, and until
  /// Finish other statements do not see it.
  virtual void Append(std::span<const TKvVariant* const> Row) = 0;
  /// Hands over what is still held back; nothing can be appended afterwards.
  virtual void Finish() = 0;
  /// Values that were stored with a loss.
  virtual std::int64_t ChangedValues() const { return 0; }
  /// Records that have taken the place of a row.
  virtual std::int64_t UpdatedRecords() const { return 0; }
};

/// The primary key in its order, as indexes into Columns. Raises EDatabaseError, for appends that update by it, where
/// there is none, and where Columns lack a part of it.
std::vector<std::size_t> KeyToUpdateBy(const TTableDescription& Table, std::span<const int> Columns,
                                       const TAppendOptions& Options);

/// What is known of a value that a table does not take, for errors.
TErrorInfo RefusedValue(const std::string& Table, const std::string& Column, std::int64_t Record,
                        const TKvVariant& Value);

}  // namespace velkrund
