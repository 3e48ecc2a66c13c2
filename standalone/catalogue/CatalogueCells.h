#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/drivers/Cursor.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

// What stands in catalogue tables, as parameters of statements and out of the rows of queries.

/// Borrowed. Kind: String or Bytes.
inline TKvVariant TextCell(std::string_view Bytes, TKvKind Kind = TKvKind::String) {
  TKvVariant Result;
  Result.BorrowText(Bytes, Kind);
  return Result;
}

inline TKvVariant NumberCell(std::int64_t Value) {
  TKvVariant Result;
  Result.SetInteger(Value);
  return Result;
}

/// NULL for nothing.
inline TKvVariant NumberCell(std::optional<std::int64_t> Value) { return Value ? NumberCell(*Value) : TKvVariant(); }

/// Empty for NULL.
inline std::string TakeText(TCursor& Rows, int Column) {
  TKvVariant Value;
  Rows.Read(Column, Value);
  return std::string(Value.AsText());
}

/// Nothing for NULL. EDatabaseError for what is no whole number, as another program may have written it.
inline std::optional<std::int64_t> TakeNumber(TCursor& Rows, int Column) {
  TKvVariant Value;
  Rows.Read(Column, Value);
  if (Value.IsNull()) return std::nullopt;
  if (IsIntegerKind(Value.Kind())) return Value.AsInteger();
  std::string Text;
  Value.AppendAsText(Text);
  throw EDatabaseError("A catalogue table is damaged: '" + Text + "' stands where a whole number belongs");
}

}  // namespace velkrund
