#pragma once

#include <string_view>

#include "velkrund/platform/ormtools/Records.h"

namespace velkrund {

/// Rows to walk forward, once or again, and the fields that they have. Operations raise EDatabaseError. Used by one
/// thread at a time.
class TRows {
 public:
  TRows() = default;
  TRows(const TRows&) = delete;
  TRows& operator=(const TRows&) = delete;
  virtual ~TRows() = default;

  virtual TRecord& Record() = 0;
  /// Opens the walk at the first row; false when there is none.
  virtual bool First() = 0;
  /// The next row; false when there is none, and the walk is then closed.
  virtual bool Next() = 0;

  TField* FindField(std::string_view Name) { return Record().FindField(Name); }
  TField& FieldByName(std::string_view Name) { return Record().FieldByName(Name); }
};

}  // namespace velkrund
