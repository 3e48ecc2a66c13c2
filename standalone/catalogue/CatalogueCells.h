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

/// As another program may have written it.
[[noreturn]] inline void RefuseCell(const TKvVariant& Value, std::string_view Wanted) {
  std::string Text;
  if (!Value.IsNull()) Value.AppendAsText(Text);
  throw EDatabaseError("A catalogue table is damaged: '" + Text + "' stands where " + std::string(Wanted) + " belongs");
}

/// What cannot be NULL. EDatabaseError where it is none.
inline std::int64_t NumberIn(const TKvVariant& Value) {
  if (!IsIntegerKind(Value.Kind())) RefuseCell(Value, "a whole number");
  return Value.AsInteger();
}
inline std::string_view TextIn(const TKvVariant& Value) {
  if (Value.Kind() != TKvKind::String) RefuseCell(Value, "a text");
  return Value.AsText();
}

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
  RefuseCell(Value, "a whole number");
}

}  // namespace velkrund
