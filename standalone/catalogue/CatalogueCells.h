#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/drivers/Cursor.h"

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

/// Nothing for NULL.
inline std::optional<std::int64_t> TakeNumber(TCursor& Rows, int Column) {
  TKvVariant Value;
  Rows.Read(Column, Value);
  return Value.IsNull() ? std::nullopt : std::optional(Value.AsInteger());
}

}  // namespace velkrund
