#pragma once

#include <string>
#include <vector>

#include "velkrund/platform/database/Rows.h"
#include "velkrund/platform/ormtools/Variant.h"

namespace velkrund {

/// A parameter of a query's text.
struct TQueryParameter {
  std::string Name;                  // without its colon, as it stands in the text where it first does
  TKvKind DataType = TKvKind::Null;  // Null: nobody has given it a value yet
  TKvVariant Value = {};             // of that kind, or NULL
};

/// A query of one database that yields rows and changes nothing: what would write, in whatever way, is refused. It
/// runs in the caller's transaction, or one of its own. ":NAME" in its text is a parameter, outside of literals, quoted
/// names, comments and "::"; it may stand there several times. Names of parameters are told apart ignoring case.
class TSelectQuery : public TRows {
 public:
  virtual const std::string& SQL() const = 0;
  /// Closes the query. Its parameters are then those of the new text, without values.
  virtual void SetSQL(const std::string& Text) = 0;

  /// Each once, in the order in which they first stand in the text. Their values may be changed while it is closed.
  virtual std::vector<TQueryParameter>& Parameters() = 0;

  /// Has the engine read the text: Record knows the fields of the rows, whose names may repeat. Raises EDatabaseError
  /// also for a parameter without a value, for a text that yields no rows, and for several statements.
  virtual void Open() = 0;
  /// Frees what the engine holds. Nothing happens when it is closed.
  virtual void Close() = 0;
};

}  // namespace velkrund
